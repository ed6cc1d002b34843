/**
 * @file soc/knet.h
 * Commands to the kernel network module.
 */
#ifndef SOC_KNET_H
#define SOC_KNET_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The header of each command. */
typedef struct kcom_msg_hdr_s {
  uint8 type;
  uint8 opcode;
  uint8 seqno;
  uint8 status;
  uint32 unit;
} kcom_msg_hdr_t;

/** A command of any kind. */
typedef union kcom_msg_u {
  kcom_msg_hdr_t hdr;
  uint8 bytes[512];
} kcom_msg_t;

/** Sends a command of len bytes; buf_size is the capacity for the answer. */
int soc_knet_cmd_req(kcom_msg_t* kmsg, unsigned int len, unsigned int buf_size);

#ifdef __cplusplus
}
#endif

#endif
