/**
 * @file swsdk/journal.h
 * The virtual chip's journal: one line of text for each call that the chip's SDK answered.
 *
 *     bcm_vlan_port_add(0, 10, {1,5-8}, {}) = 0
 *     bcm_vlan_control_vlan_get(0, 10, &{flags=0x1}) = 0
 *
 * Numbers are decimal, flags hexadecimal; port bitmaps list their ports; records show the fields that differ from their
 * initial value; `&` marks what the call wrote (`&?`: nothing, it failed). Text is quoted, callbacks and untyped
 * pointers read `<callback>` and `<pointer>`, or `NULL`. Initializers of records touch no chip and have no line.
 *
 * All functions may be called from any thread.
 */
#ifndef SWSDK_JOURNAL_H
#define SWSDK_JOURNAL_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** For swsdk_journal_record(): also the calls of other processes on the same chip. */
#define SWSDK_JOURNAL_OF_ALL 2

/**
 * Starts (non-zero) or stops (0) recording. Off at load. Recorded lines stay.
 *
 * When the chip is in another process (swsdk/remote.h), each process has a journal of its own, which has the calls of
 * that process, or with #SWSDK_JOURNAL_OF_ALL those of all processes. A line of another process begins with its name
 * and id, `switchd[4711]: `, or with `chip: ` if it is the one that runs the chip. Such a journal holds 16 MiB; then a
 * line says that later ones are left out.
 */
void swsdk_journal_record(int on);

/** Tells whether calls are being recorded. */
int swsdk_journal_recording(void);

/** Deletes all recorded lines. */
void swsdk_journal_clear(void);

/**
 * Copies the journal, each line ended by a newline.
 *
 * @param buffer  where to copy to; always ended by a zero byte when size is not 0; may be null when size is 0
 * @param size    size of the buffer in bytes; what does not fit is left out
 * @return length of the whole journal in bytes, without a zero byte
 */
size_t swsdk_journal_read(char* buffer, size_t size);

/**
 * The same from a position on, for a caller that has read what is before it.
 *
 * @param position  how many bytes to skip
 * @param buffer    as above
 * @param size      as above
 * @return length of the journal from there on in bytes; 0 when it ends there or before
 */
size_t swsdk_journal_read_from(size_t position, char* buffer, size_t size);

/**
 * Moves the oldest lines out of the journal: as many whole lines as fit, or of a longer line its beginning.
 *
 * @param buffer  where to move them to; always ended by a zero byte
 * @param size    size of the buffer in bytes, at least 2
 * @return length of what was moved in bytes, without a zero byte; 0 when the journal is empty, buffer is null or size
 *         is less than 2
 */
size_t swsdk_journal_take(char* buffer, size_t size);

#ifdef __cplusplus
}
#endif

#endif
