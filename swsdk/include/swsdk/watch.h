/**
 * @file swsdk/watch.h
 * Watches the frames that pass through the virtual chip.
 *
 * A watch records frames, each as a block of lines that ends with an empty one:
 *
 *     at 1796083200.250000000 unit 0
 *     in 1: 020000000002020000000001...
 *     out 2: 020000000002020000000001...
 *     passed on
 *
 * The first line has the seconds since 1970 by the clock of the chip's process. The other lines are those of
 * swsdk_frame_trace(), without those of the stages and entries unless they are asked for. A watch ends with the process
 * that began it.
 *
 * All functions may be called from any thread.
 */
#ifndef SWSDK_WATCH_H
#define SWSDK_WATCH_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What a watch tells of a frame. */
enum swsdk_watch_detail {
  SWSDK_WATCH_ENDS = 1, /**< what comes in, what leaves, what is lost and why */
  SWSDK_WATCH_WAYS = 2, /**< the stages, entries and calls that decided, too */
};

/** How many watches a process can have. */
#define SWSDK_WATCHES 16

/**
 * Begins to watch the frames of all units. Frames that the filter leaves out cost next to nothing.
 *
 * @param detail  SWSDK_WATCH_ENDS or SWSDK_WATCH_WAYS
 * @param filter  a program of libpcap's `struct bpf_insn`, compiled for Ethernet: a frame is watched if the program,
 *                run on the frame as it comes in, does not return 0; may be null when length is 0
 * @param length  its length in bytes; 0: every frame is watched
 * @return a number for the functions below; -1 when there is no such detail, the filter is no program that ends, or
 *         this process has #SWSDK_WATCHES
 */
int swsdk_watch_begin(int detail, const void* filter, size_t length);

/**
 * Moves the oldest frames out of a watch: as many whole blocks as fit, or of a longer block its beginning. A watch
 * holds 16 MiB; then the oldest frames are given up, and a block of a single line tells how many: `lost 17`.
 *
 * @param watch   a number from swsdk_watch_begin()
 * @param buffer  where to move them to; always ended by a zero byte
 * @param size    size of the buffer in bytes, at least 2
 * @return length of what was moved in bytes, without a zero byte; 0 when nothing has been recorded, there is no such
 *         watch, buffer is null or size is less than 2
 */
size_t swsdk_watch_take(int watch, char* buffer, size_t size);

/**
 * Ends a watch, with what it has recorded.
 *
 * @return 0, or -1 when there is no such watch
 */
int swsdk_watch_end(int watch);

#ifdef __cplusplus
}
#endif

#endif
