/**
 * @file shared/error.h
 * Texts of the error codes.
 */
#ifndef SHARED_ERROR_H
#define SHARED_ERROR_H

#ifdef __cplusplus
extern "C" {
#endif

/** The text of code -i at index i, for 0 to 22; at 23 the text of unknown codes. */
extern char* _shr_errmsg[];

#ifdef __cplusplus
}
#endif

#endif
