/**
 * @file swsdk/field.h
 * The field processor of the virtual chip: what its entries would do to a frame, and how many frames each has matched.
 *
 * All functions may be called from any thread.
 */
#ifndef SWSDK_FIELD_H
#define SWSDK_FIELD_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The two stages. */
enum swsdk_field_stage {
  SWSDK_FIELD_INGRESS = 0, /**< for arriving frames */
  SWSDK_FIELD_EGRESS = 1,  /**< for departing frames */
};

/** Maximum number of groups in which a frame can match an entry in one stage. */
#define SWSDK_FIELD_HITS_MAX 16

/** Levels of policers of an entry. */
#define SWSDK_FIELD_POLICER_LEVELS 2

/**
 * The fields of a frame as it reaches a stage; begin with all bytes 0. Numbers are in host order.
 *
 * The ether type tells what kind of frame it is: 0x0800 IPv4, 0x86DD IPv6, 0x0806 ARP. Fields that a frame of its kind
 * does not have are not read; entries see 0 in them. The same holds for the L4 ports of frames other than TCP and
 * UDP, and for the ICMP fields of frames other than ICMP (IPv4) and ICMPv6 (IPv6). All other fields count as present;
 * that entries do not match fields which are cut off shows only with swsdk_frame_send().
 */
typedef struct swsdk_frame {
  int in_port;            /**< where it arrived; entries of the ingress stage match it */
  int out_port;           /**< where it leaves; entries of the egress stage match it */
  uint8_t src_mac[6];     /**< source MAC address */
  uint8_t dst_mac[6];     /**< destination MAC address */
  int vlan_format;        /**< tags on arrival: 0 none, 1 outer, 2 inner, 3 both */
  uint16_t outer_tag;     /**< priority (3 bits), CFI (1 bit) and VLAN (12 bits); the VLAN that the chip gave it when
                               it came without a tag */
  uint16_t inner_tag;     /**< the same for the inner tag */
  uint16_t ether_type;    /**< ether type behind the tags */
  uint32_t src_ip;        /**< IPv4 source address */
  uint32_t dst_ip;        /**< IPv4 destination address */
  uint8_t src_ip6[16];    /**< IPv6 source address */
  uint8_t dst_ip6[16];    /**< IPv6 destination address */
  uint8_t ip_protocol;    /**< IPv4 protocol or IPv6 next header */
  uint8_t tos;            /**< IPv4 type of service or IPv6 traffic class, all eight bits */
  uint8_t ttl;            /**< IPv4 time to live or IPv6 hop limit */
  uint16_t l4_src_port;   /**< TCP or UDP source port */
  uint16_t l4_dst_port;   /**< TCP or UDP destination port */
  uint8_t icmp_type;      /**< ICMP or ICMPv6 type */
  uint8_t icmp_code;      /**< ICMP or ICMPv6 code */
  uint32_t arp_target_ip; /**< IPv4 address that an ARP frame asks for or answers to */
} swsdk_frame;

/**
 * What the entries of a stage do to a frame. It matches at most one entry of each group: the one of highest priority,
 * and of several the one that was installed first. Where groups disagree, the group of highest priority decides.
 */
typedef struct swsdk_verdict {
  int hits;                                 /**< number of groups with an entry that the frame matches */
  int groups[SWSDK_FIELD_HITS_MAX];         /**< these groups, highest priority first */
  int entries[SWSDK_FIELD_HITS_MAX];        /**< the entry of each */
  int dropped;                              /**< 1: the frame is dropped, except for a copy to the CPU */
  int drop_cancelled;                       /**< 1: only its VLAN, spanning tree and rates can drop it */
  int red_dropped;                          /**< 1: dropped if its policer finds it red */
  int copied_to_cpu;                        /**< 1: the CPU gets a copy */
  int redirect_port;                        /**< the only port that it goes to, or -1 */
  int priority;                             /**< its new priority, or -1 */
  int policers[SWSDK_FIELD_POLICER_LEVELS]; /**< policers that meter it, by level; 0 for none */
} swsdk_verdict;

/**
 * Looks a frame up in the entries of a stage. Each entry that the frame matches counts a hit.
 *
 * @param unit     number of an initialized unit
 * @param stage    #SWSDK_FIELD_INGRESS or #SWSDK_FIELD_EGRESS
 * @param frame    the frame
 * @param verdict  written when the result is 0
 * @return 0, or -1 when there is no such unit or stage or a pointer is null
 */
int swsdk_field_classify(int unit, int stage, const swsdk_frame* frame, swsdk_verdict* verdict);

/**
 * Tells how many frames have matched an entry since it was last installed; a reinstallation keeps the count.
 *
 * @return the number, or -1 when there is no such initialized unit or entry
 */
long long swsdk_field_hits(int unit, int entry);

#ifdef __cplusplus
}
#endif

#endif
