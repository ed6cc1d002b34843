/**
 * @file swsdk/recording.h
 * Recordings of the virtual chip: every SDK call as a line of a file, to be repeated and compared later.
 *
 *     swsdk recording 3
 *     call sdk_main(0, NULL) = 0
 *     call bcm_vlan_create(0, 10) = 0
 *     fault bcm_vlan_create(0, 11) = -4
 *     action swsdk_link_event(0, 1, 1) = 0
 *     end
 *
 * The first line names the format and its version. Each line after it begins with its kind: `call`, a call that the
 * chip answered; `fault`, one that an injected fault answered; `action`, what the control interface of swsdk/chip.h,
 * swsdk/field.h and swsdk/frames.h did to the chip. The rest is as in swsdk/journal.h, with two additions: callbacks
 * and untyped pointers are numbered, so that different ones stay different, and an array that the call fills is
 * followed by its capacity, `&[7, 8] of 16`. docs/recordings.md describes the format, and libswsdk-recorder.so, which
 * records an application on any Chip SDK.
 *
 * When the chip is in another process (swsdk/remote.h), a recording has the calls of its own process, and may begin
 * with the chip up; it can then be repeated only from the state that the chip had. The recording of the process that
 * runs the chip has the calls of all.
 *
 * A process whose environment has #SWSDK_RECORD_VARIABLE at its first call records itself from there on, into the file
 * of that name.
 */
#ifndef SWSDK_RECORDING_H
#define SWSDK_RECORDING_H

#ifdef __cplusplus
extern "C" {
#endif

/** The environment variable that makes any application record itself. */
#define SWSDK_RECORD_VARIABLE "SWSDK_RECORD"

/**
 * Starts a recording; one that is in progress ends. If the chips are in this process, it begins with the chips off, so
 * that it can be repeated from there.
 *
 * @param path  file to write; its old contents are lost
 * @return 0, or -1 when units of this process are attached or the file cannot be written, and nothing is changed
 */
int swsdk_record_start(const char* path);

/**
 * Ends the recording. Switching the chips off does not.
 *
 * @return 0, or -1 when there is none or not all of it could be written
 */
int swsdk_record_stop(void);

/** Results of repeating a recording. */
enum swsdk_replay_result {
  SWSDK_REPLAY_SAME = 0,       /**< every answer was the recorded one */
  SWSDK_REPLAY_DIFFERENT = 1,  /**< an answer was not the recorded one */
  SWSDK_REPLAY_UNREADABLE = 2, /**< the file cannot be read or is no recording */
  SWSDK_REPLAY_INCOMPLETE = 3, /**< every answer was the recorded one, but the recording lacks its end */
};

/** Receives a line of text, or several lines of a program; without the last newline. */
typedef void (*swsdk_line_t)(const char* line, void* data);

/**
 * Switches the chips off and repeats the calls of a recording; the chips stay as the last call leaves them. Callbacks
 * are registered as functions that do nothing. Stops at the first answer, result or outputs, that differs. Lines of an
 * unknown kind or function are skipped with a notice. Not to be called from a callback.
 *
 * @param path   the recording
 * @param tell   called with notices, and with what is wrong or different, with file and line
 * @param data   passed to it
 * @return one of the SWSDK_REPLAY_ values; SWSDK_REPLAY_UNREADABLE also when path or tell is null, and nothing is done
 */
int swsdk_replay(const char* path, swsdk_line_t tell, void* data);

/**
 * Cuts the beginning off a recording: repeats it up to a time like swsdk_replay_all(), without comparing, saves the
 * state of the chips, and writes a recording that begins with it. Not to be called from a callback.
 *
 * @param path        the recording
 * @param nanoseconds as `until` of swsdk_replay_all(); in the new recording, the clock counts from there
 * @param state       file to write for the state (swsdk/state.h); the new recording has its whole path
 * @param write       called with the lines of the new recording
 * @param tell        called with notices and with what is wrong, with file and line
 * @param data        passed to both
 * @return SWSDK_REPLAY_SAME; SWSDK_REPLAY_INCOMPLETE, and the new recording lacks its end, too; or
 *         SWSDK_REPLAY_UNREADABLE, also when the state cannot be written, or path, state or a function is null
 */
int swsdk_recording_cut(const char* path, unsigned long long nanoseconds, const char* state, swsdk_line_t write,
                        swsdk_line_t tell, void* data);

/** Of swsdk_replay_all(): later than any line. */
#define SWSDK_REPLAY_TO_END 0xFFFFFFFFFFFFFFFFULL

/** One answer, or event, of a repeated recording that is not the recorded one. */
typedef struct swsdk_difference {
  int line;             /**< of the recording; 0 for an event that no line has */
  const char* function; /**< what was called, or the type of the callback */
  const char* kind;     /**< "result"; "output NAME", a field of a record; "output N", argument N; "event" */
  const char* recorded; /**< the line of the recording; "" for an event that no line has */
  const char* now;      /**< what came this time; "" for an event that did not come */
} swsdk_difference;

/** Receives a difference, which is valid during the call. */
typedef void (*swsdk_difference_t)(const swsdk_difference* difference, void* data);

/** How much of a recording was repeated. */
typedef struct swsdk_replayed {
  long answers;  /**< answers and events of the recording that were compared */
  long the_same; /**< those that came as recorded */
} swsdk_replayed;

/**
 * Repeats a recording like swsdk_replay(), but to its end or up to a time, and reports every difference. An event of
 * the recording that the chip does not raise by itself, because on the recorded chip it came from outside, is raised: a
 * link that changes, an address that is learned or removed. Not to be called from a callback.
 *
 * @param path     the recording
 * @param until    stops before the first line of a later time, in nanoseconds since the recording began: that of the
 *                 line's stamp or, in a recording of the virtual chip's own, that of the clock since the chips were
 *                 switched on. #SWSDK_REPLAY_TO_END does not stop
 * @param differs  called with each difference, in the order of the lines
 * @param tell     called with notices, and with what is wrong, with file and line
 * @param data     passed to both
 * @param replayed written unless the result is SWSDK_REPLAY_UNREADABLE; null is accepted
 * @return one of the SWSDK_REPLAY_ values; SWSDK_REPLAY_DIFFERENT takes precedence over SWSDK_REPLAY_INCOMPLETE, and
 *         SWSDK_REPLAY_UNREADABLE is also the result when path, differs or tell is null, and nothing is done
 */
int swsdk_replay_all(const char* path, unsigned long long until, swsdk_difference_t differs, swsdk_line_t tell,
                     void* data, swsdk_replayed* replayed);

/**
 * Writes a recording as a C program that makes the same calls. It includes only the SDK's headers, and those of the
 * virtual chip where the recording has faults or actions. It exits with 0 when all results are the recorded ones;
 * otherwise it prints the first that differs and exits with 1.
 *
 * @param path   the recording
 * @param write  called with the lines of the program
 * @param tell   called with notices and with what is wrong, with file and line
 * @param data   passed to both
 * @return SWSDK_REPLAY_SAME; SWSDK_REPLAY_INCOMPLETE, and the program makes the recorded calls; or
 *         SWSDK_REPLAY_UNREADABLE, also when path or a function is null, and the program is unusable
 */
int swsdk_replay_as_c(const char* path, swsdk_line_t write, swsdk_line_t tell, void* data);

#ifdef __cplusplus
}
#endif

#endif
