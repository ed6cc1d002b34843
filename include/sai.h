/**
 * @file sai.h
 * The interface of libsai.so: plain C functions through which a switch's management application programs its
 * switching chip over the Chip SDK (libswsdk.so).
 *
 * Conventions that hold for every function unless its own comment says otherwise:
 *
 * - `unit` is the Chip SDK's unit number. The library drives one chip; sai_unit_get() gives its number.
 * - `port` is a number of the chip's: 0 is the CPU port, Ethernet ports begin with 1. The chip checks it: -9 (no such
 *   port). The SDK's information on the unit has the numbers, `SOC_PORT_BITMAP(unit, ether)` of `<soc/drv.h>`, which
 *   `BCM_PBMP_ITER` of `<bcm/types.h>` walks and on a board may have gaps. Front ports are those of its set `port`; on
 *   the virtual chip both sets have all Ethernet ports, uplinks among them. Where a function stops at port 8, its
 *   comment says so.
 * - The result is #SAI_E_NONE (0) or a negative code of #sai_result. A code comes from the Chip SDK's result by
 *   sdk_to_sai(), or from the library itself when it refuses an argument without an SDK call.
 * - A failed SDK call, one with a negative result, is logged once, at level "errors", with a message that ends with the
 *   SDK's text for the failure. Where a message ends otherwise, or has no such text, the function's comment says so.
 * - Output arguments are written when the result is 0, and only then. What a function lets the SDK write ("from the SDK
 *   itself") holds, after any other result, whatever the SDK left there.
 * - A positive result of an SDK call, which the SDK is not known to return, is neither failure nor success: it is not
 *   logged and the function continues; where that call decides, the result is -1 and no output is written.
 * - A null pointer is refused with #SAI_E_PARAM, as the Chip SDK refuses one, and logged as a failed SDK call of the
 *   function would be. Where the library itself reads or writes through it, that is before the first SDK call.
 * - Nothing is rolled back. An operation of several steps that fails in the middle leaves what it had done in the chip.
 * - One caller at a time. The library takes no locks and creates no threads; what it remembers between calls is
 *   unguarded: the log with its time stamp, the entry of sai_lldp_set(), the flood groups of sai_vlan_vport_init() and
 *   #hw_counters_table. Threads that share it take turns under the application's lock; the log functions are calls
 *   like all others.
 * - After sai_switch_chip_init() a forked child calls `exec` or `_exit` and nothing of the library. A log line for a
 *   closed pipe raises SIGPIPE, which is the application's to ignore.
 * - Callbacks run on threads of the Chip SDK, at the same time as the application's calls and as each other: those of
 *   links on its link scan thread, those of MAC addresses on its L2 thread. The library only passes their arguments on
 *   there; it remembers and logs nothing. A callback that calls the library is one more caller and takes its turn. One
 *   of links must not wait for a turn, though: sai_port_enable_set() and sai_port_enable_get() pause link scanning, for
 *   which the Chip SDK may wait until the callback has returned. It passes its arguments to another thread instead,
 *   which is best for every callback. A callback that was unregistered may still be running.
 */
#ifndef SAI_H
#define SAI_H

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The Chip SDK's records that callbacks receive, and its addresses. */
#include <bcm/link.h>
#include <bcm/types.h>

/** Marks what libsai.so exports; everything else in it is hidden. */
#define SAI_API __attribute__((visibility("default")))

/* ---------------------------------------------------------------------------------------------- Logging ---------- */

/** Destinations of log messages: the index into sai_log_handle::max_level. */
enum sai_log_destination {
  SAI_LOG_SYSLOG = 0,  /**< the system log */
  SAI_LOG_CONSOLE = 1, /**< standard output */
  SAI_LOG_FILE = 2,    /**< the stream in sai_log_handle::file */
};

/** Levels of log messages: the priorities of syslog. */
enum sai_log_level {
  SAI_LOG_OFF = -1, /**< as a limit: the destination takes nothing */
  SAI_LOG_EMERGENCIES = 0,
  SAI_LOG_ALERTS = 1,
  SAI_LOG_CRITICAL = 2,
  SAI_LOG_ERRORS = 3, /**< the library: every failed SDK call */
  SAI_LOG_WARNINGS = 4,
  SAI_LOG_NOTIFICATIONS = 5,
  SAI_LOG_INFORMATIONAL = 6,
  SAI_LOG_DEBUGGING = 7, /**< the library: traces */
};

/**
 * A log: where messages go and how their lines look. Made by open_sai_log(), ended by close_sai_log(). Between the two
 * the caller may set every field directly.
 *
 * A line of the console and of the file is `2026/11/21 07:24:30.125 errors: NONE: the message`: the local time, its
 * fraction if time_precision is set, the level if show_priority is set, the module, the message. A record of the system
 * log is only the message. Each line is flushed.
 */
typedef struct sai_log_handle {
  FILE* file;             /**< log file opened by the caller, or null; closed by close_sai_log() */
  const char* ident;      /**< syslog identity given to open_sai_log(); neither copied nor freed */
  char* file_name;        /**< name of the log file on the heap, or null; freed by close_sai_log() */
  int32_t module;         /**< index into sai_log_module_names: the name on every file and console line, or "unknown" */
  int32_t facility;       /**< syslog facility, combined with the level of each record */
  int32_t level;          /**< -1 after open_sai_log(); free for the caller, the library never reads it */
  int32_t syslog_options; /**< option bits that were given to the system's openlog */
  int32_t show_priority;  /**< non-zero: file and console lines carry the level's name */
  int32_t time_precision; /**< digits of a second's fraction in the stamp, 0 to 19; any other value: no fraction */
  int32_t max_level[3];   /**< highest level that each destination takes, by #sai_log_destination; -1: none */
} sai_log_handle;

/**
 * The log that all messages use. Null at load; the library never sets it: the caller stores here what open_sai_log()
 * returned. While it is null every message of every level is written to standard error.
 */
extern SAI_API sai_log_handle* sai_log_default;

/** Level names by level, "emergencies" to "debugging", and a null pointer at the end. */
extern SAI_API const char* sai_log_priority[9];

/** Module names by index, "NONE" and "STG", and a null pointer at the end. */
extern SAI_API const char* sai_log_module_names[3];

/**
 * Opens a log and the connection to the system log.
 *
 * The new handle takes no message anywhere until sai_log_set_level() raises a limit, and is not yet the one in use:
 * store it in #sai_log_default.
 *
 * @param ident           identity of the syslog records; must stay valid as long as the log is open
 * @param module          index into #sai_log_module_names, 0 or 1
 * @param syslog_options  option bits of the system's openlog, such as LOG_PID
 * @param facility        syslog facility, such as LOG_USER
 * @return the handle, or null when there is no memory (the system log is not opened then)
 */
SAI_API sai_log_handle* open_sai_log(const char* ident, int32_t module, int32_t syslog_options, int32_t facility);

/**
 * Closes a log: the connection to the system log, then the handle's file, its file name and the handle itself.
 *
 * #sai_log_default is left as it is; clear it when it pointed to this log.
 *
 * @param log  a handle of open_sai_log(), not null
 */
SAI_API void close_sai_log(sai_log_handle* log);

/**
 * Sets the highest level that one destination takes.
 *
 * @param log          the log, or null for #sai_log_default; with neither, nothing happens
 * @param destination  a #sai_log_destination, 0 to 2; not checked
 * @param level        a #sai_log_level, -1 (off) to 7 (everything)
 */
SAI_API void sai_log_set_level(sai_log_handle* log, int32_t destination, int32_t level);

/**
 * Finds a level by the first two letters of its name, so that "de", "deb" and "debugging" are all 7.
 *
 * @param text  the name or its beginning; "notice" finds "notifications"
 * @return the first level of #sai_log_priority whose name begins so, or -1; -1 for a null pointer
 */
SAI_API int32_t sai_level_match(const char* text);

#define SAI_PRINTF __attribute__((format(printf, 1, 2)))

/**
 * Logs a message at level 3, "errors"; none without a format. `errno` stays as it was.
 *
 * @param format  printf format, without a line end
 */
SAI_API void sai_err(const char* format, ...) SAI_PRINTF;

/**
 * Logs a message at level 4, "warnings"; none without a format. `errno` stays as it was.
 *
 * @param format  printf format, without a line end
 */
SAI_API void sai_warn(const char* format, ...) SAI_PRINTF;

/**
 * Logs a message at level 5, "notifications"; none without a format. `errno` stays as it was.
 *
 * @param format  printf format, without a line end
 */
SAI_API void sai_notice(const char* format, ...) SAI_PRINTF;

/**
 * Logs a message at level 6, "informational"; none without a format. `errno` stays as it was.
 *
 * @param format  printf format, without a line end
 */
SAI_API void sai_info(const char* format, ...) SAI_PRINTF;

/**
 * Logs a message at level 7, "debugging"; none without a format. `errno` stays as it was.
 *
 * @param format  printf format, without a line end
 */
SAI_API void sai_debug(const char* format, ...) SAI_PRINTF;

/* ----------------------------------------------------------------------- Result codes, unit, diagnostic shell ---- */

/** Results of the library's functions. */
enum sai_result {
  SAI_E_NONE = 0,       /**< success */
  SAI_E_FAIL = -1,      /**< failure without a code of its own */
  SAI_E_UNAVAIL = -2,   /**< not supported */
  SAI_E_MEMORY = -3,    /**< no memory */
  SAI_E_PARAM = -5,     /**< invalid parameter */
  SAI_E_EXISTS = -6,    /**< item already exists */
  SAI_E_NOT_FOUND = -7, /**< item not found */
  SAI_E_PORT = -9,      /**< invalid port */
  SAI_E_FULL = -13,     /**< table full */
};

/**
 * Converts a result of the Chip SDK to a result of this library.
 *
 * @param rv  SDK result, 0 or a negative `BCM_E_*`
 * @return 0 for 0; the code of #sai_result for no memory, bad parameter, full, not found, exists, unavailable and bad
 *         port; -1 for every other value, positive ones included
 */
SAI_API int32_t sdk_to_sai(int32_t rv);

/**
 * Converts a trunk hash selector to the Chip SDK's port selection criterion.
 *
 * @param selector  0 source IP, 1 destination IP, 9 source MAC, 10 destination MAC, 18 source and destination IP,
 *                  19 source and destination MAC
 * @return the `BCM_TRUNK_PSC_*` value, or 0 for every other selector
 */
SAI_API int32_t sai_hash_to_sdk(uint32_t selector);

/**
 * Gives the number of the unit that the library drives: always 0.
 *
 * @return always 0
 */
SAI_API int32_t sai_unit_get(void);

/**
 * Runs one command line of the Chip SDK's diagnostic shell. Logs nothing.
 *
 * @param unit     SDK unit number
 * @param command  the command line
 * @return 0 when the shell returned 0, -1 for any other value
 */
SAI_API int32_t sai_sh_process_command(int32_t unit, char* command);

/* ----------------------------------------------------------------------------------------- Chip start-up ---------- */

/**
 * Brings the switching chip up, from power-on to forwarding, with the library's fixed policy.
 *
 * Starts the Chip SDK, then for each unit: initializes it, loads the LED program, creates the CPU network interface
 * "ethv0", switches VLAN membership checks on, prepares the multicast tables, VLAN translation and virtual ports, traps
 * control protocols to the CPU, captures slow protocols, keeps unknown floods away from the CPU, and reserves the IPv6
 * multicast addresses ff01::/16 and ff02::/16. To be called once, when the log is open, before any other function that
 * needs the chip; on a chip that is up, it begins anew.
 *
 * Traps of routed, neighbor discovery, DHCP and ARP frames are set on ports up to number 8 only, the front panel;
 * membership checks and floods on every Ethernet port.
 *
 * Every step but the unit's own initialization is tried even if earlier ones failed; failures are logged. Three go to
 * standard output: that of the unit's initialization, which ends the work on this unit, and those of the two
 * steps that reserve IPv6 multicast addresses. In the messages of sai_vlan_vport_init() a full stop follows the SDK's
 * text. The results of `sdk_main` and `bcm_policer_init` are ignored.
 *
 * @param system_mac  the switch's own MAC address, 6 bytes; without it there is no "ethv0", which is logged
 * @return 0, also when there is no unit; or for the last unit the converted result of `system_init` or of setting
 *         `bcmSwitchIpmcSameVlanL3Route`. No other failure, and none of an earlier unit, shows in it.
 */
SAI_API int32_t sai_switch_chip_init(const uint8_t* system_mac);

/* ------------------------------------------------------------------------- Control frames and CPU queues ---------- */

/**
 * Has frames to a MAC address treated as BPDUs and copied to the CPU, from any VLAN and port.
 *
 * @param mac    destination MAC address to match, 6 bytes
 * @param index  receives the index of the entry, for sai_bpdu_unset(); written on success only
 * @return 0, or the converted result of `bcm_l2_cache_set`, -13 (table full) among them
 */
SAI_API int32_t sai_bpdu_set(int32_t unit, const uint8_t* mac, int32_t* index);

/**
 * Removes what sai_bpdu_set() installed.
 *
 * @param index  index of the entry
 * @return 0, or the converted result of `bcm_l2_cache_delete`: -5 (no such index), -7 (no entry there)
 */
SAI_API int32_t sai_bpdu_unset(int32_t unit, int32_t index);

/**
 * Has LLDP frames, to 01:80:c2:00:00:0e, copied to the CPU. The library remembers one entry: after a second call the
 * first entry can no longer be removed by sai_lldp_unset().
 *
 * @return 0, or the converted result of `bcm_l2_cache_set`, -13 (table full) among them
 */
SAI_API int32_t sai_lldp_set(int32_t unit);

/**
 * Removes the entry of the last sai_lldp_set(), whatever its unit was; without one, the entry of index 0. The index is
 * remembered beyond the call.
 *
 * @return 0, or the converted result of `bcm_l2_cache_delete`, -7 (no entry there) among them
 */
SAI_API int32_t sai_lldp_unset(int32_t unit);

/** Scheduling modes of sai_cosq_sched_set(). */
enum sai_cosq_mode {
  SAI_COSQ_STRICT = 0,
  SAI_COSQ_WEIGHTED_ROUND_ROBIN = 1,
  SAI_COSQ_DEFICIT_ROUND_ROBIN = 2,
};

/**
 * Chooses how the queues towards the CPU are scheduled.
 *
 * @param mode     a #sai_cosq_mode; any other value is taken as a mode of the SDK
 * @param weights  weight of each queue, as many as the SDK has CoS queues; neither checked nor copied
 * @param delay    passed to the SDK as it is
 * @return 0, or the converted result of `bcm_cosq_sched_set`, -5 (no such mode) among them
 */
SAI_API int32_t sai_cosq_sched_set(int32_t unit, int32_t mode, const int32_t* weights, int32_t delay);

/* -------------------------------------------------------------------------------- CPU network interfaces ---------- */

/**
 * Creates a kernel network interface whose frames enter the chip as if received on the CPU port. Frames that the host
 * receives on it keep their tag.
 *
 * @param netif_id  id of the interface
 * @param name      its name; what is longer than 15 characters is cut
 * @param mac       its MAC address, 6 bytes
 * @return 0, or the converted result of `bcm_knet_netif_create`: -6 (a name that is taken), -13 (table full)
 */
SAI_API int32_t sai_knet_netif_init(int32_t unit, int32_t netif_id, const char* name, const uint8_t* mac);

/**
 * Sends a tag command to the kernel module, of which there is one per host.
 *
 * @param command  command selector, 36996 to 37011; others, and those without a meaning, are sent as opcode 0
 * @param value    the command's value
 * @return 0, or -1 when the command could not be sent, whatever the SDK's code
 */
SAI_API int32_t sai_knet_ktag_set(int32_t command, uint32_t value);

/**
 * Sends a VLAN command to the kernel module, of which there is one per host.
 *
 * @param command  command selector, 37008 or 37009; others are sent as opcode 0
 * @param value1   the command's first value
 * @param value2   the command's second value
 * @return 0, or -1 when the command could not be sent, whatever the SDK's code
 */
SAI_API int32_t sai_knet_vlan_set(int32_t command, uint32_t value1, uint32_t value2);

/* ------------------------------------------------------------------------------------------- Serial LEDs ---------- */

/**
 * Loads "/usr/sbin/bcm956275k.hex" into both LED processors of a unit and starts them. A command that fails is logged
 * and ends the work on that processor; the message is the command, without a text of the SDK's.
 */
SAI_API void sai_serial_led_config(int32_t unit);

/* ------------------------------------------------------------------------------------------------ Events ---------- */

/**
 * The caller's function for changes of the MAC table. Runs on a thread of the Chip SDK.
 *
 * @param vid        VLAN of the address
 * @param port       its port; the gport of a virtual port; 0 for an address on a trunk, which sai_l2_addr_show() names
 *                   unless the address is static
 * @param mac        the address, 6 bytes, valid during the call only
 * @param operation  `BCM_L2_CALLBACK_DELETE` (0): the address left the table; `BCM_L2_CALLBACK_ADD` (1): it entered it
 */
typedef void (*sai_l2_event_cb)(uint16_t vid, int32_t port, uint8_t* mac, int32_t operation);

/**
 * Has a function called when a link of any unit goes up or down. It runs on the Chip SDK's link scan thread. To be
 * called after sai_switch_chip_init(): units that are not attached yet are passed over.
 *
 * The function is one of the SDK's type, `void handler(int unit, bcm_port_t port, bcm_port_info_t* info)`: the unit and
 * the port number, and a record, valid during the call only, whose `linkstatus` is 1 for a link that went up and 0 for
 * one that went down.
 *
 * Links that are up already bring no event: ask for them with sai_port_link_status_get() afterwards. A link that goes
 * down brings no event of the addresses at its port, which stay in the MAC table.
 *
 * Nothing ends that; it goes with the process. A further call with the same function is another try for the units that
 * refused it; the others log that it exists, and go on to call it once for each event.
 *
 * @param handler  the function
 * @return always 0; a unit that refuses is logged, and its links can then only be asked for, with
 *         sai_port_link_status_get()
 */
SAI_API int32_t sai_register_link_service(bcm_linkscan_handler_t handler);

/**
 * Has a function called when an address enters or leaves the MAC table. It runs on the Chip SDK's L2 thread. To be
 * called after sai_switch_chip_init(). Addresses that are there already bring no event: read them with
 * sai_l2_addr_show() afterwards.
 *
 * @param callback  the function; null is accepted, and its events are dropped
 * @return 0, or the converted result of `bcm_l2_addr_register`
 */
SAI_API int32_t sai_register_l2_service(int32_t unit, sai_l2_event_cb callback);

/**
 * Ends what sai_register_l2_service() began. A failure is logged with the words of that function.
 *
 * @param callback  the same function
 * @return 0, or the converted result of `bcm_l2_addr_unregister`, -7 (was not registered) among them
 */
SAI_API int32_t sai_unregister_l2_service(int32_t unit, sai_l2_event_cb callback);

/* ------------------------------------------------------------------------------------------- Port attributes ------ */

/**
 * Enables or disables a port. Link scanning pauses meanwhile. While a port is disabled, its link is down; what that
 * changes is an event for the function of sai_register_link_service(), after the pause.
 *
 * @param port    port number
 * @param enable  1: enabled, 0: disabled
 * @return 0, or the converted result of `bcm_port_enable_set`
 */
SAI_API int32_t sai_port_enable_set(int32_t unit, int32_t port, int32_t enable);

/**
 * Tells whether a port is enabled. Link scanning pauses meanwhile.
 *
 * @param port    port number
 * @param enable  receives 1 or 0, from the SDK itself
 * @return 0, or the converted result of `bcm_port_enable_get`; its message shows the low half of the address `enable`
 */
SAI_API int32_t sai_port_enable_get(int32_t unit, int32_t port, int32_t* enable);

/**
 * Switches the autonegotiation of a port. Speed and duplex are set after it was switched off: the virtual chip also
 * switches it off when either is set, and takes the port's highest speed when it is switched on.
 *
 * @param port     port number
 * @param autoneg  1: on, 0: off
 * @return 0, or the converted result of `bcm_port_autoneg_set`
 */
SAI_API int32_t sai_port_autoneg_set(int32_t unit, int32_t port, int32_t autoneg);

/**
 * Tells whether a port autonegotiates.
 *
 * @param port     port number
 * @param autoneg  receives 1 or 0, from the SDK itself
 * @return 0, or the converted result of `bcm_port_autoneg_get`; its message ends with the bytes of `*autoneg` up to the
 *         first that is zero, not with the SDK's text
 */
SAI_API int32_t sai_port_autoneg_get(int32_t unit, int32_t port, int32_t* autoneg);

/**
 * Sets the duplex mode of a port, whose autonegotiation is off.
 *
 * @param port    port number
 * @param duplex  0: half, 1: full
 * @return 0, or the converted result of `bcm_port_duplex_set`
 */
SAI_API int32_t sai_port_duplex_set(int32_t unit, int32_t port, int32_t duplex);

/**
 * Reads the duplex mode of a port.
 *
 * @param port    port number
 * @param duplex  receives 0 (half) or 1 (full), from the SDK itself
 * @return 0, or the converted result of `bcm_port_duplex_get`; its message ends with the bytes of `*duplex` up to the
 *         first that is zero, not with the SDK's text
 */
SAI_API int32_t sai_port_duplex_get(int32_t unit, int32_t port, int32_t* duplex);

/**
 * Sets the speed of a port, whose autonegotiation is off.
 *
 * @param port   port number
 * @param speed  speed in Mb/s; checked by the chip. On the virtual chip 10, 100 and 1000 for ports 1 to 8, 1000 and
 *               10000 for the others, 0 for the highest
 * @return 0, or the converted result of `bcm_port_speed_set`, -5 (a speed that the port does not have) among them
 */
SAI_API int32_t sai_port_speed_set(int32_t unit, int32_t port, int32_t speed);

/**
 * Reads the speed of a port.
 *
 * @param port   port number
 * @param speed  receives the speed in Mb/s, from the SDK itself
 * @return 0, or the converted result of `bcm_port_speed_get`; its message ends with the bytes of `*speed` up to the
 *         first that is zero, not with the SDK's text
 */
SAI_API int32_t sai_port_speed_get(int32_t unit, int32_t port, int32_t* speed);

/**
 * Switches the pause frames of a port, each way by itself.
 *
 * @param port      port number
 * @param pause_tx  1: the port sends them, 0: it does not
 * @param pause_rx  1: the port obeys them, 0: it does not
 * @return 0, or the converted result of `bcm_port_pause_set`
 */
SAI_API int32_t sai_port_pause_set(int32_t unit, int32_t port, int32_t pause_tx, int32_t pause_rx);

/**
 * Sets the longest frame that a port accepts.
 *
 * @param port  port number
 * @param size  length in bytes, with the checksum and without a tag; 64 to 9216 on the virtual chip, where a tagged
 *              frame may be 4 bytes longer, the length holds for frames that leave too, and start-up leaves 9216
 * @return 0, or the converted result of `bcm_port_frame_max_set`
 */
SAI_API int32_t sai_port_frame_max_set(int32_t unit, int32_t port, int32_t size);

/**
 * Sets what a port does with frames from addresses that it does not know.
 *
 * @param port   port number
 * @param flags  `BCM_PORT_LEARN_*` bits: 0x1 learn the address, 0x2 copy to the CPU, 0x4 forward
 * @return 0, or the converted result of `bcm_port_learn_set`
 */
SAI_API int32_t sai_port_learn_set(int32_t unit, int32_t port, int32_t flags);

/**
 * Reads what sai_port_learn_set() sets.
 *
 * @param port   port number
 * @param flags  receives `BCM_PORT_LEARN_*` bits, from the SDK itself
 * @return 0, or the converted result of `bcm_port_learn_get`; its message shows the low half of the address `flags`
 */
SAI_API int32_t sai_port_learn_get(int32_t unit, int32_t port, int32_t* flags);

/**
 * Sets the kind of interface between a port and its PHY.
 *
 * Link state, autonegotiation, speed and both advertisements of the port are also set, as the SDK initializes them.
 *
 * @param port  port number
 * @param mode  an interface of the SDK's `bcm_port_if_t`
 * @return 0, or the converted result of `bcm_port_selective_set`
 */
SAI_API int32_t sai_port_interface_set(int32_t unit, int32_t port, int32_t mode);

/**
 * Reads the kind of interface between a port and its PHY.
 *
 * @param port  port number
 * @param mode  receives an interface of the SDK's `bcm_port_if_t`; written on success only
 * @return 0, or the converted result of `bcm_port_interface_get`; its message shows the low half of the address `mode`
 */
SAI_API int32_t sai_port_interface_get(int32_t unit, int32_t port, int32_t* mode);

/**
 * Sets the VLAN of a port's untagged frames.
 *
 * @param port  port number
 * @param vlan  VLAN id, 1 to 4095; checked by the chip
 * @return 0, or the converted result of `bcm_port_untagged_vlan_set`
 */
SAI_API int32_t sai_port_untagged_vlan_set(int32_t unit, int32_t port, uint16_t vlan);

/**
 * Tells whether the link of a port is up.
 *
 * @param port  port number
 * @param up    receives 1 or 0; written on success only
 * @return 0, or the converted result of `bcm_port_link_status_get`
 */
SAI_API int32_t sai_port_link_status_get(int32_t unit, int32_t port, int32_t* up);

/**
 * Loops a port back to itself.
 *
 * @param port  port number
 * @param mode  0 none, 1 in the MAC, 2 in the PHY; any other is logged and refused without asking the chip
 * @return 0; -1 for another mode; or the converted result of `bcm_port_loopback_set`
 */
SAI_API int32_t sai_port_loopback_set(int32_t unit, int32_t port, int32_t mode);

/**
 * Keeps what a port receives from one other port. Calls add up. Each is one way: what `target` receives still goes to
 * `port`.
 *
 * @param port    port number
 * @param target  the port that no longer receives anything of `port`, 0 to 255
 * @return 0; -5 for another target; or the converted result of the failed `bcm_port_egress_get` or
 *         `bcm_port_egress_set`; nothing is written when the get failed or the target is refused
 */
SAI_API int32_t sai_port_isolate_set(int32_t unit, int32_t port, int32_t target);

/**
 * Lets what a port receives go to every front port again, which are those of unit 0 whatever the unit. The set is the
 * SDK's; on the virtual chip it has all Ethernet ports. The CPU port is not in it, which does not keep frames from the
 * CPU there.
 *
 * @param port  port number
 * @return 0, or the converted result of `bcm_port_egress_set`
 */
SAI_API int32_t sai_port_isolate_reset(int32_t unit, int32_t port);

/**
 * Gives untagged frames of one protocol that a port receives a VLAN of their own.
 *
 * @param port        port number
 * @param frame_type  how a frame carries the protocol, checked by the chip; on the virtual chip 1: Ethernet II, 2: SNAP
 *                    behind an LLC header, 4: LLC
 * @param ether_type  Ethernet type; of LLC the two access points, the destination's first
 * @param vlan        VLAN id, 1 to 4095; checked by the chip
 * @return 0, or the converted result of `bcm_port_protocol_vlan_add`
 */
SAI_API int32_t sai_port_protocol_vlan_add(int32_t unit, int32_t port, int32_t frame_type, uint16_t ether_type,
                                           uint16_t vlan);

/**
 * Deletes what sai_port_protocol_vlan_add() added.
 *
 * @param port        port number
 * @param frame_type  as it was added
 * @param ether_type  as it was added
 * @return 0, or the converted result of `bcm_port_protocol_vlan_delete`
 */
SAI_API int32_t sai_port_protocol_vlan_del(int32_t unit, int32_t port, int32_t frame_type, uint16_t ether_type);

/**
 * Deletes all that sai_port_protocol_vlan_add() added to a port.
 *
 * @param port  port number
 * @return 0, or the converted result of `bcm_port_protocol_vlan_delete_all`; its message shows the low half of the
 *         address of the SDK's text in place of the port, and ends with that text's number, 1 to 23
 */
SAI_API int32_t sai_port_protocol_vlan_clear(int32_t unit, int32_t port);

/**
 * Switches whether a port looks up the VLAN of untagged frames by their source MAC address.
 *
 * @param port    port number
 * @param enable  1: it does, 0: it does not
 * @return 0, or the converted result of `bcm_vlan_control_port_set`
 */
SAI_API int32_t sai_port_mac_vlan_set(int32_t unit, int32_t port, uint8_t enable);

/**
 * Tells what sai_port_mac_vlan_set() sets.
 *
 * @param port     port number
 * @param enabled  receives 1 or 0; written on failure too, with 0 unless the SDK gave a value anyway
 * @return 0, or the converted result of `bcm_vlan_control_port_get`
 */
SAI_API int32_t sai_port_mac_vlan_get(int32_t unit, int32_t port, uint8_t* enabled);

/**
 * Switches whether a port looks up the VLAN of untagged frames by their source IP address.
 *
 * @param port    port number
 * @param enable  1: it does, 0: it does not
 * @return 0, or the converted result of `bcm_vlan_control_port_set`
 */
SAI_API int32_t sai_port_subnet_vlan_set(int32_t unit, int32_t port, uint8_t enable);

/**
 * Tells what sai_port_subnet_vlan_set() sets.
 *
 * @param port     port number
 * @param enabled  receives 1 or 0; written on failure too, with 0 unless the SDK gave a value anyway
 * @return 0, or the converted result of `bcm_vlan_control_port_get`
 */
SAI_API int32_t sai_port_subnet_vlan_get(int32_t unit, int32_t port, uint8_t* enabled);

/** What sai_vlan_precedence_set() prefers. */
enum sai_vlan_precedence {
  SAI_VLAN_PRECEDENCE_MAC = 1,
  SAI_VLAN_PRECEDENCE_SUBNET = 2,
};

/**
 * Chooses which VLAN a frame gets that has one by its MAC address and another by its IP address.
 *
 * @param port  port number
 * @param mode  a #sai_vlan_precedence; any other value is refused without asking the chip, and not logged
 * @return 0; -1 for another mode; or the converted result of `bcm_vlan_control_port_set`
 */
SAI_API int32_t sai_vlan_precedence_set(int32_t unit, int32_t port, int32_t mode);

/**
 * Sets the gap between the frames that a port sends, at the speed and duplex that it has now.
 *
 * @param port  port number
 * @param ifg   gap in bit times
 * @return 0, or the converted result of the failed `bcm_port_speed_get`, `bcm_port_duplex_get` or `bcm_port_ifg_set`
 */
SAI_API int32_t sai_port_ifg_set(int32_t unit, int32_t port, int32_t ifg);

/**
 * Reads the gap between the frames that a port sends, at the speed and duplex that it has now.
 *
 * @param port  port number
 * @param ifg   receives the gap in bit times, from the SDK itself
 * @return 0, or the converted result of the failed `bcm_port_speed_get`, `bcm_port_duplex_get` or `bcm_port_ifg_get`
 */
SAI_API int32_t sai_port_ifg_get(int32_t unit, int32_t port, int32_t* ifg);

/* ---------------------------------------------------------------------------------- Rates and storm control ------ */

/**
 * Limits the multicast frames that a port receives.
 *
 * @param port    port number
 * @param enable  1 or more: limited; 0 or less: not limited
 * @param rate    frames per second, given to the chip either way
 * @return 0, or the converted result of `bcm_rate_mcast_set`
 */
SAI_API int32_t sai_rate_mcast_set(int32_t unit, int32_t port, int32_t enable, uint32_t rate);

/**
 * Limits the unicast frames to unknown destinations that a port receives.
 *
 * @param port    port number
 * @param enable  1 or more: limited; 0 or less: not limited
 * @param rate    frames per second, given to the chip either way
 * @return 0, or the converted result of `bcm_rate_dlfbc_set`
 */
SAI_API int32_t sai_rate_dlfbc_set(int32_t unit, int32_t port, int32_t enable, uint32_t rate);

/**
 * Limits the broadcast frames that a port receives. What exceeds the limit is lost for the CPU as well, ARP requests
 * among it.
 *
 * @param port    port number
 * @param enable  1 or more: limited; 0 or less: not limited
 * @param rate    frames per second, given to the chip either way
 * @return 0, or the converted result of `bcm_rate_bcast_set`
 */
SAI_API int32_t sai_rate_bcast_set(int32_t unit, int32_t port, int32_t enable, uint32_t rate);

/** A storm control request, passed by value as one 64-bit quantity. */
typedef struct sai_storm_ctrl {
  uint32_t rate; /**< frames per second */
  uint32_t type; /**< which frames: `BCM_RATE_DLF` (1), `BCM_RATE_MCAST` (2) or `BCM_RATE_BCAST` (4) */
} sai_storm_ctrl;

/**
 * Limits one kind of frames that a port receives. The limit is ended by the function for its kind:
 * sai_rate_mcast_set(), sai_rate_bcast_set() or sai_rate_dlfbc_set().
 *
 * @param port     port number; its low 16 bits count
 * @param request  kind and rate; of an unknown kind the chip is not asked
 * @return 0, also for an unknown kind; or the converted result of `bcm_rate_mcast_set`, `bcm_rate_bcast_set` or
 *         `bcm_rate_dlfbc_set`
 */
SAI_API int32_t sai_port_storm_ctrl_set(int32_t unit, int32_t port, sai_storm_ctrl request);

/**
 * Shapes what goes to the CPU, which is port 0.
 *
 * @param rate   rate in kbit/s
 * @param burst  burst in kbit
 * @return 0, or the converted result of `bcm_port_rate_egress_set`; its message ends with the rate, not with the SDK's
 *         text
 */
SAI_API int32_t sai_cpu_rate_egress_set(int32_t unit, uint32_t rate, uint32_t burst);

/**
 * Reads what sai_cpu_rate_egress_set() sets.
 *
 * @param rate   receives the rate in kbit/s; written on success only
 * @param burst  receives the burst in kbit; written on success only
 * @return 0, or the converted result of `bcm_port_rate_egress_get`
 */
SAI_API int32_t sai_cpu_rate_egress_get(int32_t unit, uint32_t* rate, uint32_t* burst);

/**
 * Shapes what a port sends. There is no limit after start-up.
 *
 * @param port   port number; its low 16 bits count
 * @param rate   rate in kbit/s; 0: no limit
 * @param burst  burst in kbit
 * @return 0, or the converted result of `bcm_port_rate_egress_set`
 */
SAI_API int32_t sai_port_rate_egress_set(int32_t unit, int32_t port, uint32_t rate, uint32_t burst);

/**
 * Reads what sai_port_rate_egress_set() sets.
 *
 * @param port   port number; its low 16 bits count
 * @param rate   receives the rate in kbit/s; written on success only
 * @param burst  receives the burst in kbit; written on success only
 * @return 0, or the converted result of `bcm_port_rate_egress_get`
 */
SAI_API int32_t sai_port_rate_egress_get(int32_t unit, int32_t port, uint32_t* rate, uint32_t* burst);

/**
 * Shapes what a port sends, by frames.
 *
 * @param port   port number; its low 16 bits count
 * @param pps    rate in frames per second; 0: no limit
 * @param burst  burst in frames
 * @return 0, or the converted result of `bcm_port_rate_egress_pps_set`
 */
SAI_API int32_t sai_port_rate_egress_pps_set(int32_t unit, int32_t port, uint32_t pps, uint32_t burst);

/**
 * Reads what sai_port_rate_egress_pps_set() sets.
 *
 * @param port   port number; its low 16 bits count
 * @param pps    receives the rate in frames per second; written on success only
 * @param burst  receives the burst in frames; written on success only
 * @return 0, or the converted result of `bcm_port_rate_egress_pps_get`
 */
SAI_API int32_t sai_port_rate_egress_pps_get(int32_t unit, int32_t port, uint32_t* pps, uint32_t* burst);

/**
 * Polices what a port receives. There is no limit after start-up.
 *
 * @param port   port number; its low 16 bits count
 * @param rate   rate in kbit/s; 0: no limit
 * @param burst  burst in kbit: what may come at once; a frame that is longer is lost
 * @return 0, or the converted result of `bcm_port_rate_ingress_set`
 */
SAI_API int32_t sai_port_rate_ingress_set(int32_t unit, int32_t port, uint32_t rate, uint32_t burst);

/**
 * Reads what sai_port_rate_ingress_set() sets.
 *
 * @param port   port number; its low 16 bits count
 * @param rate   receives the rate in kbit/s; written on success only
 * @param burst  receives the burst in kbit; written on success only
 * @return 0, or the converted result of `bcm_port_rate_ingress_get`
 */
SAI_API int32_t sai_port_rate_ingress_get(int32_t unit, int32_t port, uint32_t* rate, uint32_t* burst);

/* ------------------------------------------------------------------------------------------ PHYs and SerDes ------ */

/**
 * Reads a PHY register by its MDIO address, clause 22.
 *
 * @param phy_addr  MDIO address of the PHY, as the board is wired; checked by the chip
 * @param reg       register number, 0 to 31
 * @param data      receives the register, from the SDK itself
 * @return 0, or the converted result of `soc_miim_read`
 */
SAI_API int32_t sai_phy_miim_read(int32_t unit, uint16_t phy_addr, uint8_t reg, uint16_t* data);

/**
 * Writes a PHY register by its MDIO address, clause 22.
 *
 * @param phy_addr  MDIO address of the PHY, as the board is wired; checked by the chip
 * @param reg       register number, 0 to 31
 * @param data      what to write
 * @return 0, or the converted result of `soc_miim_write`
 */
SAI_API int32_t sai_phy_miim_write(int32_t unit, uint16_t phy_addr, uint8_t reg, uint16_t data);

/**
 * Reads a PHY register by its MDIO address, clause 45.
 *
 * @param phy_addr  MDIO address of the PHY, as the board is wired; checked by the chip
 * @param devad     device in the PHY, 0 to 31
 * @param reg       register number; its low 8 bits count, so that registers above 255 cannot be reached
 * @param data      receives the register, from the SDK itself
 * @return 0, or the converted result of `soc_miimc45_read`
 */
SAI_API int32_t sai_phy_miimc45_read(int32_t unit, uint16_t phy_addr, uint8_t devad, uint16_t reg, uint16_t* data);

/**
 * Writes a PHY register by its MDIO address, clause 45.
 *
 * @param phy_addr  MDIO address of the PHY, as the board is wired; checked by the chip
 * @param devad     device in the PHY, 0 to 31
 * @param reg       register number; its low 8 bits count, so that registers above 255 cannot be reached
 * @param data      what to write
 * @return 0, or the converted result of `soc_miimc45_write`
 */
SAI_API int32_t sai_phy_miimc45_write(int32_t unit, uint16_t phy_addr, uint8_t devad, uint16_t reg, uint16_t data);

/**
 * Reads a register of a port's PHY.
 *
 * @param port  port number
 * @param reg   register number, in the SDK's default register space
 * @param data  receives the register, from the SDK itself
 * @return 0, or the converted result of `bcm_port_phy_get`
 */
SAI_API int32_t sai_port_phy_read(int32_t unit, int32_t port, uint32_t reg, uint32_t* data);

/**
 * Writes a register of a port's PHY.
 *
 * @param port  port number
 * @param reg   register number, in the SDK's default register space
 * @param data  what to write
 * @return 0, or the converted result of `bcm_port_phy_set`
 */
SAI_API int32_t sai_port_phy_write(int32_t unit, int32_t port, uint32_t reg, uint32_t data);

/**
 * Sets the taps of a port's transmit filter. Each is tried, whatever became of the others.
 *
 * @param port   port number
 * @param pre    tap before the main one; all values are passed to the PHY as they are
 * @param main   main tap
 * @param post   first tap after it
 * @param post2  second tap after it
 * @param post3  third tap after it
 * @return 0, or the converted result of the last `bcm_port_phy_control_set`, that of post3; the others are only logged
 */
SAI_API int32_t sai_port_phy_tx_fir_set(int32_t unit, int32_t port, uint32_t pre, uint32_t main, uint32_t post,
                                        uint32_t post2, uint32_t post3);

/**
 * Reads the taps of a port's transmit filter. Each is tried, whatever became of the others.
 *
 * @param port  port number
 * @param fir   receives 5 values from the SDK itself: pre, main, post, post2, post3
 * @return 0, or the converted result of the last `bcm_port_phy_control_get`, that of post3; the others are only logged
 */
SAI_API int32_t sai_port_phy_tx_fir_get(int32_t unit, int32_t port, uint32_t fir[5]);

/**
 * Switches the forward error correction of a port, if its speed can be read.
 *
 * @param port      port number
 * @param fec_type  1 the basic one, 2 clause 91, 3 clause 108; any other value means 1
 * @param value     passed to the PHY as it is
 * @return 0, or the converted result of the failed `bcm_port_speed_get` or `bcm_port_phy_control_set`; nothing is
 *         written when the get failed
 */
SAI_API int32_t sai_port_phy_fec_set(int32_t unit, int32_t port, int32_t fec_type, uint32_t value);

/**
 * Reads the forward error correction of a port.
 *
 * @param port      port number
 * @param fec_type  1 the basic one, 2 clause 91, 3 clause 108; any other value means 1
 * @param value     receives the setting, from the SDK itself
 * @return 0, or the converted result of `bcm_port_phy_control_get`
 */
SAI_API int32_t sai_port_phy_fec_get(int32_t unit, int32_t port, int32_t fec_type, uint32_t* value);

/**
 * Switches the decision feedback equalizer of a port.
 *
 * @param port      port number
 * @param dfe_type  1 the full one, 2 the low-power one, 3 that of `BCM_PORT_PHY_CONTROL_FIRMWARE_BR_DFE_ENABLE`; any
 *                  other value means 1
 * @param value     passed to the PHY as it is
 * @return 0, or the converted result of `bcm_port_phy_control_set`
 */
SAI_API int32_t sai_port_phy_dfe_set(int32_t unit, int32_t port, int32_t dfe_type, uint32_t value);

/**
 * Reads the decision feedback equalizer of a port.
 *
 * @param port      port number
 * @param dfe_type  1 the full one, 2 the low-power one, 3 that of `BCM_PORT_PHY_CONTROL_FIRMWARE_BR_DFE_ENABLE`; any
 *                  other value means 1
 * @param value     receives the setting, from the SDK itself
 * @return 0, or the converted result of `bcm_port_phy_control_get`
 */
SAI_API int32_t sai_port_phy_dfe_get(int32_t unit, int32_t port, int32_t dfe_type, uint32_t* value);

/**
 * Sets one of a port's receive filters, if its speed can be read.
 *
 * @param port     port number
 * @param pf_type  1 peak filter, 2 low-frequency peak filter, 3 variable gain amplifier; any other value means 1
 * @param value    passed to the PHY as it is
 * @return 0, or the converted result of the failed `bcm_port_speed_get` or `bcm_port_phy_control_set`; nothing is
 *         written when the get failed
 */
SAI_API int32_t sai_port_phy_rx_pf_set(int32_t unit, int32_t port, int32_t pf_type, uint32_t value);

/**
 * Reads all receive filters of a port. Each is tried, whatever became of the others.
 *
 * @param port  port number
 * @param pf    receives 3 values from the SDK itself: peak filter, low-frequency peak filter, variable gain amplifier
 * @return 0, or the converted result of the last `bcm_port_phy_control_get`, that of the amplifier; the others are only
 *         logged
 */
SAI_API int32_t sai_port_phy_rx_pf_get(int32_t unit, int32_t port, uint32_t pf[3]);

/**
 * Sets one of a port's receive taps.
 *
 * @param port   port number
 * @param tap    1 to 6; any other value means 1
 * @param value  passed to the PHY as it is
 * @return 0, or the converted result of `bcm_port_phy_control_set`
 */
SAI_API int32_t sai_port_phy_rxtap_set(int32_t unit, int32_t port, int32_t tap, uint32_t value);

/**
 * Reads all receive taps of a port. Each is tried, whatever became of the others.
 *
 * @param port  port number
 * @param taps  receives 6 values from the SDK itself, taps 1 to 6
 * @return 0, or the converted result of the last `bcm_port_phy_control_get`, that of tap 6; the others are only logged
 */
SAI_API int32_t sai_port_phy_rxtap_get(int32_t unit, int32_t port, uint32_t taps[6]);

/* ------------------------------------------------------------------------------------------- Port statistics ------ */

/** A counter that sai_port_mib_read() reads. */
typedef struct sai_hw_counter {
  uint32_t index; /**< the row's own position in #hw_counters_table */
  uint32_t stat;  /**< number of the SDK's statistic */
  uint64_t value; /**< what was last read, of whichever port; 0 at load */
} sai_hw_counter;

/**
 * The counters of sai_port_mib_read() in their order: octets, frames, unicast, multicast, broadcast, discards, errors
 * and pause frames received; the same eight sent; CRC and alignment errors; collisions.
 */
extern SAI_API sai_hw_counter hw_counters_table[18];

/**
 * Prints every counter of a port to standard output, a line each: value, name and number.
 *
 * Values that do not fit in 32 bits are hexadecimal, the others decimal. A counter that cannot be read is left out and
 * not logged.
 *
 * @param port  port number
 * @return 0, or the converted result of the failed `bcm_stat_sync`, before which nothing is printed, or of the last
 *         `bcm_stat_get`
 */
SAI_API int32_t sai_port_stat_show(int32_t unit, int32_t port);

/**
 * Clears the counters of a port.
 *
 * @param port  port number
 * @return 0, or the converted result of `bcm_stat_clear`
 */
SAI_API int32_t sai_port_stat_clean(int32_t unit, int32_t port);

/**
 * Clears the counters of every Ethernet port of a unit. Each is tried, whatever became of the others.
 *
 * @return 0, also when there is no port; or the converted result of the last `bcm_stat_clear`; the others are only
 *         logged
 */
SAI_API int32_t sai_stat_clean(int32_t unit);

/**
 * Reads the 18 counters of #hw_counters_table.
 *
 * A counter that cannot be read returns the value that was last read, even from another port. That is not logged.
 *
 * @param port    port number
 * @param values  receives 18 values, in the order of the table
 * @return 0, whatever could not be read; -5 for a null pointer, not logged
 */
SAI_API int32_t sai_port_mib_read(int32_t unit, int32_t port, uint64_t values[18]);

/* ----------------------------------------------------------------------------------------------- Temperature ------ */

/**
 * Reads the chip's temperature sensors, as two texts in degrees Celsius with one decimal.
 *
 * The sign of a temperature between -1 and 0 degree is lost. Of chip type 50 the last sensor is left out. No more than
 * 160 sensors are read. A failure is logged with the words of sai_vlan_init().
 *
 * @param avg_buf  receives the average of what the sensors show now, as " 41.1": the whole part is padded to 3
 *                 characters; written on success only
 * @param avg_len  size of `avg_buf` in bytes; the text is cut to fit and ended by a zero byte; 0 or less: nothing is
 *                 written
 * @param max_buf  receives the highest that any sensor has shown, as "47.0" and a newline; written on success only
 * @param max_len  size of `max_buf` in bytes, likewise
 * @return 0; -1 when there is no sensor; or the converted result of `bcm_switch_temperature_monitor_get`
 */
SAI_API int32_t sai_switch_temperature_monitor_get(int32_t unit, char* avg_buf, int32_t avg_len, char* max_buf,
                                                   int32_t max_len);

/* --------------------------------------------------------------------------------------------- MAC table ---------- */

/** Bits of sai_l2_mac_entry_t::flags. */
enum sai_l2_mac_flag {
  SAI_L2_MAC_STATIC = 0x1,      /**< stays until it is deleted */
  SAI_L2_MAC_DISCARD_SRC = 0x2, /**< frames from the address are dropped */
  SAI_L2_MAC_DISCARD_DST = 0x4, /**< frames to the address are dropped */
  SAI_L2_MAC_COPY_TO_CPU = 0x8, /**< frames to the address are copied to the CPU */
};

/** What sai_l2_addr_show() writes to sai_l2_mac_entry_t::flags for an entry of a trunk that is not static. */
#define SAI_L2_MAC_TRUNK 0xFFFFFFFFU

/** An entry of the MAC table, or what a function needs of one; each function says which fields it takes and writes. */
typedef struct sai_l2_mac_entry_t {
  uint32_t is_vport;  /**< its low byte is 1 after sai_l2_addr_show() found a virtual port; never cleared */
  uint32_t flags;     /**< #sai_l2_mac_flag bits; of a deletion, 0 for learned addresses, 1 for static ones too */
  uint8_t mac[6];     /**< the address */
  uint32_t vlan;      /**< VLAN id; its low 16 bits count */
  uint32_t reserved1; /**< not used */
  int32_t port;       /**< port number, gport or trunk id */
  int32_t port_out;   /**< port, as sai_l2_mac_entry_get() finds it, or sai_l2_addr_show() that of a virtual port */
  int32_t trunk;      /**< trunk id for a deletion */
  uint32_t reserved2; /**< not used */
} sai_l2_mac_entry_t;

/**
 * Sets every field of an entry to 0.
 *
 * @param entry  the entry
 * @return 0; -5 for a null pointer, not logged
 */
SAI_API int32_t sai_l2_init(sai_l2_mac_entry_t* entry);

/**
 * Initializes the chip's MAC table, which empties it. The start of the unit in sai_switch_chip_init() includes it.
 *
 * @return 0, or the converted result of `bcm_l2_init`
 */
SAI_API int32_t sai_l2_mac_init(int32_t unit);

/**
 * Sets after which time a learned address that is not seen again is forgotten. The chip looks once in that time, so
 * that it can take up to twice as long.
 *
 * @param seconds  time in seconds; 0: it is never forgotten
 * @return 0, or the converted result of `bcm_l2_age_timer_set`
 */
SAI_API int32_t sai_l2_mac_age_time_set(int32_t unit, int32_t seconds);

/**
 * Reads what sai_l2_mac_age_time_set() sets.
 *
 * @param seconds  receives the time in seconds; written on success only
 * @return 0, or the converted result of `bcm_l2_age_timer_get`; its message shows the low half of the address `seconds`
 */
SAI_API int32_t sai_l2_mac_age_time_get(int32_t unit, int32_t* seconds);

/**
 * Looks an address up, in unit 0 whatever the unit.
 *
 * @param entry  takes `mac` and `vlan`; on success `port_out` receives the port as the SDK has it, the gport of a
 *               virtual port and 0 for an address on a trunk, and `flags` gains #SAI_L2_MAC_STATIC when the entry is
 *               static, its other bits staying as they are
 * @return 0, or the converted result of `bcm_l2_addr_get`: -7 (no such address in that VLAN); another code does not
 *         tell whether the address is there
 */
SAI_API int32_t sai_l2_mac_entry_get(int32_t unit, sai_l2_mac_entry_t* entry);

/**
 * Adds an address. One that is there is replaced, with its place and flags; on the virtual chip in one step, with
 * events of a deletion and an addition even when nothing changes. Without #SAI_L2_MAC_STATIC it ages and moves like a
 * learned one.
 *
 * @param entry  takes `mac`, `vlan`, `port` and the #sai_l2_mac_flag bits of `flags`
 * @return 0, or the converted result of `bcm_l2_addr_add`, -13 (table full) among them
 */
SAI_API int32_t sai_l2_mac_entry_add(int32_t unit, const sai_l2_mac_entry_t* entry);

/** Bits of the mode of sai_l2_mac_entry_del(), in the order in which they are checked. */
enum sai_l2_delete_mode {
  SAI_L2_DELETE_ENTRY = 0x01,    /**< the one entry of `mac` and `vlan`, static or not */
  SAI_L2_DELETE_BY_MAC = 0x02,   /**< those of `mac`, by `flags` */
  SAI_L2_DELETE_BY_VLAN = 0x04,  /**< those of `vlan`, by `flags` */
  SAI_L2_DELETE_BY_PORT = 0x08,  /**< those of `port` of module 0, by `flags`; a virtual port is another, its gport */
  SAI_L2_DELETE_BY_TRUNK = 0x20, /**< those of `trunk`, with the SDK's flags 0 */
};

/**
 * Deletes addresses: those that the first bit of the mode names, in the order of #sai_l2_delete_mode, or without any of
 * them those of every front port, one port after the other.
 *
 * A failure on a port does not end the work on the next ones; only the last port's failure is logged and returned.
 *
 * @param entry  takes what the mode names; `flags` goes to the SDK as the flags of the deletion, but for modes
 *               #SAI_L2_DELETE_ENTRY and #SAI_L2_DELETE_BY_TRUNK
 * @param mode   #sai_l2_delete_mode bits
 * @return 0, also when there is no port to walk, and but for #SAI_L2_DELETE_ENTRY when there is no such address; or the
 *         converted result of `bcm_l2_addr_delete`, -7 (no such address in that VLAN) among them, of
 *         `bcm_l2_addr_delete_by_mac`, `bcm_l2_addr_delete_by_vlan`, `bcm_l2_addr_delete_by_port` or
 *         `bcm_l2_addr_delete_by_trunk`; of the walk that of the last `bcm_stk_my_modid_get` or
 *         `bcm_l2_addr_delete_by_port`
 */
SAI_API int32_t sai_l2_mac_entry_del(int32_t unit, const sai_l2_mac_entry_t* entry, uint8_t mode);

/**
 * Deletes the addresses of a trunk, with the SDK's flags 0.
 *
 * @param trunk  trunk id
 * @return 0, or the converted result of `bcm_l2_addr_delete_by_trunk`
 */
SAI_API int32_t sai_l2_addr_delete_by_trunk(int32_t unit, int32_t trunk);

/**
 * Finds the port behind an address, as the SDK has it: a gport stays one.
 *
 * @param entry  takes `mac` and `vlan`; `port` receives the port; written on success only
 * @return 0, or the converted result of `bcm_l2_addr_get`, -7 (no such address in that VLAN) among them
 */
SAI_API int32_t sai_l2_addr_port_id_get(int32_t unit, sai_l2_mac_entry_t* entry);

/**
 * Finds the port behind an address; for one on a virtual port, the number of its physical port.
 *
 * @param entry  takes `mac` and `vlan`; `port` receives the port; written on success only
 * @return 0, or the converted result of the failed `bcm_l2_addr_get`, `bcm_vlan_port_find` or `bcm_port_local_get`, -7
 *         (no such address in that VLAN) among them
 */
SAI_API int32_t sai_l2_addr_logic_port_get(int32_t unit, sai_l2_mac_entry_t* entry);

/** A limit of how many addresses are learned, in one scope or several. */
typedef struct sai_l2_learn_limit_t {
  /** Scopes: `BCM_L2_LEARN_LIMIT_SYSTEM` (0x1), `..._VLAN` (0x2), `..._PORT` (0x4), `..._TRUNK` (0x8), `..._TUNNEL`
   *  (0x80). What becomes of frames beyond the limit: `..._ACTION_DROP` (0x10), `..._ACTION_CPU` (0x20),
   *  `..._ACTION_PREFER` (0x40). */
  uint32_t flags;
  uint16_t vlan;     /**< VLAN id, for `BCM_L2_LEARN_LIMIT_VLAN` */
  uint16_t port;     /**< port number, for `BCM_L2_LEARN_LIMIT_PORT` */
  int32_t trunk;     /**< trunk id, for `BCM_L2_LEARN_LIMIT_TRUNK` */
  uint32_t scope_id; /**< tunnel id, for `BCM_L2_LEARN_LIMIT_TUNNEL` */
  int32_t limit;     /**< number of addresses; -1 on the virtual chip: no limit, as after start-up */
} sai_l2_learn_limit_t;

/**
 * Sets every field of a learn limit to 0.
 *
 * @param limit  the limit
 * @return 0; -5 for a null pointer, not logged
 */
SAI_API int32_t sai_l2_mac_learn_limit_init(sai_l2_learn_limit_t* limit);

/**
 * Sets a learn limit, which the chip heeds after sai_l2_mac_learn_limit_enable(). Addresses that are there already
 * stay.
 *
 * @param limit  the limit; of `flags` the bits of scopes and actions count
 * @return 0, or the converted result of `bcm_l2_learn_limit_set`
 */
SAI_API int32_t sai_l2_mac_learn_limit_set(int32_t unit, const sai_l2_learn_limit_t* limit);

/**
 * Reads a learn limit.
 *
 * @param limit  takes the scopes of `flags` and what identifies them; that of the whole system is not asked for, so
 *               without another scope the SDK is asked for none; the field `limit` receives the number of addresses,
 *               written on success only
 * @return 0, or the converted result of `bcm_l2_learn_limit_get`, -5 (no scope, or several) among them
 */
SAI_API int32_t sai_l2_mac_learn_limit_get(int32_t unit, sai_l2_learn_limit_t* limit);

/**
 * Has the chip heed the learn limits.
 *
 * @return 0, or the converted result of `bcm_l2_learn_limit_enable`
 */
SAI_API int32_t sai_l2_mac_learn_limit_enable(int32_t unit);

/**
 * Has the chip ignore the learn limits.
 *
 * @return 0, or the converted result of `bcm_l2_learn_limit_disable`
 */
SAI_API int32_t sai_l2_mac_learn_limit_disable(int32_t unit);

/**
 * Copies the whole MAC table, from the first element of the array on and without gaps. The number of entries is not
 * returned: set the array to 0 before, and make it large enough; the first element whose VLAN is 0 is behind the last
 * entry. sai_l2_info() returns the number of entries, which can grow meanwhile.
 *
 * Of each entry are written: `mac`; `vlan`; `port`, the trunk id for an entry of a trunk, otherwise the port as the SDK
 * has it; `flags`, #SAI_L2_MAC_STATIC, else #SAI_L2_MAC_TRUNK, else 0. So a static entry of trunk 1 looks like one of
 * port 1; sai_l2_mac_entry_get() finds port 0 for the former. For an entry on a virtual port also:
 * `is_vport`, its low byte only; and `port_out`, the number of its physical port, if it can be found (a failure is not
 * logged).
 *
 * @param entries  receives the entries, without a bound; null ends the work at the first entry
 * @return 0, or the converted result of `bcm_l2_traverse`, after which the array holds what came before
 */
SAI_API int32_t sai_l2_addr_show(int32_t unit, sai_l2_mac_entry_t* entries);

/**
 * Tells how full the MAC table is. Logs both numbers at level "debugging". The message of a failure ends with a newline
 * of its own behind the SDK's text.
 *
 * @param max      receives the number of entries that the table has room for; written on success only
 * @param current  receives the number of entries in it; written on success only
 * @return 0; -1 for a chip that keeps no such count, of which none is known, logged without a text of the SDK's; or the
 *         converted result of `bcm_switch_object_count_multi_get`
 */
SAI_API int32_t sai_l2_info(int32_t unit, int32_t* max, int32_t* current);

/**
 * Switches whether frames to an address count as a sign of its life, as those from it do.
 *
 * @param enable  1: they do, 0: they do not
 * @return 0, or the converted result of `bcm_switch_control_set`
 */
SAI_API int32_t sai_l2_dst_hit_enable_set(int32_t unit, int32_t enable);

/**
 * Tells what sai_l2_dst_hit_enable_set() sets. A failure is logged with the words of that function.
 *
 * @param enable  receives 1 or 0; written on success only
 * @return 0, or the converted result of `bcm_switch_control_get`
 */
SAI_API int32_t sai_l2_dst_hit_enable_get(int32_t unit, int32_t* enable);

/* ------------------------------------------------------------------------------------------------ Trunks ---------- */

/**
 * Initializes the chip's trunk module, which takes all trunks away. The start of the unit in sai_switch_chip_init()
 * includes it.
 *
 * @return 0, or the converted result of `bcm_trunk_init`
 */
SAI_API int32_t sai_trunk_init(int32_t unit);

/**
 * Ends what sai_trunk_init() began.
 *
 * @return 0, or the converted result of `bcm_trunk_detach`
 */
SAI_API int32_t sai_trunk_detach(int32_t unit);

/**
 * Creates a trunk without members.
 *
 * @param flags  the SDK's flags; with `BCM_TRUNK_FLAG_WITH_ID` (0x10) the trunk gets the id asked for
 * @param tid    takes the id asked for and receives the id made; written on success only
 * @return 0, or the converted result of `bcm_trunk_create`: -6 (an id that is taken), -13 (no more trunks)
 */
SAI_API int32_t sai_trunk_create(int32_t unit, uint32_t flags, int32_t* tid);

/**
 * Destroys a trunk. Its addresses stay: delete them before, with sai_l2_mac_entry_del() and #SAI_L2_DELETE_BY_TRUNK.
 *
 * @param tid  trunk id, from 0; checked by the chip
 * @return 0, or the converted result of `bcm_trunk_destroy`, -7 (no such trunk) among them
 */
SAI_API int32_t sai_trunk_destroy(int32_t unit, int32_t tid);

/**
 * Sets the members of a trunk and how it spreads frames over them. A failure before the last step changes nothing.
 * Without members (0 and 0), which the virtual chip accepts, frames for the trunk are lost.
 *
 * @param tid            trunk id
 * @param psc            hash selector of sai_hash_to_sdk()
 * @param member_bitmap  the ports: bit 0 is port 1 and so on to bit 30, which is port 31; bit 31 is port 0
 * @param member_count   how many members the trunk gets, lowest port first, up to 256; a larger count is refused in
 *                       place of `bcm_trunk_set`, after the ports were looked up in the chip. Should be the number of
 *                       bits: a smaller one leaves members out, a larger one adds members without a port
 * @return 0; -5 for a count above 256; or the converted result of the failed `bcm_stk_my_modid_get`,
 *         `bcm_stk_modmap_map` or `bcm_trunk_set`
 */
SAI_API int32_t sai_trunk_set(int32_t unit, int32_t tid, int32_t psc, uint32_t member_bitmap, int32_t member_count);

/**
 * Sets how a trunk spreads frames over its members.
 *
 * @param tid  trunk id, from 0; checked by the chip
 * @param psc  hash selector of sai_hash_to_sdk(), whose result is the one that a failure's message shows
 * @return 0, or the converted result of `bcm_trunk_psc_set`
 */
SAI_API int32_t sai_trunk_psc_set(int32_t unit, int32_t tid, int32_t psc);

/* --------------------------------------------------------------------------------------------- Mirroring ---------- */

/** Bits of a mirrored port's mode. */
enum sai_mirror_mode {
  SAI_MIRROR_INGRESS = 0x1, /**< what the port receives */
  SAI_MIRROR_EGRESS = 0x2,  /**< what the port sends */
};

/**
 * Initializes the chip's mirror module, which takes all mirrors away, switches directed mirroring and flexible mirror
 * destinations on, and chooses the mode of mirroring, layer 2. Each step is tried, whatever became of the others; a
 * failure of either switch is logged in the same words.
 *
 * @return 0, or the converted result of the last step, `bcm_mirror_mode_set`; the others are only logged
 */
SAI_API int32_t sai_mirror_init(int32_t unit);

/**
 * Has the frames of a mirror session sent to a port, in place of the one before.
 *
 * @param session  session number, 0 or more; the caller chooses it
 * @param port     port number or gport
 * @return 0, or the converted result of the failed `bcm_port_gport_get` or `bcm_mirror_destination_create`
 */
SAI_API int32_t sai_mirror_dest_port_set(int32_t unit, int32_t session, int32_t port);

/**
 * Ends what sai_mirror_dest_port_set() began.
 *
 * @param session  session number, 0 or more; the caller chooses it
 * @param port     shown in messages only
 * @return 0, or the converted result of the failed `bcm_mirror_destination_get` or `bcm_mirror_destination_destroy`, -7
 *         (no such session) among them
 */
SAI_API int32_t sai_mirror_dest_port_unset(int32_t unit, int32_t session, int32_t port);

/**
 * Mirrors a port to a session that has a destination.
 *
 * @param session  session number, 0 or more; the caller chooses it
 * @param port     port number
 * @param mode     #sai_mirror_mode bits; other bits have no effect. Without any the port's mirroring is enabled with
 *                 neither direction
 * @return 0, or the converted result of the failed `bcm_mirror_destination_get` or `bcm_mirror_port_dest_add`, -7 (no
 *         such session) among them
 */
SAI_API int32_t sai_mirror_source_port_set(int32_t unit, int32_t session, int32_t port, int32_t mode);

/**
 * Ends what sai_mirror_source_port_set() began.
 *
 * @param session  session number, 0 or more; the caller chooses it
 * @param port     port number
 * @param mode     #sai_mirror_mode bits, as they were set
 * @return 0, or the converted result of the failed `bcm_mirror_destination_get` or `bcm_mirror_port_dest_delete`, -7
 *         (no such session) among them
 */
SAI_API int32_t sai_mirror_source_port_unset(int32_t unit, int32_t session, int32_t port, int32_t mode);

/* ------------------------------------------------------------------------------------------ Field groups ---------- */

/*
 * The field processor compares packets with the entries of field groups. A group fixes the stage, ingress or egress,
 * and what its entries can match; what a caller's rule needs decides to which group it goes. The chip chooses the ids
 * of groups and entries; the caller keeps them and passes them back. Groups are created once, before their entries, and
 * no function destroys one.
 *
 * The functions that create groups work alike: they create the group, give a group of access control lists its id as
 * its priority, and enable it. When a later step fails the group stays, disabled, and its id is lost. The results are
 * 0, or the converted result of the failed `bcm_field_group_create`, `bcm_field_group_priority_set` or
 * `bcm_field_group_enable_set`.
 */

/**
 * Creates the group of ingress L2 rules, sai_acl_l2_entry_install(): MAC addresses, input port, outer and inner VLAN
 * with their priorities, EtherType. Its priority is its id.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_ifp_l2_group_create(int32_t unit, int32_t* group);

/**
 * Creates the group of egress L2 rules, sai_acl_l2_entry_install(): MAC addresses, outer VLAN with its priority,
 * EtherType, output port. Its priority is its id.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_efp_l2_group_create(int32_t unit, int32_t* group);

/**
 * Creates the group of ingress IPv4 rules, the L3 and the L2+L3 ones: MAC and IPv4 addresses, input port, outer and
 * inner VLAN with their priorities, TCP and UDP ports, EtherType, IP protocol, DSCP, kind of IP packet. Its priority is
 * its id.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_ifp_mac_ipv4_group_create(int32_t unit, int32_t* group);

/**
 * Creates the group of egress IPv4 rules: as sai_ifp_mac_ipv4_group_create(), with the output port in place of the
 * input port and without the inner VLAN. Its priority is its id.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_efp_mac_ipv4_group_create(int32_t unit, int32_t* group);

/**
 * Creates the group of ingress IPv6 rules: as sai_ifp_mac_ipv4_group_create(), with IPv6 addresses. Its priority is its
 * id.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_ifp_mac_ipv6_group_create(int32_t unit, int32_t* group);

/**
 * Creates the group of egress IPv6 rules: as sai_efp_mac_ipv4_group_create(), with IPv6 addresses. Its priority is its
 * id.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_efp_mac_ipv6_group_create(int32_t unit, int32_t* group);

/**
 * Creates the ingress group of the rules that trap OSPF, loop detection, DHCP, IGMP and ARP: MAC addresses, IPv4
 * destination address, input port, outer VLAN, TCP and UDP ports, EtherType, IP protocol, TTL, kind of IP packet, VLAN
 * format and ARP target address. The id is traced.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_system_ipv4_fp_create(int32_t unit, int32_t* group);

/**
 * Creates the ingress group of the rules that trap DHCPv6: as sai_system_ipv4_fp_create(), with the IPv6 destination
 * address in place of the IPv4 one and the ICMP type and code in place of the ARP target address. The id is traced.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_system_ipv6_fp_create(int32_t unit, int32_t* group);

/**
 * Creates the ingress group of sai_fp_mld_packet_to_cpu(): destination MAC address, input port, IP protocol. The id is
 * traced.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_fp_mld_group_create(int32_t unit, int32_t* group);

/**
 * Creates the egress group of sai_fp_vport_qualify_set(): outer VLAN, output port. The id is traced.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_fp_vport_group_create(int32_t unit, int32_t* group);

/**
 * Creates the egress group of sai_fp_mld_packet_exclude_filter_set(): IPv6 addresses, outer VLAN, output port. The id
 * is traced.
 *
 * @param group  receives the id of the group; written on success only
 */
SAI_API int32_t sai_fp_mld_exclude_group_create(int32_t unit, int32_t* group);

/* ----------------------------------------------------------------------------------- Access control lists --------- */

/** What a rule does with the packets that match. */
enum sai_acl_action {
  SAI_ACL_DENY = 0,   /**< drops them, as every other value does */
  SAI_ACL_PERMIT = 1, /**< keeps them from being dropped */
};

/** The side of the chip that a rule is for. */
enum sai_acl_direction {
  SAI_ACL_INGRESS = 0, /**< packets that the port receives */
  SAI_ACL_EGRESS = 1,  /**< packets that the port sends */
};

/** Kinds of L3 rules. */
enum sai_acl_ip_type {
  SAI_ACL_IPV4 = 2, /**< matches IP packets by their IPv4 addresses; those of both versions if no address is compared */
  SAI_ACL_IPV6 = 3, /**< matches IPv6 packets by their addresses */
};

/** What sai_acl_rule_t::tos_value is. */
enum sai_acl_tos_mode {
  SAI_ACL_TOS = 1,        /**< 4 bits of type of service */
  SAI_ACL_DSCP = 2,       /**< 6 bits of DSCP */
  SAI_ACL_PRECEDENCE = 3, /**< 3 bits of IP precedence; as of the others, the whole byte is compared */
};

/**
 * An access control rule. Masks have a 1 where a bit is compared. Numbers are in host order but for the IPv4 addresses
 * and their masks, which are in network order; IPv6 addresses are their 16 bytes.
 *
 * Its layout is fixed: callers that were compiled on their own pass it.
 */
typedef struct sai_acl_rule_t {
  uint32_t unread0;
  int8_t action;    /**< 1: permit; any other value: deny (#sai_acl_action) */
  uint32_t ip_type; /**< a #sai_acl_ip_type; read for L3 rules only */
  uint8_t src_mac[6];
  uint8_t dst_mac[6];
  uint16_t ether_type;
  uint8_t src_mac_mask[6];
  uint8_t dst_mac_mask[6];
  uint16_t ether_type_mask;
  uint16_t vlan_id;      /**< outer VLAN id, the low 12 bits */
  uint16_t vlan_mask;    /**< the low 12 bits; without a priority mask `vlan_id` is its own mask and this is not read */
  uint8_t vlan_pri;      /**< outer priority, 0 to 7 */
  uint8_t vlan_pri_mask; /**< 0: the priority is not compared */
  uint32_t src_ip;       /**< IPv4 address in network byte order */
  uint32_t dst_ip;       /**< likewise, in network byte order */
  uint32_t src_ip_mask;  /**< in network byte order */
  uint32_t dst_ip_mask;  /**< in network byte order */
  uint8_t src_ip6[16];
  uint8_t dst_ip6[16];
  uint8_t src_ip6_mask[16];
  uint8_t dst_ip6_mask[16];
  uint8_t unread1[8];
  uint32_t l4_src_port; /**< TCP or UDP port; 0: not compared, whatever its mask */
  uint32_t l4_dst_port; /**< likewise */
  uint32_t l4_src_port_mask;
  uint32_t l4_dst_port_mask;
  int32_t ip_protocol; /**< the low 8 bits; negative: not compared */
  uint8_t ip_protocol_mask;
  uint32_t unread2;
  uint32_t tos_mode; /**< a #sai_acl_tos_mode; any other value: not compared */
  int8_t tos_value;  /**< its low 4, 6 or 3 bits count */
} sai_acl_rule_t;

/**
 * Installs an L2 rule on a port: MAC addresses, outer VLAN and EtherType. The entry's priority is its id.
 *
 * A step that fails ends the work and leaves the entry in the group, uninstalled, for sai_fp_entry_destroy(); so does a
 * direction that is not known, which is found after the entry was created. Each step is checked: a rule that is
 * installed compares everything that it specifies.
 *
 * @param port       port number
 * @param direction  a #sai_acl_direction
 * @param group      id of the group that the entry goes to; one that can match what the rule compares
 * @param rule       the rule; read during the call only
 * @param entry      receives the id of the entry once it was created, also when a later step fails; -1 when it could
 *                   not be created
 * @return 0; -1 for an unknown direction or kind of IP packet, which is logged without a text of the SDK's; or the
 *         converted result of the SDK call that failed: -7 (no such group), -13 (group full), -9 (no such port) and
 *         -5 (the group cannot match it) among them
 */
SAI_API int32_t sai_acl_l2_entry_install(int32_t unit, int32_t port, int32_t direction, int32_t group,
                                         const sai_acl_rule_t* rule, int32_t* entry);

/**
 * Installs a standard L3 rule on a port: kind of IP packet and source address. The entry's priority is its id.
 *
 * A step that fails ends the work and leaves the entry in the group, uninstalled, for sai_fp_entry_destroy(); so does a
 * direction or a kind of IP packet that is not known, which is found after the entry was created.
 *
 * One step is not checked: when the source address cannot be matched, the rule is installed without that match, for
 * all addresses, and neither a log line nor the result shows it. A group without that match causes it: rules of IPv4
 * belong into a group of sai_ifp_mac_ipv4_group_create() or sai_efp_mac_ipv4_group_create(), those of IPv6 into one of
 * sai_ifp_mac_ipv6_group_create() or sai_efp_mac_ipv6_group_create().
 *
 * Arguments and results are those of sai_acl_l2_entry_install().
 */
SAI_API int32_t sai_acl_std_l3_entry_install(int32_t unit, int32_t port, int32_t direction, int32_t group,
                                             const sai_acl_rule_t* rule, int32_t* entry);

/**
 * Installs an extended L3 rule on a port: kind of IP packet, IP protocol, type of service, addresses, TCP and UDP
 * ports. The entry's priority is its id.
 *
 * A step that fails ends the work and leaves the entry in the group, uninstalled, for sai_fp_entry_destroy(); so does a
 * direction or a kind of IP packet that is not known, which is found after the entry was created.
 *
 * Three steps are not checked: when the type of service, the source or the destination address cannot be matched, the
 * rule is installed without that match, and neither a log line nor the result shows it. A group without such a match
 * causes that: rules of IPv4 belong into a group of sai_ifp_mac_ipv4_group_create() or sai_efp_mac_ipv4_group_create(),
 * those of IPv6 into one of sai_ifp_mac_ipv6_group_create() or sai_efp_mac_ipv6_group_create().
 *
 * Arguments and results are those of sai_acl_l2_entry_install().
 */
SAI_API int32_t sai_acl_ext_l3_entry_install(int32_t unit, int32_t port, int32_t direction, int32_t group,
                                             const sai_acl_rule_t* rule, int32_t* entry);

/**
 * Installs an L2+L3 rule on a port: what an L2 rule and an extended L3 rule compare. The entry's priority is its id.
 *
 * A step that fails ends the work and leaves the entry in the group, uninstalled, for sai_fp_entry_destroy(); so does a
 * direction or a kind of IP packet that is not known, which is found after the entry was created.
 *
 * Three steps are not checked: when the type of service, the source or the destination address cannot be matched, the
 * rule is installed without that match, and neither a log line nor the result shows it. A group without such a match
 * causes that: rules of IPv4 belong into a group of sai_ifp_mac_ipv4_group_create() or sai_efp_mac_ipv4_group_create(),
 * those of IPv6 into one of sai_ifp_mac_ipv6_group_create() or sai_efp_mac_ipv6_group_create().
 *
 * Arguments and results are those of sai_acl_l2_entry_install().
 */
SAI_API int32_t sai_acl_l2_l3_entry_install(int32_t unit, int32_t port, int32_t direction, int32_t group,
                                            const sai_acl_rule_t* rule, int32_t* entry);

/**
 * Takes a field entry out of the hardware and ends it, whatever function made it. An entry that cannot be taken out
 * stays. A policer of the entry is detached and stays; sai_vport_fp_policer_destroy() destroys it afterwards.
 *
 * @param entry  id of the entry
 * @return 0, or the converted result of the failed `bcm_field_entry_remove` or `bcm_field_entry_destroy`, -7 (no such
 *         entry) among them
 */
SAI_API int32_t sai_fp_entry_destroy(int32_t unit, int32_t entry);

/* ---------------------------------------------------------------------------------------- Protocol traps ---------- */

/*
 * A function that installs a trap creates one field entry in a group of the caller's, matches, acts and installs. The
 * first step that fails ends the work; what was built stays in the group, uninstalled, and its id is lost. A second
 * call installs a second entry. Entries keep the SDK's default priority, but for those of DHCP, which have priority 3.
 * They are ended by sai_fp_entry_destroy(). "To the CPU" is to the port that the SDK tells for the unit's CPU.
 *
 * Unless a comment says otherwise, the results are 0 or the converted result of the SDK call that failed: -7 (no such
 * group), -13 (group full), -9 (no such port) and -5 (the group cannot match it) among them.
 */

/**
 * Copies OSPF packets (IPv4 protocol 89) with TTL 1 from a port to the CPU, with packet priority 7.
 *
 * @param port   port number
 * @param group  a group of sai_system_ipv4_fp_create()
 * @param entry  receives the id of the entry; written on success only
 */
SAI_API int32_t sai_fp_ospf_ttl1_set(int32_t unit, int32_t port, int32_t group, int32_t* entry);

/**
 * Redirects loop detection frames (EtherType 0x9088) from a port to the CPU, with packet priority 7.
 *
 * @param port   port number
 * @param mac    source MAC address of the frames, 6 bytes
 * @param group  a group of sai_system_ipv4_fp_create()
 * @param entry  receives the id of the entry; written on success only
 */
SAI_API int32_t sai_fp_loopd_packet_to_cpu_set(int32_t unit, int32_t port, const uint8_t* mac, int32_t group,
                                               int32_t* entry);

/**
 * Redirects DHCP packets to servers (UDP port 67) in a VLAN, from any port, to the CPU, with packet priority 6.
 *
 * @param vlan   outer VLAN id, the low 12 bits; not a port
 * @param group  a group of sai_system_ipv4_fp_create()
 * @param entry  receives the id of the entry; written on success only
 */
SAI_API int32_t sai_fp_dhcp_requeset_to_cpu_set(int32_t unit, int32_t vlan, int32_t group, int32_t* entry);

/**
 * Redirects DHCP packets to clients (UDP port 68) in a VLAN, from any port, to the CPU, with packet priority 6.
 *
 * @param vlan   outer VLAN id, the low 12 bits; not a port
 * @param group  a group of sai_system_ipv4_fp_create()
 * @param entry  receives the id of the entry; written on success only
 */
SAI_API int32_t sai_fp_dhcp_response_to_cpu_set(int32_t unit, int32_t vlan, int32_t group, int32_t* entry);

/**
 * Redirects DHCPv6 packets to servers (UDP port 547) in a VLAN, from any port, to the CPU, with packet priority 7.
 *
 * @param vlan   outer VLAN id, the low 12 bits; not a port
 * @param group  a group of sai_system_ipv6_fp_create()
 * @param entry  receives the id of the entry; written on success only
 */
SAI_API int32_t sai_fp_dhcpv6_req_to_cpu_set(int32_t unit, int32_t vlan, int32_t group, int32_t* entry);

/**
 * Redirects IGMP packets (IP protocol 2) from a port to the CPU, with packet priority 7.
 *
 * @param port   port number
 * @param group  a group of sai_system_ipv4_fp_create()
 * @param entry  receives the id of the entry; written on success only
 */
SAI_API int32_t sai_fp_igmp_packet_to_cpu(int32_t unit, int32_t port, int32_t group, int32_t* entry);

/**
 * Redirects MLD packets from a port to the CPU, with packet priority 1: four entries, for ICMPv6 types 130, 131, 132
 * and 143, to MAC addresses that begin with 33:33.
 *
 * Each entry is tried whatever became of the others; a failure of the first three is only logged.
 *
 * @param port   port number
 * @param group  a group of sai_fp_mld_group_create(), or of sai_system_ipv6_fp_create() for a chip that matches the
 *               ICMP type only in a group that was made for it
 * @param entry  receives the id of each entry that was installed, over that of the one before: when all went well, that
 *               of type 143, and the caller cannot end the others
 * @return 0, or the converted result of the SDK call that failed for type 143
 */
SAI_API int32_t sai_fp_mld_packet_to_cpu(int32_t unit, int32_t port, int32_t group, int32_t* entry);

/**
 * Redirects ARP packets to a MAC address from a port to the CPU, with packet priority 7.
 *
 * @param port   port number
 * @param group  a group of sai_system_ipv4_fp_create()
 * @param entry  receives the id of the entry; written on success only
 * @param mac    destination MAC address, 6 bytes
 */
SAI_API int32_t sai_fp_arp_packet_vlan_qualify_set(int32_t unit, int32_t port, int32_t group, int32_t* entry,
                                                   const uint8_t* mac);

/**
 * Redirects ARP broadcasts from a port to the CPU, with packet priority 7.
 *
 * @param port   port number
 * @param group  a group of sai_system_ipv4_fp_create()
 * @param entry  receives the id of the entry; written on success only
 */
SAI_API int32_t sai_fp_arp_packet_cpu_qualify_set(int32_t unit, int32_t port, int32_t group, int32_t* entry);

/**
 * Redirects ARP broadcasts from a port to another, with packet priority 7.
 *
 * @param port       port number
 * @param group      a group of sai_system_ipv4_fp_create()
 * @param entry      receives the id of the entry; written on success only
 * @param dest_port  port number that they are sent to
 */
SAI_API int32_t sai_fp_arp_packet_port_qualify_set(int32_t unit, int32_t port, int32_t group, int32_t* entry,
                                                   int32_t dest_port);

/**
 * Drops what an IPv6 source sends to a destination where it would leave through a port.
 *
 * @param port     port number
 * @param group    a group of sai_fp_mld_exclude_group_create()
 * @param entry    receives the id of the entry; written on success only
 * @param ignored  has no effect
 * @param dst_ip6  destination address, 16 bytes
 * @param src_ip6  source address, 16 bytes
 */
SAI_API int32_t sai_fp_mld_packet_exclude_filter_set(int32_t unit, int32_t port, int32_t group, int32_t* entry,
                                                     int32_t ignored, const uint8_t* dst_ip6, const uint8_t* src_ip6);

/**
 * Builds the entry of packets of a VLAN that leave through a port, without an action and uninstalled.
 * sai_fp_vport_qualify_action() completes it. The call is traced.
 *
 * @param port   port number, compared by its low 8 bits
 * @param group  a group of sai_fp_vport_group_create()
 * @param entry  receives the id of the entry; written on success only
 * @param vlan   outer VLAN tag, all 16 bits of which are compared; on the virtual chip that of the VLAN inside, before
 *               virtual ports and translations give the frame the tags that it leaves with
 */
SAI_API int32_t sai_fp_vport_qualify_set(int32_t unit, int32_t port, int32_t group, int32_t* entry, uint16_t vlan);

/* ------------------------------------------------------------------- Field entries that exist, DHCP control ------- */

/**
 * Gives an entry of sai_fp_vport_qualify_set() its action, `bcmFieldActionRpDrop`, and installs it. The action drops
 * what the entry's policer finds red: attach the policer before, with sai_vport_fp_policer_set().
 *
 * @param group  the entry's group; for messages only
 * @param entry  id of the entry
 * @return 0, or the converted result of the failed `bcm_field_action_add` or `bcm_field_entry_install`
 */
SAI_API int32_t sai_fp_vport_qualify_action(int32_t unit, int32_t group, int32_t entry);

/**
 * Detaches an entry's policer, the one of level 0. The policer stays; sai_vport_fp_policer_destroy() destroys it.
 *
 * @param entry  id of the entry
 * @return 0, or the converted result of `bcm_field_entry_policer_detach`
 */
SAI_API int32_t sai_fp_entry_policer_detach(int32_t unit, int32_t entry);

/**
 * Has every Ethernet port send DHCP packets to the CPU and nowhere else, or no longer drop them. Once they go to the
 * CPU they go on doing so. sai_fp_dhcp_requeset_to_cpu_set() and sai_fp_dhcp_response_to_cpu_set() take those of one
 * VLAN.
 *
 * @param enable  1: to the CPU, and dropped; any other value: not dropped
 * @return always 0; a port that refuses is logged and the others are tried
 */
SAI_API int32_t sai_dhcp_packet_to_cpu(int32_t unit, int32_t enable);

/* --------------------------------------------------------------------------------------- IP source guard ---------- */

/**
 * Creates the ingress group of IP source guard: source MAC and IPv4 addresses, input port, outer VLAN, TCP and UDP
 * ports, EtherType, IP protocol, TTL, kind of IP packet. When enabling it fails the group stays and its id is lost.
 *
 * @param group  receives the id of the group; written on success only
 * @return 0, or the converted result of the failed `bcm_field_group_create` or `bcm_field_group_enable_set`
 */
SAI_API int32_t sai_ipsg_init(int32_t unit, int32_t* group);

/**
 * Guards a port in a VLAN: IPv4 packets are dropped there, with entry priority 1 (or 2, where the chip refuses 1).
 * Always on unit 0.
 *
 * An entry that exists is moved to the port; its VLAN stays. All failures have one message, that of
 * `bcm_field_entry_reinstall`. A step that fails ends the work and leaves what was built in the group, uninstalled, and
 * its id is lost.
 *
 * @param group    id of the group of sai_ipsg_init(); of an entry that exists, for messages only
 * @param vlan     outer VLAN id inside the switch, the low 12 bits; 0 is compared like any other
 * @param ignored  has no effect
 * @param port     port number
 * @param entry    in: 0 to create an entry; any other value, negative ones too, is the id of the entry to move. Out:
 *                 the id of the new entry; written on success only
 * @return 0, or the converted result of the SDK call that failed
 */
SAI_API int32_t sai_ipsg_verify_config(int32_t group, int32_t vlan, int32_t ignored, int32_t port, int32_t* entry);

/**
 * Binds an IPv4 source to a guarded port: its packets are let through, with entry priority 3 (or 4, where the chip
 * refuses 3). Always on unit 0.
 *
 * An entry that exists is moved to the port; its VLAN and its source stay. A step that fails ends the work and leaves
 * what was built in the group, uninstalled, and its id is lost.
 *
 * @param group        id of the group of sai_ipsg_init(); of an entry that exists, for messages only
 * @param src_ip       source address in network order; 0: any
 * @param src_ip_mask  mask of the address in host order
 * @param vlan         outer VLAN id inside the switch, the low 12 bits; 0 or less: any
 * @param ignored      has no effect
 * @param port         port number
 * @param entry        in: 0 or less to create an entry, or the id of the entry to move. Out: the id of the new entry;
 *                     written on success only
 * @return 0, or the converted result of the SDK call that failed; the message of a failed `bcm_field_entry_create` has
 *         no text of the SDK's
 */
SAI_API int32_t sai_ipsg_parameter_config(int32_t group, uint32_t src_ip, uint32_t src_ip_mask, int32_t vlan,
                                          int32_t ignored, int32_t port, int32_t* entry);

/* ------------------------------------------------------------------------------------------- VLAN table ---------- */

/**
 * Initializes the chip's VLAN module, which empties its tables. A unit needs that once, before the other VLAN
 * functions; the start of the unit in sai_switch_chip_init() includes it. Called later, it takes all VLANs away, VLAN
 * 4095 of virtual ports among them.
 *
 * @return 0, or the converted result of `bcm_vlan_init`
 */
SAI_API int32_t sai_vlan_init(int32_t unit);

/**
 * Creates a VLAN with the CPU port as a tagged member.
 *
 * A VLAN that exists already is not an error: the CPU port is added (again), so the call also repairs a VLAN that was
 * created elsewhere. When adding the CPU port fails, the VLAN stays, whether or not this call created it: destroy it
 * only if it was new.
 *
 * @param vid  VLAN id, 1 to 4095; checked by the chip
 * @return 0, or the converted result of the failed `bcm_vlan_create` or `bcm_vlan_port_add`
 */
SAI_API int32_t sai_vlan_create(int32_t unit, uint16_t vid);

/**
 * Destroys a VLAN. Interface, routes and addresses in it are not deleted with it.
 *
 * @param vid  VLAN id, 1 to 4095; checked by the chip
 * @return 0, or the converted result of `bcm_vlan_destroy`, -7 (not found) among them
 */
SAI_API int32_t sai_vlan_destroy(int32_t unit, uint16_t vid);

/**
 * Destroys all VLANs but the chip's default VLAN.
 *
 * @return 0, or the converted result of `bcm_vlan_destroy_all`
 */
SAI_API int32_t sai_vlan_destroy_all(int32_t unit);

/**
 * Makes a port a member of a VLAN. One that is a member already gets the new tagging. To which VLAN frames belong that
 * arrive without a tag is another setting: sai_port_untagged_vlan_set().
 *
 * @param vid     VLAN id, 1 to 4095; checked by the chip
 * @param port    port number, 0 to 255; a larger one is refused without asking the chip
 * @param tagged  non-zero: frames of the VLAN leave the port tagged; 0: untagged
 * @return 0; -5 for a port above 255; or the converted result of `bcm_vlan_port_add`, -7 (no such VLAN) and -9 (no such
 *         port) among them
 */
SAI_API int32_t sai_vlan_port_add(int32_t unit, uint16_t vid, uint16_t port, int32_t tagged);

/**
 * Removes a port, tagged or untagged, from a VLAN; one that is no member is no failure on the virtual chip. Addresses
 * that were learned there stay, and so do routes by the port and, if it is this VLAN, the VLAN of the port's untagged
 * frames.
 *
 * @param vid   VLAN id, 1 to 4095; checked by the chip
 * @param port  port number, 0 to 255; a larger one is refused without asking the chip
 * @return 0; -5 for a port above 255; or the converted result of `bcm_vlan_port_remove`, -7 (no such VLAN) and -9 (no
 *         such port) among them
 */
SAI_API int32_t sai_vlan_port_remove(int32_t unit, uint16_t vid, uint16_t port);

/**
 * Switches the learning of source addresses in a VLAN.
 *
 * @param vid     VLAN id, 1 to 4095; checked by the chip
 * @param enable  non-zero: addresses are learned (`BCM_VLAN_LEARN_DISABLE` is cleared); 0: they are not
 * @return 0, or the converted result of the failed `bcm_vlan_control_vlan_get` or `bcm_vlan_control_vlan_set`; nothing
 *         is written when the get failed
 */
SAI_API int32_t sai_vlan_l2_learn_set(int32_t unit, uint16_t vid, int32_t enable);

/**
 * Sets or clears the layer-2 lookup flag of a VLAN, `BCM_VLAN_L2_LOOKUP_DISABLE`.
 *
 * @param vid    VLAN id, 1 to 4095; checked by the chip
 * @param value  the flag itself, not an "enable": non-zero sets it, 0 clears it
 * @return 0, or the converted result of the failed `bcm_vlan_control_vlan_get` or `bcm_vlan_control_vlan_set`; nothing
 *         is written when the get failed
 */
SAI_API int32_t sai_vlan_l2_lookup_set(int32_t unit, uint16_t vid, int32_t value);

/* ------------------------------------------------------------- VLAN translation and double tagging ---------- */

/**
 * Enables VLAN translation on the chip: once per unit, before translations are added. sai_switch_chip_init() does so.
 *
 * @return 0, or the converted result of `bcm_vlan_control_set`
 */
SAI_API int32_t sai_port_vlan_translate_init(int32_t unit);

/**
 * Translates a VLAN on a port: old_vid becomes new_vid on the way in, and new_vid becomes old_vid on the way out.
 *
 * When the way in fails the way out is not tried; when the way out fails the way in stays.
 *
 * @param port         port number
 * @param old_vid      VLAN id outside the switch; its low 16 bits count
 * @param egress_prio  priority on the way out, passed to the SDK as it is; -1 on the virtual chip: that of the frame
 * @param new_vid      VLAN id inside the switch; its low 16 bits count
 * @param prio         priority on the way in, passed to the SDK as it is; likewise
 * @return 0, or the converted result of the failed `bcm_vlan_translate_add` or `bcm_vlan_translate_egress_add`, -6
 *         (there is a translation of that VLAN) and -13 (table full) among them
 */
SAI_API int32_t sai_vlan_translate_add(int32_t unit, int32_t port, int32_t old_vid, int32_t egress_prio,
                                       int32_t new_vid, int32_t prio);

/**
 * Deletes a translation of a port, each of its two directions only as far as it still is the one given. A failure ends
 * the work: when the way in fails or is missing the way out is not tried; when the way out fails the way in is gone.
 *
 * @param port     port number
 * @param old_vid  VLAN id outside the switch; its low 16 bits count
 * @param new_vid  VLAN id inside the switch; its low 16 bits count
 * @return 0, also when neither direction was the one given; or the converted result of the failed
 *         `bcm_vlan_translate_get`, `bcm_vlan_translate_delete`, `bcm_vlan_translate_egress_get` or
 *         `bcm_vlan_translate_egress_delete`, -7 (no translation of that VLAN) among them
 */
SAI_API int32_t sai_vlan_translate_delete(int32_t unit, int32_t port, int32_t old_vid, int32_t new_vid);

/**
 * Double tagging: frames of an inner VLAN gain an outer tag on the way in, and leave with the tag of the inner VLAN
 * alone on the way out.
 *
 * When the way in fails the way out is not tried; when the way out fails the way in stays.
 *
 * @param port             port number
 * @param inner_vid        VLAN id of the inner tag; its low 16 bits count
 * @param egress_priority  priority on the way out, passed to the SDK as it is
 * @param outer_vid        VLAN id of the outer tag; its low 16 bits count
 * @param prio             priority on the way in, passed to the SDK as it is
 * @return 0, or the converted result of the failed `bcm_vlan_dtag_add` or `bcm_vlan_translate_egress_action_add`
 */
SAI_API int32_t sai_vlan_dtag_add(int32_t unit, int32_t port, int32_t inner_vid, int32_t egress_priority,
                                  int32_t outer_vid, int32_t prio);

/**
 * Deletes what sai_vlan_dtag_add() added; the way out only when the way in could be deleted. When the way out fails the
 * way in is gone.
 *
 * @param port       port number
 * @param inner_vid  VLAN id of the inner tag; its low 16 bits count
 * @param outer_vid  VLAN id of the outer tag; its low 16 bits count
 * @return 0, or the converted result of the failed `bcm_vlan_dtag_delete` or `bcm_vlan_translate_egress_action_delete`,
 *         -7 (no such rule) among them
 */
SAI_API int32_t sai_vlan_dtag_delete(int32_t unit, int32_t port, int32_t inner_vid, int32_t outer_vid);

/**
 * Double tagging of a range of inner VLANs, which all gain the same outer tag on the way in and lose it on the way out.
 * The way out has no priority, so the argument in the place of sai_vlan_dtag_add()'s is ignored.
 *
 * When the way in fails the way out is not tried; when the way out fails the way in stays.
 *
 * @param port       port number
 * @param inner_lo   lowest VLAN id of the inner tag; its low 16 bits count
 * @param inner_hi   highest VLAN id of the inner tag; its low 16 bits count
 * @param ignored    has no effect
 * @param outer_vid  VLAN id of the outer tag; its low 16 bits count
 * @param prio       priority on the way in
 * @return 0, or the converted result of the failed `bcm_vlan_dtag_range_add` or `bcm_vlan_translate_egress_action_add`
 */
SAI_API int32_t sai_vlan_dtag_range_add(int32_t unit, int32_t port, int32_t inner_lo, int32_t inner_hi, int32_t ignored,
                                        int32_t outer_vid, int32_t prio);

/**
 * Deletes what sai_vlan_dtag_range_add() added; the way out only when the way in could be deleted. When the way out
 * fails the way in is gone.
 *
 * @param port       port number
 * @param inner_lo   lowest VLAN id of the inner tag; its low 16 bits count
 * @param inner_hi   highest VLAN id of the inner tag; its low 16 bits count
 * @param outer_vid  VLAN id of the outer tag; its low 16 bits count
 * @return 0, or the converted result of the failed `bcm_vlan_dtag_range_delete` or
 *         `bcm_vlan_translate_egress_action_delete`, -7 (no such range) among them
 */
SAI_API int32_t sai_vlan_dtag_range_delete(int32_t unit, int32_t port, int32_t inner_lo, int32_t inner_hi,
                                           int32_t outer_vid);

/* --------------------------------------------------------------------------------- VLANs by MAC and subnet ------- */

/**
 * Gives untagged frames from a MAC address a VLAN, on the ports where sai_port_mac_vlan_set() has switched that on.
 *
 * @param mac   the address, 6 bytes
 * @param vid   VLAN id, 1 to 4095; checked by the chip
 * @param prio  priority of the frames, 0 to 7; checked by the chip
 * @return 0, or the converted result of `bcm_vlan_mac_add`
 */
SAI_API int32_t sai_vlan_mac_add(int32_t unit, const uint8_t* mac, uint16_t vid, int32_t prio);

/**
 * Deletes what sai_vlan_mac_add() added.
 *
 * @param mac  the address, 6 bytes
 * @return 0, or the converted result of `bcm_vlan_mac_delete`, -7 (no such address) among them
 */
SAI_API int32_t sai_vlan_mac_del(int32_t unit, const uint8_t* mac);

/**
 * Deletes all that sai_vlan_mac_add() added.
 *
 * @return 0, or the converted result of `bcm_vlan_mac_delete_all`
 */
SAI_API int32_t sai_vlan_mac_clear(int32_t unit);

/**
 * Gives untagged IPv4 packets from a subnet a VLAN, on the ports where sai_port_subnet_vlan_set() has switched that on.
 * The ARP frames of its hosts are no such packets: they stay in the port's VLAN.
 *
 * @param ip    address of the subnet in network byte order
 * @param mask  its mask in network byte order
 * @param vid   VLAN id, 1 to 4095; checked by the chip
 * @param prio  priority of the frames, 0 to 7; checked by the chip
 * @return 0, or the converted result of `bcm_vlan_ip_add`
 */
SAI_API int32_t sai_vlan_ip_subnet_add(int32_t unit, uint32_t ip, uint32_t mask, uint16_t vid, int32_t prio);

/**
 * Deletes what sai_vlan_ip_subnet_add() added.
 *
 * @param ip    address of the subnet in network byte order
 * @param mask  its mask in network byte order
 * @return 0, or the converted result of `bcm_vlan_ip_delete`, -7 (no such subnet) among them
 */
SAI_API int32_t sai_vlan_ip_subnet_del(int32_t unit, uint32_t ip, uint32_t mask);

/**
 * Gives untagged IPv6 packets from a subnet a VLAN, on the ports where sai_port_subnet_vlan_set() has switched that on.
 *
 * @param ip6     address of the subnet, 16 bytes
 * @param prefix  length of its prefix in bits, 0 to 128
 * @param vid     VLAN id, 1 to 4095; checked by the chip
 * @param prio    priority of the frames
 * @return 0, or the converted result of `bcm_vlan_ip_add`
 */
SAI_API int32_t sai_vlan_ipv6_subnet_add(int32_t unit, const bcm_ip6_t* ip6, int32_t prefix, uint16_t vid,
                                         int32_t prio);

/**
 * Deletes what sai_vlan_ipv6_subnet_add() added.
 *
 * @param ip6     address of the subnet, 16 bytes
 * @param prefix  length of its prefix in bits, 0 to 128
 * @return 0, or the converted result of `bcm_vlan_ip_delete`, -7 (no such subnet) among them
 */
SAI_API int32_t sai_vlan_ipv6_subnet_del(int32_t unit, const bcm_ip6_t* ip6, int32_t prefix);

/**
 * Deletes all subnets, those of IPv4 and of IPv6 alike.
 *
 * @return 0, or the converted result of `bcm_vlan_ip_delete_all`
 */
SAI_API int32_t sai_vlan_subnet_clear(int32_t unit);

/* ---------------------------------------------------------------------------------- Spanning-tree groups ---------- */

/**
 * Initializes the chip's spanning-tree groups, which takes all but the first away. A unit needs that once, before the
 * other functions of these groups; the start of the unit in sai_switch_chip_init() includes it.
 *
 * @return 0, or the converted result of `bcm_stg_init`
 */
SAI_API int32_t sai_stg_init(int32_t unit);

/**
 * Chooses the group that new VLANs belong to.
 *
 * @param stg  group id, from 1; checked by the chip
 * @return 0, or the converted result of `bcm_stg_default_set`
 */
SAI_API int32_t sai_stg_default_set(int32_t unit, int32_t stg);

/**
 * Tells what sai_stg_default_set() sets.
 *
 * @param stg  receives the group id; written on success only
 * @return 0, or the converted result of `bcm_stg_default_get`; its message shows the low half of the address `stg`
 */
SAI_API int32_t sai_stg_default_get(int32_t unit, int32_t* stg);

/**
 * Creates a group. The id is always the caller's. On the virtual chip every Ethernet port is disabled in it, and the
 * CPU port forwards: set the states with sai_port_stg_stp_set() before a VLAN joins.
 *
 * @param stg  group id, from 1; checked by the chip
 * @return 0, or the converted result of `bcm_stg_create_id`, -6 (an id that is taken) among them
 */
SAI_API int32_t sai_stg_create(int32_t unit, int32_t stg);

/**
 * Destroys a group. Its VLANs join the default one, which cannot be destroyed.
 *
 * @param stg  group id, from 1; checked by the chip
 * @return 0, or the converted result of `bcm_stg_destroy`, -7 (no such group) among them
 */
SAI_API int32_t sai_stg_destroy(int32_t unit, int32_t stg);

/**
 * Moves a VLAN to a group. One that is in it already stays.
 *
 * @param stg  group id, from 1; checked by the chip
 * @param vid  VLAN id, 1 to 4095; checked by the chip
 * @return 0, or the converted result of `bcm_stg_vlan_add`
 */
SAI_API int32_t sai_stg_vlan_add(int32_t unit, int32_t stg, uint16_t vid);

/**
 * Takes a VLAN out of a group. It joins the default one.
 *
 * @param stg  group id, from 1; checked by the chip
 * @param vid  VLAN id, 1 to 4095; checked by the chip
 * @return 0, or the converted result of `bcm_stg_vlan_remove`
 */
SAI_API int32_t sai_stg_vlan_del(int32_t unit, int32_t stg, uint16_t vid);

/**
 * Takes all VLANs out of a group. They join the default one.
 *
 * @param stg  group id, from 1; checked by the chip
 * @return 0, or the converted result of `bcm_stg_vlan_remove_all`
 */
SAI_API int32_t sai_stg_vlan_del_all(int32_t unit, int32_t stg);

/** A port and its state, passed by value as one 64-bit quantity. */
typedef struct sai_port_stg_state_t {
  int32_t port;   /**< port number */
  uint32_t state; /**< a `BCM_STG_STP_*`: 0 disabled, 1 blocking, 2 listening, 3 learning, 4 forwarding */
} sai_port_stg_state_t;

/**
 * Sets the state of a port in a group.
 *
 * @param stg   group id, from 1; checked by the chip
 * @param pair  port and state; both checked by the chip
 * @return 0, or the converted result of `bcm_stg_stp_set`, -5 (no such state) among them
 */
SAI_API int32_t sai_port_stg_stp_set(int32_t unit, int32_t stg, sai_port_stg_state_t pair);

/** What sai_port_stg_stp_get() asks, and the answer. */
typedef struct sai_port_stg_t {
  int32_t stg;       /**< group id */
  uint32_t reserved; /**< the caller's; neither read nor written */
  int32_t port;      /**< port number */
  uint32_t state;    /**< the answer, as sai_port_stg_state_t::state */
} sai_port_stg_t;

/**
 * Reads the state of a port in a group.
 *
 * @param query  takes `stg` and `port`; `state` receives the state; written on success only
 * @return 0, or the converted result of `bcm_stg_stp_get`
 */
SAI_API int32_t sai_port_stg_stp_get(int32_t unit, sai_port_stg_t* query);

/**
 * Tells how many groups the chip has room for.
 *
 * @param count  receives the number; written on success only
 * @return 0, or the converted result of `bcm_stg_count_get`
 */
SAI_API int32_t sai_stg_count_get(int32_t unit, int32_t* count);

/**
 * Destroys all groups but the default one, which their VLANs join.
 *
 * @return 0, or the converted result of `bcm_stg_clear`
 */
SAI_API int32_t sai_stg_clear(int32_t unit);

/* ----------------------------------------------------------------------------------------- L3 interfaces ---------- */

/**
 * Switches layer 3 forwarding of the whole chip on or off.
 *
 * @param enable  0 off, 1 on; passed to the SDK as it is
 * @return 0, or the converted result of `bcm_l3_enable_set`
 */
SAI_API int32_t sai_l3_enable_set(int32_t unit, int32_t enable);

/**
 * Gives a VLAN its L3 interface, which carries the router's MAC address.
 *
 * An interface with the same MAC address is left alone; one with another is deleted first, and the VLAN stays without
 * when the new one cannot be created. The new one can have another number, which next hops that
 * were made before do not know: delete routes first. A failed lookup is not logged and counts as no interface.
 *
 * @param mac   the router's MAC address, 6 bytes
 * @param vlan  VLAN id; its low 16 bits count
 * @return 0, or the converted result of the failed `bcm_l3_intf_delete` or `bcm_l3_intf_create`
 */
SAI_API int32_t sai_l3_intf_create(int32_t unit, const uint8_t* mac, int32_t vlan);

/**
 * Deletes the L3 interface of a VLAN. Routes and next hops through it are not deleted with it: delete them before.
 *
 * @param vlan  VLAN id; its low 16 bits count
 * @return 0, or the converted result of the failed `bcm_l3_intf_find_vlan`, -7 (no interface) among them, or
 *         `bcm_l3_intf_delete`
 */
SAI_API int32_t sai_l3_intf_delete(int32_t unit, int32_t vlan);

/**
 * Deletes all L3 interfaces, those of next hops and of multicast groups too.
 *
 * @return 0, or the converted result of `bcm_l3_intf_delete_all`
 */
SAI_API int32_t sai_l3_intf_delete_all(int32_t unit);

/* -------------------------------------------------------------------------------- Host and subnet routes ---------- */

/**
 * Adds the route to one host, in place of one that is there.
 *
 * The host is reached through the L3 interface of its VLAN, which sai_l3_intf_create() has made. Where its MAC address
 * was learned on a virtual port, and with `dtag`, an interface of its own is found or made. In L3 egress mode, unless
 * it is behind the CPU port, the route points at an egress object, which is found or made as well; equal next hops
 * share one.
 *
 * A route that takes the place of another leaves the other's egress object: after a host has moved, to another port or
 * another MAC address, that egress object stays, without a route that points at it. Delete the route of a host that has
 * moved with sai_l3_host_route_delete(), then create it. An interface and an egress object that were made stay as well
 * when a later step fails.
 *
 * A VLAN without interface is logged without the SDK's text ("can't find l3 interface vlan %d"), and so is a failed
 * lookup behind a virtual port ("can't add l3 interface out vlan %d", which also follows a failed creation's own
 * message); with `dtag` only a failed creation is logged. A failed lookup of the egress object is a trace. Where a full
 * table refuses the host, ", beacuse of hash conflict" follows the SDK's text.
 *
 * @param ip          the host's IPv4 address in host byte order
 * @param router_mac  MAC address of an interface that is made, 6 bytes
 * @param host_mac    the host's MAC address, 6 bytes; the chip must have learned it in `vlan`
 * @param port        port number, taken as given: that `host_mac` was learned there is not checked; the CPU port sends
 *                    to the CPU
 * @param vlan        VLAN id; its low 16 bits count
 * @param dtag        non-zero: the host is double-tagged, behind a virtual port
 * @return 0, or the converted result of the failed `bcm_stk_my_modid_get`, `bcm_l2_addr_get`, `bcm_vlan_port_find`,
 *         `bcm_l3_intf_find_vlan`, `bcm_l3_intf_find` (with `dtag`, but not found), `bcm_l3_intf_create`,
 *         `bcm_l3_egress_find` (but not found), `bcm_l3_egress_create` or `bcm_l3_host_add`; -13: a
 *         table, or the bucket of the host's hash, is full
 */
SAI_API int32_t sai_l3_host_route_create(int32_t unit, uint32_t ip, const uint8_t* router_mac, const uint8_t* host_mac,
                                         int32_t port, int32_t vlan, uint8_t dtag);

/**
 * Deletes the route to one host.
 *
 * In L3 egress mode the library then tells the chip to end what the route pointed at, whether or not another route
 * shares it: of a next hop on a virtual port the interface that has the egress object's number, then the egress object,
 * and with `dtag` the interface of that number again. A chip that keeps what is in use refuses,
 * mostly with `BCM_E_BUSY`: that is logged and harmless, and the last route that shares the egress object takes it
 * along. How all that ends does not show in the result.
 *
 * The egress object stays when the chip no longer knows the next hop's MAC address, as after it has aged out: delete a
 * route while the address is known, or enter it before with sai_l2_mac_entry_add(), at any port. Of a next hop on a
 * virtual port it stays, with the interface that was made for it, where no interface has its number, as on a chip that
 * numbers the two apart. A route that is not found is logged without the SDK's text, and so is an interface that cannot
 * be ended, after a message of its own.
 *
 * @param ip    the host's IPv4 address in host byte order
 * @param dtag  non-zero: the host is double-tagged
 * @return 0, or the converted result of the failed `bcm_l3_host_find`, -7 (no such host) among them, or
 *         `bcm_l3_host_delete`
 */
SAI_API int32_t sai_l3_host_route_delete(int32_t unit, uint32_t ip, uint8_t dtag);

/**
 * Adds the route to a subnet. One that is there is deleted first, also when the new one then cannot be added. The
 * subnet 0 with the mask 0 is the default route.
 *
 * Interface and egress object as in sai_l3_host_route_create(), but the message is "can't find vlan %d l3 interface". A
 * route that points at the very interface, with the same port and next-hop MAC address, and is no local route, is not
 * changed, even when `nexthop_ip` differs; in L3 egress mode a route points at an egress object and is replaced. A
 * failed `bcm_stk_my_modid_get` is a trace, and a failed deletion is logged without the SDK's text and then ignored.
 * Where a full table refuses the route, ", because of hash conflict" follows the SDK's text.
 *
 * The route that is deleted first leaves its egress object: when the next hop is another one, or has moved to another
 * port or MAC address, that egress object stays, without a route that points at it. Delete such a route with
 * sai_l3_subnet_route_delete(), then create it. An interface and an egress object that were made stay as well when a
 * later step fails.
 *
 * @param subnet       the subnet's IPv4 address in host byte order; bits outside the mask do not count on the virtual
 *                     chip, here and where the route is deleted or asked for
 * @param mask         its mask in host byte order
 * @param nexthop_ip   IPv4 address of the next hop in host byte order, or 0; kept with the route for who reads it there
 * @param router_mac   MAC address of an interface that is made, 6 bytes
 * @param nexthop_mac  the next hop's MAC address, 6 bytes; the chip must have learned it in `vlan`. Routes with the
 *                     same address, VLAN and port share a next hop
 * @param port         port number; the CPU port sends to the CPU
 * @param vlan         VLAN id; its low 16 bits count
 * @param dtag         non-zero: the next hop is double-tagged, behind a virtual port
 * @return 0; or the converted result as of sai_l3_host_route_create(), with `bcm_l3_route_add` in place of
 *         `bcm_l3_host_add`
 */
SAI_API int32_t sai_l3_subnet_route_create(int32_t unit, uint32_t subnet, uint32_t mask, uint32_t nexthop_ip,
                                           const uint8_t* router_mac, const uint8_t* nexthop_mac, int32_t port,
                                           int32_t vlan, uint8_t dtag);

/**
 * Deletes the route to a subnet, and what it pointed at as sai_l3_host_route_delete() does.
 *
 * The egress object stays when the chip no longer knows the next hop's MAC address, as after it has aged out: delete a
 * route while the address is known, or enter it before with sai_l2_mac_entry_add(), at any port. Of a next hop on a
 * virtual port it stays, with the interface that was made for it, where no interface has its number. A route that is
 * not found is logged without the SDK's text, and so is an interface that cannot be ended, after a message of its own.
 *
 * @param subnet  the subnet's IPv4 address in host byte order
 * @param mask    its mask in host byte order
 * @param dtag    non-zero: the next hop is double-tagged
 * @return 0, or the converted result of the failed `bcm_l3_route_get`, -7 (no such route) among them, or
 *         `bcm_l3_route_delete`
 */
SAI_API int32_t sai_l3_subnet_route_delete(int32_t unit, uint32_t subnet, uint32_t mask, uint8_t dtag);

/**
 * Tells whether a host was a source or destination since the last reading, on unit 0. Reading forgets it. Only the
 * host's own route is looked for, not one to a subnet with the address.
 *
 * @param ip  the host's IPv4 address in host byte order
 * @return 1 hit, 0 not hit, or the converted result of `bcm_l3_host_find`, -7 (no such host) among them
 */
SAI_API int32_t sai_l3_host_route_hit_get(uint32_t ip);

/**
 * Tells whether a route to a subnet was used since the last reading, on unit 0. Reading forgets it. Only the route with
 * this very subnet and mask is looked for.
 *
 * @param subnet  the subnet's IPv4 address in host byte order
 * @param mask    its mask in host byte order
 * @return 1 hit, 0 not hit, or the converted result of `bcm_l3_route_get`, -7 (no such route) among them
 */
SAI_API int32_t sai_l3_subnet_route_hit_get(uint32_t subnet, uint32_t mask);

/* ---------------------------------------------------------------------------------------- IPv4 multicast ---------- */

/**
 * Adds a member to a multicast group, which is created if it is missing. The chip's group is then created on unit 0,
 * whatever the unit.
 *
 * Copies to ports 0 to 8 leave in the member's VLAN, tagged where the port is a tagged member of it; to higher ports
 * they leave in VLAN 4095, with the member's VLAN as the inner tag, so those ports have to stay in VLAN 4095.
 * Interfaces are found or created, and outlive the group. Up to the interface of the member's own tags, a failure is
 * logged and does not end the function; 0 replaces what is missing. A group that was created stays, without members,
 * when the member cannot be added; sai_multicast_destroy() destroys it, unless its entry could not be added.
 *
 * @param vlan        VLAN of the group; its low 16 bits count
 * @param group       the group's IPv4 address in host byte order
 * @param mac         the router's MAC address, for interfaces, 6 bytes
 * @param port        the member's port number
 * @param report_vid  the member's VLAN; its low 16 bits count
 * @return 0, or the converted result of the failed `bcm_l3_intf_create` for the member, `bcm_multicast_l3_encap_get` or
 *         `bcm_multicast_egress_add`, -6 (a member already) among them
 */
SAI_API int32_t sai_multicast_egress_add(int32_t unit, int32_t vlan, uint32_t group, const uint8_t* mac, int32_t port,
                                         int32_t report_vid);

/**
 * Removes a member from a multicast group. With the last one goes the group, as with sai_multicast_destroy().
 *
 * An interface or an encapsulation that cannot be found is logged, and the function continues with 0 in its place. When
 * the SDK does not report how many members are left, which is only a trace, the group stays; sai_multicast_destroy()
 * destroys it. A member that sai_ipmc_add() added at port 8 is not found, because it is double-tagged: the result is
 * -7 or, where the member's VLAN has no interface, another, and the member stays until sai_multicast_destroy().
 *
 * @param vlan      VLAN of the group; its low 16 bits count
 * @param group     the group's IPv4 address in host byte order
 * @param mac       the router's MAC address, 6 bytes
 * @param port      the member's port number; above 8 it is double-tagged
 * @param user_vid  the member's VLAN; its low 16 bits count
 * @return 0, or the converted result of the failed `bcm_ipmc_find`, -7 (no such group) among them,
 *         `bcm_port_gport_get`, `bcm_multicast_egress_delete` or `bcm_multicast_egress_get`; that of the group's
 *         destruction does not show
 */
SAI_API int32_t sai_multicast_egress_del(int32_t unit, int32_t vlan, uint32_t group, const uint8_t* mac, int32_t port,
                                         int32_t user_vid);

/**
 * Destroys a multicast group with all its members. An entry that cannot be removed is logged and the chip's group is
 * destroyed anyway. Interfaces stay.
 *
 * @param vlan   VLAN of the group; its low 16 bits count
 * @param group  the group's IPv4 address in host byte order
 * @return 0, or the converted result of the failed `bcm_ipmc_find`, -7 (no such group) among them, or of
 *         `bcm_multicast_destroy`
 */
SAI_API int32_t sai_multicast_destroy(int32_t unit, int32_t vlan, uint32_t group);

/**
 * Adds a member to a multicast group, which is created if missing, on the given unit. Every failure ends the function,
 * but when it looks something up: what `bcm_l3_intf_find` or `bcm_ipmc_find` does not find, for whatever reason, is
 * made. When a group is there and its lookup fails, `bcm_ipmc_add` answers -6, the member is not added, and the chip's
 * group that was made for it stays; no function of this library ends it.
 *
 * Unlike with sai_multicast_egress_add(), port 8 is double-tagged already, the interface of the member always has a TTL
 * threshold of 2, and a group that is there already is logged at level "errors", though it is not a failure. In the
 * messages of failures a full stop follows the SDK's text. Interfaces outlive the group, and a group that was made
 * stays, without members, when a later step fails; sai_multicast_destroy() ends it, unless its entry could not be
 * added.
 *
 * @param vlan       VLAN of the group; its low 16 bits count
 * @param user_vlan  the member's VLAN; its low 16 bits count
 * @param port       the member's port number; from 8 on it is double-tagged
 * @param group      the group's IPv4 address in host byte order
 * @param mac        the router's MAC address, for interfaces, 6 bytes
 * @return 0, or the converted result of the failed `bcm_l3_intf_create`, `bcm_multicast_create`, `bcm_ipmc_add`,
 *         `bcm_port_gport_get`, `bcm_multicast_l3_encap_get` or `bcm_multicast_egress_add`
 */
SAI_API int32_t sai_ipmc_add(int32_t unit, int32_t vlan, int32_t user_vlan, int32_t port, uint32_t group,
                             const uint8_t* mac);

/**
 * Chooses which multicast frames a VLAN floods, of whichever IP version. A new VLAN floods all.
 *
 * @param mode  1 all, 2 those of unknown groups, any other value none. After sai_switch_chip_init() the addresses that
 *              hosts cannot do without are flooded all the same: 224.0.0.0 to 224.0.0.255, ff01::/16 and ff02::/16
 * @param vlan  VLAN id; its low 16 bits count
 * @return 0, or the converted result of `bcm_vlan_mcast_flood_set`
 */
SAI_API int32_t sai_vlan_mcast_flood_set(int32_t unit, int32_t mode, int32_t vlan);

/**
 * Chooses whether a VLAN floods IPv4 multicast frames. Logs nothing.
 *
 * @param mode  1 none, any other value all
 * @param vlan  VLAN id
 * @return 0, or the converted result of `bcm_esw_vlan_ip4_mcast_flood_set`
 */
SAI_API int32_t sai_esw_vlan_mcast_flood_set(int32_t unit, int32_t mode, uint16_t vlan);

/* ---------------------------------------------------------------------------------------- IPv6 multicast ---------- */

/**
 * Adds a member to the multicast group of a source, which is created if missing. Every failure ends the function, but
 * when it looks something up, as in sai_ipmc_add().
 *
 * Works as sai_ipmc_add() does; a group that is there already is a trace. Interfaces outlive the group, and a group
 * that was made stays, without members, when a later step fails; sai_ipv6_multicast_destroy() ends it, unless its entry
 * could not be added.
 *
 * @param vlan       VLAN of the group
 * @param user_vlan  the member's VLAN
 * @param port       the member's port number; from 8 on it is double-tagged
 * @param group      the group's IPv6 address, 16 bytes
 * @param source     the source's IPv6 address, 16 bytes
 * @param mac        the router's MAC address, for interfaces, 6 bytes
 * @return 0, or the converted result of the failed `bcm_l3_intf_create`, `bcm_multicast_create`, `bcm_ipmc_add`,
 *         `bcm_port_gport_get`, `bcm_multicast_l3_encap_get` or `bcm_multicast_egress_add`
 */
SAI_API int32_t sai_ipv6_ipmc_add(int32_t unit, uint16_t vlan, uint16_t user_vlan, uint8_t port, const uint8_t* group,
                                  const uint8_t* source, const uint8_t* mac);

/**
 * Takes a member from the multicast group of a source. The last one takes the group along, as
 * sai_ipv6_multicast_destroy() does. Every failure ends it. When the SDK does not tell how many members are left, which
 * is not logged, the group stays; sai_ipv6_multicast_destroy() ends it.
 *
 * @param vlan       VLAN of the group
 * @param group      the group's IPv6 address, 16 bytes
 * @param source     the source's IPv6 address, 16 bytes
 * @param mac        the router's MAC address, 6 bytes
 * @param port       the member's port number; above 8 it is double-tagged
 * @param user_vlan  the member's VLAN; its low 16 bits count
 * @return 0, or the converted result of the failed `bcm_ipmc_find`, -7 (no such group) among them,
 *         `bcm_port_gport_get`, `bcm_l3_intf_find`, `bcm_multicast_l3_encap_get`, `bcm_multicast_egress_delete` or
 *         `bcm_multicast_egress_get`; that of the group's destruction does not show
 */
SAI_API int32_t sai_ipv6_multicast_egress_del(int32_t unit, uint16_t vlan, const uint8_t* group, const uint8_t* source,
                                              const uint8_t* mac, uint8_t port, int32_t user_vlan);

/**
 * Destroys the multicast group of a source with all its members. An entry that cannot be removed keeps the chip's
 * group, unlike with IPv4. Interfaces stay.
 *
 * @param vlan    VLAN of the group
 * @param group   the group's IPv6 address, 16 bytes
 * @param source  the source's IPv6 address, 16 bytes
 * @return 0, or the converted result of the failed `bcm_ipmc_find`, -7 (no such group) among them, `bcm_ipmc_remove` or
 *         `bcm_multicast_destroy`
 */
SAI_API int32_t sai_ipv6_multicast_destroy(int32_t unit, uint16_t vlan, const uint8_t* group, const uint8_t* source);

/**
 * Another name of sai_vlan_mcast_flood_set().
 *
 * @param mode  1 all, 2 those of unknown groups, any other value none
 * @param vlan  VLAN id; its low 16 bits count
 * @return 0, or the converted result of `bcm_vlan_mcast_flood_set`
 */
SAI_API int32_t sai_ipv6_vlan_mcast_flood_set(int32_t unit, int32_t mode, int32_t vlan);

/**
 * Chooses whether a VLAN floods IPv6 multicast frames. The arguments stand in another order than with IPv4.
 *
 * @param vlan     VLAN id
 * @param disable  non-zero none, 0 all
 * @return 0, or the converted result of `bcm_esw_vlan_ip6_mcast_flood_set`
 */
SAI_API int32_t sai_ipv6_esw_vlan_mcast_flood_set(int32_t unit, uint16_t vlan, uint8_t disable);

/* ----------------------------------------------------------------------------------------- Virtual ports ---------- */

/**
 * Prepares a unit for virtual ports: L3 egress objects, three flood groups, the system VLAN 4095 with every front port
 * tagged, VLAN translation on every front port with a key of both tags and then of the outer one, and the policers.
 * sai_switch_chip_init() does so. A second call makes three more groups, which new virtual ports then join; the earlier
 * ones stay.
 *
 * No failure ends the work; each is logged, but for that of the policers. A VLAN 4095 that exists already is logged as
 * well, and shows in the result only when there is no port. In the messages a full stop follows the SDK's text.
 *
 * @return 0, or the converted result of adding the last port to VLAN 4095, or of creating it when there is no port;
 *         what came before does not show
 */
SAI_API int32_t sai_vlan_vport_init(int32_t unit);

/**
 * A virtual port: the frames of one physical port that carry given tags, put into a VLAN of the switch's own, and given
 * their tags back on the way out. The caller's, from sai_vport_create() to sai_vport_destroy(). VLAN ids are checked by
 * the chip; 0 means none.
 */
typedef struct sai_vport_t {
  int32_t priority;    /**< its network group, both ways: 0 to 7, more means 7, negative: none; tags keep theirs */
  uint16_t match_vlan; /**< VLAN of the outer tag, on the way in and again on the way out */
  uint16_t match_inner_vlan; /**< VLAN of the inner tag; 0: frames with an outer tag alone */
  uint16_t vlan;             /**< internal VLAN: the only one, or that of the inner tag where outer_vlan is given */
  uint16_t outer_vlan;       /**< internal VLAN of the outer tag, for frames that have two tags inside */
  int32_t vport_id;          /**< gport of the virtual port; written by sai_vport_create() */
} sai_vport_t;

/**
 * Creates a virtual port and makes it a member of its internal VLAN and of the flood groups of sai_vlan_vport_init(),
 * which has to have run.
 *
 * The internal VLAN is the first that is given of `outer_vlan`, `vlan`, `match_inner_vlan` and the physical port's
 * untagged VLAN; the last is always read from unit 0. The frames leave with their tags as matched. Every front port
 * joins the flood groups again at each call; that it is a member already is logged. The internal VLAN floods through
 * the groups from then on, unless it has three flood groups of its own.
 *
 * A failure to read the untagged VLAN ends the work before anything is made. No other failure does: each is logged, and
 * what follows is tried. What cannot be read is taken as 0: the port's gport, an encapsulation, the properties of the
 * internal VLAN, which is then written with the flood groups alone. In the messages on these properties a full stop and
 * a newline follow the SDK's text.
 *
 * @param port   number of the physical port
 * @param vport  the virtual port; its `vport_id` is written, after a failure to create it too (0 then, as a rule), but
 *               not when the untagged VLAN could not be read
 * @return 0, or the converted result of `bcm_port_untagged_vlan_get` or of `bcm_vlan_translate_egress_action_add`; no
 *         other failure shows
 */
SAI_API int32_t sai_vport_create(int32_t unit, int32_t port, sai_vport_t* vport);

/**
 * Takes a virtual port out of its internal VLAN, forgets the MAC addresses learned on it and destroys it. Every step is
 * tried; failures are logged.
 *
 * What stays: its memberships of the flood groups and, where `outer_vlan` is 0, its rewrite on the way out. Where
 * `outer_vlan` is given, an empty rewrite of that VLAN stays. A virtual port whose record names neither `outer_vlan`,
 * `vlan` nor `match_inner_vlan` is taken out of VLAN 0, not out of the untagged VLAN that it had joined.
 *
 * @param ignored  has no effect
 * @param vport    the record as sai_vport_create() left it; not written
 * @return 0, or the converted result of `bcm_vlan_port_destroy`, -7 (no such virtual port) among them; no other failure
 *         shows
 */
SAI_API int32_t sai_vport_destroy(int32_t unit, int32_t ignored, sai_vport_t* vport);

/* -------------------------------------------------------------------------- Virtual ports: isolation, policers ---- */

/**
 * Isolates a network group of virtual ports (split horizon), or ends that: frames that entered through it do not leave
 * through virtual ports of another group. Those of its own group, and physical ports, stay reachable.
 *
 * @param port    network group id
 * @param enable  non-zero: isolated; 0: not
 * @return 0, or the converted result of the failed `bcm_switch_network_group_config_get` or
 *         `bcm_switch_network_group_config_set`; nothing is written when the get failed
 */
SAI_API int32_t sai_vport_split_horizon_set(int32_t unit, int32_t port, int32_t enable);

/**
 * Reads whether a network group is isolated, asking for the group itself as the destination.
 *
 * @param port    network group id
 * @param enable  receives 1 or 0, whether egress is pruned; written on success only
 * @return 0, or the converted result of `bcm_switch_network_group_config_get`
 */
SAI_API int32_t sai_vport_split_horizon_get(int32_t unit, int32_t port, uint32_t* enable);

/**
 * Makes a policer of two rates and three colors and attaches it to a field entry. The policer stays when it cannot be
 * read, set up or attached; its id is not told then.
 *
 * For an entry of sai_fp_vport_qualify_set(), before sai_fp_vport_qualify_action(): that installs the policer with the
 * entry, and has it drop what exceeds the peak rate. On an entry that is installed already, such as a rule of an access
 * list, this function succeeds and limits nothing: the rule would also need the SDK's `bcm_field_action_add` with
 * `bcmFieldActionRpDrop`, and `bcm_field_entry_reinstall`, which this library does for none.
 *
 * @param entry_id      id of the field entry
 * @param policer_id    receives the policer's id; written only when all succeeded
 * @param ckbits_sec    committed rate in kbit/s
 * @param pkbits_sec    peak rate in kbit/s
 * @param cburst_bytes  committed burst in bytes
 * @param pburst_bytes  peak burst in bytes
 * @return 0, or the converted result of the failed `bcm_policer_create`, `bcm_policer_get`, `bcm_policer_set` or
 *         `bcm_field_entry_policer_attach`, -13 (no policer left) and -7 (no such entry) among them
 */
SAI_API int32_t sai_vport_fp_policer_set(int32_t unit, int32_t entry_id, int32_t* policer_id, uint32_t ckbits_sec,
                                         uint32_t pkbits_sec, uint32_t cburst_bytes, uint32_t pburst_bytes);

/**
 * Reads the policer of a field entry. All outputs are written on success only.
 *
 * @param entry_id      id of the field entry
 * @param policer_id    receives the policer's id
 * @param ckbits_sec    receives the committed rate in kbit/s
 * @param pkbits_sec    receives the peak rate in kbit/s
 * @param cburst_bytes  receives the committed burst in bytes, rounded down; of a burst set by other means that has more
 *                      than 32 bits, the low 32
 * @param pburst_bytes  receives the peak burst in bytes, likewise
 * @return 0, or the converted result of the failed `bcm_field_entry_policer_get` or `bcm_policer_get`
 */
SAI_API int32_t sai_vport_fp_policer_get(int32_t unit, int32_t entry_id, int32_t* policer_id, uint32_t* ckbits_sec,
                                         uint32_t* pkbits_sec, uint32_t* cburst_bytes, uint32_t* pburst_bytes);

/**
 * Destroys a policer. The chip refuses one that is attached: end its field entry with sai_fp_entry_destroy() before, or
 * detach it with sai_fp_entry_policer_detach().
 *
 * @param policer_id  id of the policer
 * @return 0, or the converted result of `bcm_policer_destroy`, -7 (no such policer) among them
 */
SAI_API int32_t sai_vport_fp_policer_destroy(int32_t unit, int32_t policer_id);

#ifdef __cplusplus
}
#endif

#endif /* SAI_H */
