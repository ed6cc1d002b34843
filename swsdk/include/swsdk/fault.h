/**
 * @file swsdk/fault.h
 * Fault injection of the virtual chip: chosen calls return a given code instead of doing their work.
 *
 * A call that hits a fault changes nothing and writes none of its outputs; the journal shows it with the injected
 * code. A call for a unit that does not exist hits no fault. All functions may be called from any thread.
 */
#ifndef SWSDK_FAULT_H
#define SWSDK_FAULT_H

#ifdef __cplusplus
extern "C" {
#endif

/** For `nth`: the fault hits every call. */
#define SWSDK_FAULT_EVERY_CALL 0

/**
 * The environment variable with a file to which a process appends a line for each of its own calls that hits a fault:
 * the name of the SDK's function, and that of the function of libsai.so through which the application made the call, or
 * `-` where there is none, or it cannot be told.
 */
#define SWSDK_FAULT_LOG_VARIABLE "SWSDK_FAULT_LOG"

/**
 * Makes calls of one SDK function fail. A function has one fault at a time; a new one replaces the old.
 *
 * @param function  name of the function, such as "bcm_vlan_create"
 * @param code      what the call returns: usually a negative `BCM_E_*`, but any value is accepted
 * @param nth       1 for the next call, 2 for the one after it, and so on: only that call fails;
 *                  #SWSDK_FAULT_EVERY_CALL: every call fails until the fault is removed
 * @return 0, or -1 when the virtual chip has no such function or nth is negative; nothing is changed then
 */
int swsdk_fault_inject(const char* function, int code, int nth);

/**
 * Names the functions that swsdk_fault_inject() can make fail.
 *
 * @return the name of function number `index`, from 0, or null past the last
 */
const char* swsdk_fault_function(int index);

/** A fault, as it is now. */
typedef struct swsdk_fault {
  int code; /**< what the call returns */
  int nth;  /**< the call that it waits for: 1 for the next, #SWSDK_FAULT_EVERY_CALL for all; -1: it has hit its call */
  int hits; /**< how many calls have hit it */
} swsdk_fault;

/**
 * Tells about the fault of a function, also after it has hit its call.
 *
 * @param function  its name
 * @param fault     written when the result is 0
 * @return 0, or -1 when the function has no fault, or a pointer is null
 */
int swsdk_fault_get(const char* function, swsdk_fault* fault);

/**
 * Removes the fault of one function, and forgets what it has hit.
 *
 * @return 0, or -1 when the function has no fault, or function is null
 */
int swsdk_fault_remove(const char* function);

/** Removes all faults, including those that are still waiting for their call. */
void swsdk_fault_clear(void);

#ifdef __cplusplus
}
#endif

#endif
