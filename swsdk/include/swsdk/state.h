/**
 * @file swsdk/state.h
 * The chips' state as a value: saved to a file, and put back.
 *
 * It is everything on which depends what the chips answer and forward next: whether they are on, the board, every table
 * and setting, counters, meters, the clock, cables and sensors, and the calls that made the entries. Not part of it are
 * what belongs to a process: callbacks, journals, recordings, faults, and what libsai.so keeps.
 *
 * A file says which version of the format it has; a virtual chip of the same version reads it, on any machine.
 */
#ifndef SWSDK_STATE_H
#define SWSDK_STATE_H

#ifdef __cplusplus
extern "C" {
#endif

/** With this the file of a state begins; the number of the version follows. */
#define SWSDK_STATE_HEADING "swsdk state "

/** Results of saving and restoring. */
#define SWSDK_STATE_DONE 0        /**< it is saved, or restored */
#define SWSDK_STATE_NO_FILE (-1)  /**< the file cannot be written, or read */
#define SWSDK_STATE_NO_STATE (-2) /**< the file is damaged, of another version, or something else */

/**
 * Saves the state of all chips, after what is under way, such as aging, and its callbacks. Not to be called from a
 * callback. When the chips are in another process (swsdk/remote.h), that process writes the file.
 *
 * @param path  file to write; it is replaced at the end, so that a failure leaves its old contents
 * @return SWSDK_STATE_DONE or SWSDK_STATE_NO_FILE
 */
int swsdk_state_save(const char* path);

/**
 * Puts all chips into a saved state. They are switched on or off, and the board is changed, where the state has it so;
 * if they stay on, callbacks stay registered, and none is called for what changes. To who counts the starts of a unit
 * (swsdk_starts()) it has been switched on anew. Not to be called from a callback.
 *
 * @param path  file that swsdk_state_save() has written
 * @return one of the SWSDK_STATE_ values; unless it is SWSDK_STATE_DONE, nothing is changed
 */
int swsdk_state_restore(const char* path);

#ifdef __cplusplus
}
#endif

#endif
