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

/** Starts (non-zero) or stops (0) recording. Off at load. Recorded lines stay. */
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

#ifdef __cplusplus
}
#endif

#endif
