/**
 * @file swsdk/frames.h
 * Frames through the virtual chip: what comes in at a port goes out where the chip's tables send it.
 *
 * Frames are Ethernet frames without their checksum, from the destination address on. The chip does its work inside
 * swsdk_frame_send() and swsdk_frames_send(): when they return, every copy has left. Its clock, on which rates, bursts
 * and aging depend, stands still unless it is moved. All functions may be called from any thread.
 */
#ifndef SWSDK_FRAMES_H
#define SWSDK_FRAMES_H

#include <stddef.h>
#include <stdint.h>
#include <swsdk/events.h> /* the clock */

#ifdef __cplusplus
extern "C" {
#endif

/** Why the CPU gets a frame: bits, of which several can be set. */
enum swsdk_cpu_reason {
  SWSDK_CPU_L2_CACHE = 0x1,     /**< an entry of the L2 cache */
  SWSDK_CPU_PROTOCOL = 0x2,     /**< ARP, DHCP, neighbor discovery or reserved multicast, by a switch control */
  SWSDK_CPU_L3_MISS = 0x4,      /**< the router has no route or host for it */
  SWSDK_CPU_L3_ERROR = 0x8,     /**< the router cannot forward it */
  SWSDK_CPU_FIELD = 0x10,       /**< an entry of the field processor */
  SWSDK_CPU_LEARNING = 0x20,    /**< its source was unknown, or exceeded a learn limit */
  SWSDK_CPU_MAC_ENTRY = 0x40,   /**< an entry of the MAC table */
  SWSDK_CPU_DESTINATION = 0x80, /**< it is for the CPU, or flooded to it */
};

/** Names the reason of bit `index` of SWSDK_CPU_*, such as "l2 cache" for 0; null past the last. */
const char* swsdk_cpu_reason_name(int index);

/** What an aggregate has in it. */
enum swsdk_segments_kind {
  SWSDK_TCP_IP4 = 1, /**< TCP segments in IPv4 */
  SWSDK_TCP_IP6 = 2, /**< TCP segments in IPv6 */
  SWSDK_UDP = 3,     /**< UDP datagrams */
};

/**
 * How an aggregate is cut into frames: many segments of one flow that their sender leaves together, as Linux does for
 * an interface with segmentation offload.
 */
typedef struct swsdk_segments {
  int kind;                /**< SWSDK_TCP_IP4, SWSDK_TCP_IP6 or SWSDK_UDP */
  uint16_t payload;        /**< bytes of payload in each segment, at least 1; the last can have fewer */
  uint16_t headers;        /**< bytes at the front, with which each segment begins */
  uint16_t checksum_start; /**< offset of the TCP or UDP header */
  uint16_t checksum_at;    /**< offset of its checksum, where the sum of the pseudo header stands */
} swsdk_segments;

/** A frame that leaves the chip. */
typedef struct swsdk_out {
  int port;                       /**< where it leaves: an Ethernet port, or 0 for the CPU */
  int in_port;                    /**< where it arrived */
  uint32_t cpu;                   /**< why the CPU gets it, SWSDK_CPU_*; 0 at an Ethernet port */
  const uint8_t* data;            /**< the frame; for the CPU always with the tag of its VLAN */
  size_t length;                  /**< its length in bytes */
  const swsdk_segments* segments; /**< of an aggregate, for a handler that takes them; null for a frame */
} swsdk_out;

/**
 * Receives the frames that leave. Runs in the thread that sent the frame, while the unit is locked: it may read the
 * chip, but not send frames.
 *
 * @param out  the frame, valid until the function returns
 */
typedef void (*swsdk_frame_handler)(int unit, const swsdk_out* out, void* user_data);

/**
 * Sets the handler of frames that leave a unit. At load, and after swsdk_power_off(), there is none and they are lost.
 *
 * @param handler    the handler; null for none
 * @param user_data  passed to it
 * @return 0, or -1 when there is no such attached unit
 */
int swsdk_frame_handle(int unit, swsdk_frame_handler handler, void* user_data);

/**
 * The same for a handler that takes aggregates whole. Only swsdk_frames_send() makes them; those for the CPU, and of
 * other processes, are cut.
 *
 * @return 0, or -1 when there is no such attached unit
 */
int swsdk_aggregate_handle(int unit, swsdk_frame_handler handler, void* user_data);

/**
 * Makes a frame arrive. At an Ethernet port it is lost unless the port's link is up; at port 0 it is a frame that the
 * host sends through the CPU port.
 *
 * @param port    an Ethernet port, or 0
 * @param data    the frame
 * @param length  its length in bytes
 * @return 0 when it was forwarded; otherwise the reason: a positive number, for swsdk_drop_name(). A frame that goes
 *         only to the CPU is not forwarded; one whose copies were all lost on their way out has the reason of the
 *         first. -1 when there is no such initialized unit or port, or data is null
 */
int swsdk_frame_send(int unit, int port, const void* data, size_t length);

/** A frame that arrives. */
typedef struct swsdk_in {
  int port;                       /**< where it arrives, as for swsdk_frame_send() */
  const uint8_t* data;            /**< the frame */
  size_t length;                  /**< its length in bytes */
  const swsdk_segments* segments; /**< of an aggregate; null for a frame */
} swsdk_in;

/**
 * Makes frames arrive in order, as swsdk_frame_send() does one by one, but locks the unit only once for all of them. In
 * a recording each is a call of swsdk_frame_send(). Where the chip is in another process, each is a call there, and
 * others may work on the unit in between. What became of a single frame is not told: swsdk_drops() counts the reasons,
 * and a watch (swsdk/watch.h) tells of each frame.
 *
 * An aggregate is forwarded as its frames would be, one by one. It passes as one unless something has to see each
 * frame: a meter, a mirror, the CPU, the learning of its source, a recording or a watch. One that cannot be cut as it
 * says counts as a malformed frame where it has to be.
 *
 * @param frames  the frames; may be null when count is 0. Those for which swsdk_frame_send() returns -1 are left out
 * @param count   their number
 * @return how many of them were forwarded: those for which swsdk_frame_send() returns 0, and aggregates of which a
 *         frame was not dropped; -1 when there is no such initialized unit, count is negative, or frames is null and
 *         count is not 0
 */
int swsdk_frames_send(int unit, const swsdk_in* frames, int count);

/**
 * Tells the way of a frame, which does not come in: nothing changes, no address is learned, and nothing is counted or
 * metered. The lines, of which those of a stage that decided nothing are left out:
 *
 *     in 1: 02000000000202000000000186dd...
 *     assign_vlan: VLAN 10
 *       forwarding: port 1, unknown addresses learn,forward, untagged VLAN 10, goes to {0-12}
 *         call 12: bcm_port_untagged_vlan_set(0, 1, 10) = 0
 *     forward: goes to 2
 *       mac: VLAN 10, MAC 02:00:00:00:00:02, at port 2
 *         learned
 *     out 2: 02000000000202000000000186dd...
 *     passed on
 *
 * Below a stage are the entries that decided, as swsdk_show() shows them, each with the call that made it so: its
 * number among the calls that the chip's process has answered, and its line in the journal, after the name and id of
 * the process that made it if that is another one (swsdk/remote.h). An entry is told once.
 * Below `out PORT: BYTES` and `cpu (REASONS): BYTES` is what the copy met on its way out; `lost PLACE: REASON` is a
 * copy that did not leave: for a port, or a trunk without a link. `out PORT, looped back` is a copy that comes in again
 * there, with an `in` line of its own later. The last line is `passed on`, `trapped to the cpu` for a frame that went
 * to the CPU alone, or `dropped: REASON; to pass it needs ...`.
 *
 * @param port    as for swsdk_frame_send()
 * @param data    the frame
 * @param length  its length in bytes
 * @param buffer  where to print to; always ended by a zero byte when size is not 0; may be null when size is 0
 * @param size    size of the buffer in bytes; what does not fit is left out
 * @return length of the whole text in bytes, without a zero byte; -1 when there is no such initialized unit or port, or
 *         data is null
 */
long swsdk_frame_trace(int unit, int port, const void* data, size_t length, char* buffer, size_t size);

/** A network interface of the host that `bcm_knet_netif_create` created. */
typedef struct swsdk_netif {
  char name[16];
  unsigned char mac[6];
  int keeps_tag; /**< whether the host gets frames with the tag that they have in swsdk_out */
} swsdk_netif;

/**
 * Tells about the network interfaces that connect the host with a unit.
 *
 * @param index  0 for the oldest
 * @return 0, or -1 when there is no such initialized unit or interface, or netif is null
 */
int swsdk_netif_get(int unit, int index, swsdk_netif* netif);

/** Names a reason of swsdk_frame_send(), 1 and up, such as "not a member of the vlan"; null past the last. */
const char* swsdk_drop_name(int reason);

/**
 * Tells how many frames, and copies of frames, a unit has not forwarded for a reason since it was initialized.
 *
 * @param reason  a reason that swsdk_drop_name() names. Those that begin with "egress", "no interface" and
 *                "ttl threshold" are of copies, the others of frames
 * @return the number, or -1 when there is no such initialized unit or reason
 */
long long swsdk_drops(int unit, int reason);

/**
 * The same for one port: that where the frame came in, or where the copy would have left; a copy for a trunk without a
 * link counts where its frame came in. The table `drops` of
 * swsdk_show() has them all.
 *
 * @return the number, or -1 when there is no such initialized unit, port or reason
 */
long long swsdk_port_drops(int unit, int port, int reason);

#ifdef __cplusplus
}
#endif

#endif
