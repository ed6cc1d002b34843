/**
 * @file swsdk/remote.h
 * The virtual chip outside its caller's process: one process has the chip, any number of others work on it.
 *
 * A process with #SWSDK_CHIP_VARIABLE in its environment when this library is loaded works on the chip that listens at
 * that path. So does one that calls swsdk_connect(). For it, every function of the SDK and of the control interface
 * does what it does to a chip inside the process:
 *
 * - What the SDK exports (`soc_ndev`, `soc_control`, `l3_module_data`) is that of the chip from then on, whoever has
 *   started it. When another process switches the chip off, `soc_ndev` becomes 0.
 * - Callbacks run on threads of the process that registered them. A handler of frames runs in the thread that sent the
 *   frame, before swsdk_frame_send() returns, and for frames that others sent, on a thread of its own; the unit is not
 *   locked meanwhile.
 * - Faults, links, the clock and the tables are the chip's, and so shared by all. Journals and recordings are each
 *   process's own: see swsdk/journal.h and swsdk/recording.h.
 *
 * A chip that is gone answers every SDK call with `BCM_E_FAIL`, and the control interface as without an initialized
 * unit; a line on standard error says so once. `sdk_main` looks for a chip at the path again. A child of fork() is a
 * client of its own, without the callbacks of its parent.
 *
 * Only processes of the same user, and with a library of the same version, are served.
 */
#ifndef SWSDK_REMOTE_H
#define SWSDK_REMOTE_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The environment variable with the path at which the chip of a process listens. */
#define SWSDK_CHIP_VARIABLE "SWSDK_CHIP"

/** Space for what went wrong: one line of text, whatever it says. */
#define SWSDK_REASON_SIZE 512

/**
 * Lets other processes work on the chip of this process. The board that is chosen now is the one that it keeps when a
 * client switches the chip off.
 *
 * @param path    a UNIX socket to create, with mode 0600; up to 107 bytes. One that a dead process left there is
 *                replaced
 * @param reason  null, or written when the result is -1: what is wrong, and what would be right
 * @return 0, or -1 when this process listens already or is a client itself, a living process listens at the path, it is
 *         something else than a socket, or cannot be created
 */
int swsdk_listen(const char* path, char reason[SWSDK_REASON_SIZE]);

/** Ends the connections of all clients and removes the socket. The chip stays. Not to be called from a callback. */
void swsdk_listen_end(void);

/**
 * Makes this process a client of another one's chip, or no longer. No other call may be running.
 *
 * @param path    where that chip listens; null: the chip is inside this process again
 * @param reason  null, or written when the result is -1: what is wrong, and what would be right
 * @return 0, or -1 when the chip inside this process is up, or nothing listens at the path that this library can use;
 *         nothing is changed then
 */
int swsdk_connect(const char* path, char reason[SWSDK_REASON_SIZE]);

#ifdef __cplusplus
}
#endif

#endif
