/**
 * @file appl/diag/shell.h
 * The diagnostic shell.
 */
#ifndef APPL_DIAG_SHELL_H
#define APPL_DIAG_SHELL_H

#ifdef __cplusplus
extern "C" {
#endif

/** Results of a command. */
typedef enum cmd_result_e {
  CMD_OK = 0,
  CMD_FAIL = -1,
  CMD_USAGE = -2,
  CMD_NFND = -3,
  CMD_EXIT = -4,
  CMD_INTR = -5,
  CMD_NOTIMPL = -6,
  cmd_result_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} cmd_result_t;

/** Runs the command line c. */
cmd_result_t sh_process_command(int unit, char* c);

#ifdef __cplusplus
}
#endif

#endif
