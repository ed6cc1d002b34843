/**
 * @file sai.h
 * The interface of libsai.so: plain C functions through which a switch's management application programs its
 * switching chip over the Chip SDK (libswsdk.so).
 *
 * Conventions that hold for every function unless its own comment says otherwise:
 *
 * - `unit` is the Chip SDK's unit number. The library drives one chip; sai_unit_get() gives its number.
 * - The result is #SAI_E_NONE (0) or a negative code of #sai_result. A code comes from the Chip SDK's result by
 *   sdk_to_sai(), or from the library itself when it refuses an argument without asking the chip.
 * - A failed SDK call is logged once, at level "errors", with a message that ends with the SDK's text for the failure.
 * - Output arguments are written on success only.
 * - Nothing is rolled back. An operation of several steps that fails in the middle leaves what it had done in the chip.
 * - One caller at a time. The library takes no locks and creates no threads.
 */
#ifndef SAI_H
#define SAI_H

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Marks what libsai.so exports; everything else in it is hidden. */
#define SAI_API __attribute__((visibility("default")))

/* ---------------------------------------------------------------------------------------------- Logging ---------- */

/** Destinations of log messages: the index into sai_log_handle::max_level. */
enum sai_log_destination {
  SAI_LOG_SYSLOG = 0,  /**< the system log */
  SAI_LOG_CONSOLE = 1, /**< standard output */
  SAI_LOG_FILE = 2,    /**< the stream in sai_log_handle::file */
};

/** Levels of log messages: the priorities of syslog. */
enum sai_log_level {
  SAI_LOG_OFF = -1, /**< as a limit: the destination takes nothing */
  SAI_LOG_EMERGENCIES = 0,
  SAI_LOG_ALERTS = 1,
  SAI_LOG_CRITICAL = 2,
  SAI_LOG_ERRORS = 3, /**< the library: every failed SDK call */
  SAI_LOG_WARNINGS = 4,
  SAI_LOG_NOTIFICATIONS = 5,
  SAI_LOG_INFORMATIONAL = 6,
  SAI_LOG_DEBUGGING = 7, /**< the library: traces */
};

/**
 * A log: where messages go and how their lines look. Made by open_sai_log(), ended by close_sai_log(). Between the two
 * the caller may set every field directly.
 */
typedef struct sai_log_handle {
  FILE* file;             /**< log file opened by the caller, or null; closed by close_sai_log() */
  const char* ident;      /**< syslog identity given to open_sai_log(); neither copied nor freed */
  char* file_name;        /**< name of the log file on the heap, or null; freed by close_sai_log() */
  int32_t module;         /**< index into sai_log_module_names: the name on every file and console line */
  int32_t facility;       /**< syslog facility, combined with the level of each record */
  int32_t level;          /**< -1 after open_sai_log(); free for the caller, the library never reads it */
  int32_t syslog_options; /**< option bits that were given to the system's openlog */
  int32_t show_priority;  /**< non-zero: file and console lines carry the level's name */
  int32_t time_precision; /**< digits of a second's fraction in the stamp of a line, 0 (none) to 19 */
  int32_t max_level[3];   /**< highest level that each destination takes, by #sai_log_destination; -1: none */
} sai_log_handle;

/**
 * The log that all messages use. Null at load; the library never sets it: the caller stores here what open_sai_log()
 * returned. While it is null every message of every level is written to standard error.
 */
extern SAI_API sai_log_handle* sai_log_default;

/** Level names by level, "emergencies" to "debugging", and a null pointer at the end. */
extern SAI_API const char* sai_log_priority[9];

/** Module names by index, "NONE" and "STG", and a null pointer at the end. */
extern SAI_API const char* sai_log_module_names[3];

/**
 * Opens a log and the connection to the system log.
 *
 * The new handle takes no message anywhere until sai_log_set_level() raises a limit, and is not yet the one in use:
 * store it in #sai_log_default.
 *
 * @param ident           identity of the syslog records; must stay valid as long as the log is open
 * @param module          index into #sai_log_module_names, 0 or 1
 * @param syslog_options  option bits of the system's openlog, such as LOG_PID
 * @param facility        syslog facility, such as LOG_USER
 * @return the handle, or null when there is no memory (the system log is not opened then)
 */
SAI_API sai_log_handle* open_sai_log(const char* ident, int32_t module, int32_t syslog_options, int32_t facility);

/**
 * Closes a log: the connection to the system log, then the handle's file, its file name and the handle itself.
 *
 * #sai_log_default is left as it is; clear it when it pointed here.
 *
 * @param log  a handle of open_sai_log(), not null
 */
SAI_API void close_sai_log(sai_log_handle* log);

/**
 * Sets the highest level that one destination takes.
 *
 * @param log          the log, or null for #sai_log_default
 * @param destination  a #sai_log_destination, 0 to 2; not checked
 * @param level        a #sai_log_level, -1 (off) to 7 (everything)
 */
SAI_API void sai_log_set_level(sai_log_handle* log, int32_t destination, int32_t level);

/**
 * Finds a level by the first two letters of its name, so that "de", "deb" and "debugging" are all 7.
 *
 * @param text  the name or its beginning; "notice" finds "notifications"
 * @return the first level of #sai_log_priority whose name begins so, or -1
 */
SAI_API int32_t sai_level_match(const char* text);

#define SAI_PRINTF __attribute__((format(printf, 1, 2)))

/** Logs a message at level 3, "errors". `errno` stays as it was, here and in the four below. */
SAI_API void sai_err(const char* format, ...) SAI_PRINTF;

/** Logs a message at level 4, "warnings". */
SAI_API void sai_warn(const char* format, ...) SAI_PRINTF;

/** Logs a message at level 5, "notifications". */
SAI_API void sai_notice(const char* format, ...) SAI_PRINTF;

/** Logs a message at level 6, "informational". */
SAI_API void sai_info(const char* format, ...) SAI_PRINTF;

/** Logs a message at level 7, "debugging". */
SAI_API void sai_debug(const char* format, ...) SAI_PRINTF;

/* ----------------------------------------------------------------------- Result codes, unit, diagnostic shell ---- */

/** Results of the library's functions. */
enum sai_result {
  SAI_E_NONE = 0,       /**< success */
  SAI_E_FAIL = -1,      /**< failure without a code of its own */
  SAI_E_UNAVAIL = -2,   /**< not supported */
  SAI_E_MEMORY = -3,    /**< no memory */
  SAI_E_PARAM = -5,     /**< invalid parameter */
  SAI_E_EXISTS = -6,    /**< item already exists */
  SAI_E_NOT_FOUND = -7, /**< item not found */
  SAI_E_PORT = -9,      /**< invalid port */
  SAI_E_FULL = -13,     /**< table full */
};

/**
 * Converts a result of the Chip SDK to a result of this library.
 *
 * @param rv  SDK result, 0 or a negative `BCM_E_*`
 * @return 0 for 0; the code of #sai_result for no memory, bad parameter, full, not found, exists, unavailable and bad
 *         port; -1 for every other value, positive ones included
 */
SAI_API int32_t sdk_to_sai(int32_t rv);

/**
 * Converts a trunk hash selector to the Chip SDK's port selection criterion.
 *
 * @param selector  0 source IP, 1 destination IP, 9 source MAC, 10 destination MAC, 18 source and destination IP,
 *                  19 source and destination MAC
 * @return the `BCM_TRUNK_PSC_*` value, or 0 for every other selector
 */
SAI_API int32_t sai_hash_to_sdk(uint32_t selector);

/** Gives the number of the unit that the library drives: always 0. */
SAI_API int32_t sai_unit_get(void);

/**
 * Runs one command line of the Chip SDK's diagnostic shell. Logs nothing.
 *
 * @param unit     SDK unit number
 * @param command  the command line
 * @return 0 when the shell returned 0, -1 for any other value
 */
SAI_API int32_t sai_sh_process_command(int32_t unit, char* command);

/* ------------------------------------------------------------------------------------------- VLAN table ---------- */

/**
 * Initializes the chip's VLAN module. To be called once per unit before the other VLAN functions.
 *
 * @return 0, or the converted result of `bcm_vlan_init`
 */
SAI_API int32_t sai_vlan_init(int32_t unit);

/**
 * Creates a VLAN with the CPU port as a tagged member.
 *
 * A VLAN that exists already is no error: the CPU port is added (again), so the call also repairs a VLAN that was made
 * elsewhere. When adding the CPU port fails, the VLAN stays.
 *
 * @param vid  VLAN id, 1 to 4095; checked by the chip
 * @return 0, or the converted result of the failed `bcm_vlan_create` or `bcm_vlan_port_add`
 */
SAI_API int32_t sai_vlan_create(int32_t unit, uint16_t vid);

/**
 * Destroys a VLAN.
 *
 * @param vid  VLAN id, 1 to 4095; checked by the chip
 * @return 0, or the converted result of `bcm_vlan_destroy`, -7 (not found) among them
 */
SAI_API int32_t sai_vlan_destroy(int32_t unit, uint16_t vid);

/**
 * Destroys all VLANs but the chip's default VLAN.
 *
 * @return 0, or the converted result of `bcm_vlan_destroy_all`
 */
SAI_API int32_t sai_vlan_destroy_all(int32_t unit);

/**
 * Makes a port a member of a VLAN.
 *
 * @param vid     VLAN id, 1 to 4095; checked by the chip
 * @param port    port number, 0 to 255; a larger one is refused without asking the chip
 * @param tagged  non-zero: frames of the VLAN leave the port tagged; 0: untagged
 * @return 0; -5 for a port above 255; or the converted result of `bcm_vlan_port_add`, -7 (no such VLAN) and -9 (no such
 *         port) among them
 */
SAI_API int32_t sai_vlan_port_add(int32_t unit, uint16_t vid, uint16_t port, int32_t tagged);

/**
 * Removes a port, tagged or untagged, from a VLAN.
 *
 * @param vid   VLAN id, 1 to 4095; checked by the chip
 * @param port  port number, 0 to 255; a larger one is refused without asking the chip
 * @return 0; -5 for a port above 255; or the converted result of `bcm_vlan_port_remove`
 */
SAI_API int32_t sai_vlan_port_remove(int32_t unit, uint16_t vid, uint16_t port);

/**
 * Switches the learning of source addresses in a VLAN.
 *
 * @param vid     VLAN id, 1 to 4095; checked by the chip
 * @param enable  non-zero: addresses are learned (`BCM_VLAN_LEARN_DISABLE` is cleared); 0: they are not
 * @return 0, or the converted result of the failed `bcm_vlan_control_vlan_get` or `bcm_vlan_control_vlan_set`; nothing
 *         is written when the get failed
 */
SAI_API int32_t sai_vlan_l2_learn_set(int32_t unit, uint16_t vid, int32_t enable);

/**
 * Sets or clears the layer-2 lookup flag of a VLAN, `BCM_VLAN_L2_LOOKUP_DISABLE`.
 *
 * @param vid    VLAN id, 1 to 4095; checked by the chip
 * @param value  the flag itself, not an "enable": non-zero sets it, 0 clears it
 * @return 0, or the converted result of the failed `bcm_vlan_control_vlan_get` or `bcm_vlan_control_vlan_set`; nothing
 *         is written when the get failed
 */
SAI_API int32_t sai_vlan_l2_lookup_set(int32_t unit, uint16_t vid, int32_t value);

#ifdef __cplusplus
}
#endif

#endif /* SAI_H */
