/**
 * @file swsdk/kernel_commands.h
 * What was sent to the host's kernel module.
 */
#ifndef SWSDK_KERNEL_COMMANDS_H
#define SWSDK_KERNEL_COMMANDS_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reads a command that was sent to the kernel module by `soc_knet_cmd_req`. The last 64 are kept.
 *
 * @param index   0 for the newest, 1 for the one before it, and so on
 * @param buffer  where to copy its bytes to; may be null when size is 0
 * @param size    size of the buffer in bytes; what does not fit is left out
 * @return length of the command in bytes, or 0 when there is none of that index
 */
size_t swsdk_kernel_command(int index, void* buffer, size_t size);

#ifdef __cplusplus
}
#endif

#endif
