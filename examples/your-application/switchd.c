/* A switch's daemon: it brings the chip up, programs what a text file says, and stays for events.
 *
 *     cc switchd.c settings.c -o switchd $(pkg-config --cflags --libs sai)
 *     switchd [--warm] CONFIG STATE
 *
 * SIGHUP reads the file again and puts right what differs. SIGTERM ends the daemon and leaves the chip alone: frames
 * pass until the next daemon takes over with --warm.
 */
#define _POSIX_C_SOURCE 200809L
#include <arpa/inet.h>
#include <bcm/l2.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <sai.h>
#include <signal.h>
#include <soc/drv.h>
#include <stdio.h>
#include <string.h>
#include <sys/select.h>
#include <syslog.h>
#include <time.h>
#include <unistd.h>

#include "settings.h"

enum { default_vlan = 1 };

/* All that may be in the chip, and what finds it again. The state file is the copy that outlives the process. */
static struct {
  struct list list;
  uint8_t mark[6];      /* a static address in the chip, another one after each cold start */
  int32_t deny, permit; /* the groups of rules */
} state;

static const char* config_path;
static const char* state_path;
static int unit;

/* ---------------------------------------------------------------------------------------------- The state -------- */

#define MAC_FORMAT "%02x:%02x:%02x:%02x:%02x:%02x"
#define MAC_BYTES(mac) (mac)[0], (mac)[1], (mac)[2], (mac)[3], (mac)[4], (mac)[5]

/* The new file takes the old one's place in one step, so that a daemon that is killed leaves one of the two. It need
 * not survive a power failure: the chip does not either. */
static int save(int is_pending) {
  char path[4096];
  snprintf(path, sizeof path, "%s.new", state_path);
  FILE* const file = fopen(path, "w");
  int is_written = file != NULL;
  if (is_written) {
    fprintf(file, "switchd 1 mac " MAC_FORMAT " mark " MAC_FORMAT " groups %d %d pending %d settings %d\n",
            MAC_BYTES(state.list.mac), MAC_BYTES(state.mark), state.deny, state.permit, is_pending, state.list.count);
    for (const struct setting* s = state.list.settings; s < state.list.settings + state.list.count; ++s)
      fprintf(file, "%d %d %s\n", s->status, s->entry, s->text);
    is_written = !ferror(file);
    is_written = fclose(file) == 0 && is_written && rename(path, state_path) == 0;
  }
  if (!is_written) sai_err("%s cannot be written: %s", state_path, strerror(errno));
  return is_written;
}

static int load(int* is_pending) {
  char mac[20];
  char mark[20];
  FILE* const file = fopen(state_path, "r");
  if (file == NULL) return 0;
  int is_right = fscanf(file, "switchd 1 mac %19s mark %19s groups %d %d pending %d settings %d", mac, mark,
                        &state.deny, &state.permit, is_pending, &state.list.count) == 6 &&
                 is_mac(mac, state.list.mac) && is_mac(mark, state.mark) && state.list.count <= max_settings;
  for (int i = 0; is_right && i < state.list.count; ++i) {
    struct setting* const s = &state.list.settings[i];
    int status = MISSING;
    is_right = fscanf(file, "%d %d %95[^\n]", &status, &s->entry, s->text) == 3 && understand(s);
    s->status = (enum status)status;
  }
  fclose(file);
  return is_right;
}

/* ----------------------------------------------------------------------------------------------- The chip -------- */

static int is_to_one_host(const struct setting* s) { return s->mask == UINT32_MAX; }

static sai_l2_mac_entry_t static_address(const uint8_t mac[6], int vlan, int port) {
  sai_l2_mac_entry_t address;
  sai_l2_init(&address);
  memcpy(address.mac, mac, sizeof address.mac);
  address.vlan = (uint32_t)vlan;
  address.port = port;
  address.flags = SAI_L2_MAC_STATIC;
  return address;
}

static int has_static_address(const uint8_t mac[6], int vlan, int port) {
  sai_l2_mac_entry_t address = static_address(mac, vlan, port);
  address.flags = 0;
  return sai_l2_mac_entry_get(unit, &address) == SAI_E_NONE && address.port_out == port &&
         (address.flags & SAI_L2_MAC_STATIC) != 0;
}

static int32_t end_rule(struct setting* s) {
  const int32_t code = s->entry < 0 ? SAI_E_NONE : sai_fp_entry_destroy(unit, s->entry);
  if (code == SAI_E_NONE || code == SAI_E_NOT_FOUND) s->entry = -1;
  return code;
}

static int32_t make_rule(struct setting* s) {
  sai_acl_rule_t rule;
  memset(&rule, 0, sizeof rule);
  rule.action = s->is_permit ? SAI_ACL_PERMIT : SAI_ACL_DENY;
  rule.ip_type = SAI_ACL_IPV4;
  rule.ip_protocol = -1;
  rule.dst_ip = htonl(s->ip);
  rule.dst_ip_mask = htonl(s->mask);
  end_rule(s);
  if (s->entry >= 0) return SAI_E_FAIL;
  const int32_t group = s->is_permit ? state.permit : state.deny;
  const int32_t code = sai_acl_ext_l3_entry_install(unit, s->port, SAI_ACL_INGRESS, group, &rule, &s->entry);
  if (code != SAI_E_NONE) end_rule(s); /* what was built of it is the caller's to end */
  return code;
}

/* The library looks next hops up in the MAC table. A static address is there at once, and does not age. */
static int32_t make_route(const struct setting* s) {
  const sai_l2_mac_entry_t address = static_address(s->mac, s->vlan, s->port);
  const uint8_t* const own = state.list.mac;
  const int32_t code = sai_l2_mac_entry_add(unit, &address);
  if (code != SAI_E_NONE) return code;
  if (is_to_one_host(s)) return sai_l3_host_route_create(unit, s->ip, own, s->mac, s->port, s->vlan, 0);
  return sai_l3_subnet_route_create(unit, s->ip, s->mask, s->next_hop, own, s->mac, s->port, s->vlan, 0);
}

static int has_route(const struct setting* s) {
  return has_static_address(s->mac, s->vlan, s->port) &&
         (is_to_one_host(s) ? sai_l3_host_route_hit_get(s->ip) : sai_l3_subnet_route_hit_get(s->ip, s->mask)) >= 0;
}

static int32_t end_route(const struct setting* s) {
  const sai_l2_mac_entry_t address = static_address(s->mac, s->vlan, s->port);
  const int32_t code = is_to_one_host(s) ? sai_l3_host_route_delete(unit, s->ip, 0)
                                         : sai_l3_subnet_route_delete(unit, s->ip, s->mask, 0);
  if (code != SAI_E_NONE && code != SAI_E_NOT_FOUND) return code;
  if (find(&state.list, uses_address_too, s) != NULL) return code;
  return sai_l2_mac_entry_del(unit, &address, SAI_L2_DELETE_ENTRY);
}

static int32_t make(struct setting* s) {
  const uint16_t vlan = (uint16_t)s->vlan;
  int32_t code = SAI_E_NONE;
  switch (s->kind) {
    case VLAN:
      return sai_vlan_create(unit, vlan);
    case MEMBER:
      code = sai_vlan_port_add(unit, vlan, (uint16_t)s->port, s->is_tagged);
      return code != SAI_E_NONE || s->is_tagged ? code : sai_port_untagged_vlan_set(unit, s->port, vlan);
    case INTERFACE:
      code = sai_l3_intf_create(unit, state.list.mac, vlan);
      return code != SAI_E_NONE ? code : sai_l3_enable_set(unit, 1);
    case ROUTE:
      return make_route(s);
    default:
      return make_rule(s);
  }
}

static int32_t withdraw(struct setting* s, struct list* wanted) {
  int32_t code = SAI_E_NONE;
  switch (s->kind) {
    case VLAN:
      return sai_vlan_destroy(unit, (uint16_t)s->vlan);
    case MEMBER:
      if (find(wanted, is_same_member, s) == NULL)
        code = sai_vlan_port_remove(unit, (uint16_t)s->vlan, (uint16_t)s->port);
      if (code != SAI_E_NONE || s->is_tagged || find(wanted, is_untagged_too, s) != NULL) return code;
      return sai_port_untagged_vlan_set(unit, s->port, default_vlan);
    case INTERFACE:
      return sai_l3_intf_delete(unit, s->vlan);
    case ROUTE:
      return end_route(s);
    default:
      return end_rule(s);
  }
}

/* ----------------------------------------------------------------------------------------- Putting it right ------ */

static struct { int found, again, added, removed, failed; } tally;

static void remove_unwanted(struct list* wanted, enum kind kind) {
  for (int i = state.list.count - 1; i >= 0; --i) {
    struct setting* const s = &state.list.settings[i];
    if (s->kind != kind || find(wanted, is_same, s) != NULL) continue;
    const int32_t code = withdraw(s, wanted);
    if (code != SAI_E_NONE && code != SAI_E_NOT_FOUND) {
      sai_err("failed with %d: remove %s; SIGHUP tries again", code, s->text);
      ++tally.failed;
      continue;
    }
    sai_notice("removed: %s", s->text);
    ++tally.removed;
    const struct setting gone = *s;
    memmove(s, s + 1, (size_t)(--state.list.count - i) * sizeof *s);
    /* After an earlier attempt that failed, this may have been the only route, and that of its rival. */
    struct setting* const rival = kind == ROUTE ? find(&state.list, is_rival, &gone) : NULL;
    if (rival != NULL) rival->status = MISSING;
  }
}

static void make_wanted(struct list* wanted, enum kind kind) {
  for (int i = 0; i < state.list.count; ++i) {
    struct setting* const s = &state.list.settings[i];
    const struct setting* const w = find(wanted, is_same, s);
    if (s->kind != kind || w == NULL) continue;
    const int32_t code = s->status == THERE ? SAI_E_NONE : make(s);
    if (code != SAI_E_NONE) {
      sai_err("%s:%d: failed with %d: %s; SIGHUP tries again", config_path, w->line, code, s->text);
      ++tally.failed;
      continue;
    }
    if (s->status == MISSING) sai_notice("added: %s", s->text);
    ++*(s->status == MISSING ? &tally.added : s->status == UNREAD ? &tally.again : &tally.found);
    s->status = THERE;
  }
}

/* Makes the chip what the file says. The state names a setting from before the chip gets it until the chip has lost it,
 * so that a daemon that is killed in between leaves nothing that its successor does not know of. */
static void put_right(struct list* wanted, const char* occasion) {
  int is_pending = 0;
  memset(&tally, 0, sizeof tally);
  if (memcmp(wanted->mac, state.list.mac, sizeof wanted->mac) != 0)
    sai_err("%s: only a cold start changes the switch's own MAC address", config_path);
  /* What goes through an interface goes before it, and a next hop that has moved is taken away before it is made. */
  for (int kind = ROUTE; kind >= INTERFACE; --kind) remove_unwanted(wanted, (enum kind)kind);
  for (int i = 0; i < wanted->count; ++i) {
    if (find(&state.list, is_same, &wanted->settings[i]) != NULL) continue;
    if (state.list.count < max_settings)
      state.list.settings[state.list.count++] = wanted->settings[i];
    else
      sai_err("%s:%d: there is no room for it yet; SIGHUP tries again", config_path, wanted->settings[i].line);
  }
  for (int i = 0; i < state.list.count; ++i) {
    const struct setting* const s = &state.list.settings[i];
    is_pending |= s->kind == RULE && (s->status == MISSING || find(wanted, is_same, s) == NULL);
  }
  if (!save(is_pending)) return;
  for (int kind = VLAN; kind <= RULE; ++kind) make_wanted(wanted, (enum kind)kind);
  /* Last, so that new rules are in force before old ones end, and a port that moves is at no time without a VLAN. */
  remove_unwanted(wanted, RULE);
  remove_unwanted(wanted, MEMBER);
  remove_unwanted(wanted, VLAN);
  save(0);
  sai_notice("%s: %d found, %d written again, %d added, %d removed, %d failed", occasion, tally.found, tally.again,
             tally.added, tally.removed, tally.failed);
}

static int start_cold(const uint8_t mac[6]) {
  const uint32_t now = (uint32_t)time(NULL);
  const uint32_t pid = (uint32_t)getpid();
  const uint8_t mark[6] = {0x06, now >> 16 & 255, now >> 8 & 255, now & 255, pid >> 8 & 255, pid & 255};
  if (unlink(state_path) != 0 && errno != ENOENT) {
    sai_err("%s cannot be removed: %s", state_path, strerror(errno));
    return 0;
  }
  memset(&state, 0, sizeof state);
  memcpy(state.list.mac, mac, sizeof state.list.mac);
  memcpy(state.mark, mark, sizeof state.mark);
  const sai_l2_mac_entry_t address = static_address(mark, default_vlan, 0);
  if (sai_switch_chip_init(mac) != SAI_E_NONE || sai_ifp_mac_ipv4_group_create(unit, &state.deny) != SAI_E_NONE ||
      sai_ifp_mac_ipv4_group_create(unit, &state.permit) != SAI_E_NONE)
    return 0;
  /* A group's priority is its id. What permits overrules what denies. */
  if (state.permit < state.deny) {
    const int32_t higher = state.deny;
    state.deny = state.permit;
    state.permit = higher;
  }
  return sai_l2_mac_entry_add(unit, &address) == SAI_E_NONE;
}

/* Finds out which settings the chip still has. Returns why that is not possible, or null. */
static const char* examine(void) {
  if (!has_static_address(state.mark, default_vlan, 0)) return "the chip has been started again, or does not answer";
  for (int i = 0; i < state.list.count; ++i) {
    struct setting* const s = &state.list.settings[i];
    if (s->kind == ROUTE)
      s->status = has_route(s) ? THERE : MISSING;
    else if (s->kind != RULE && s->status == THERE) /* of a rule only the state knows: it cannot be written again */
      s->status = UNREAD;
  }
  return NULL;
}

/* Returns why the daemon before cannot be followed, or null. */
static const char* start_warm(void) {
  int is_pending = 0;
  if (soc_ndev == 0) return "the chip is not up";
  if (!load(&is_pending)) return "no daemon has left its state";
  if (is_pending) return "a daemon ended while it changed rules, so that nobody knows which the chip has";
  return examine();
}

/* ------------------------------------------------------------------------------------------------- Events -------- */

/* The SDK's threads put events into a pipe. The main thread takes them out, and is the only one to call the library. */
struct event {
  int is_link, port, vlan, is_on;
  uint8_t mac[6];
};

static int event_pipe[2];
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static int were_lost; /* under the lock */

/* A callback must not wait: where the pipe is full, the event is lost. */
static void post(const struct event* event) {
  if (write(event_pipe[1], event, sizeof *event) == (ssize_t)sizeof *event) return;
  pthread_mutex_lock(&lock);
  were_lost = 1;
  pthread_mutex_unlock(&lock);
}

static void on_link(int from_unit, bcm_port_t port, bcm_port_info_t* info) {
  const struct event event = {.is_link = 1, .port = port, .is_on = info->linkstatus != 0};
  if (from_unit == unit) post(&event);
}

static void on_address(uint16_t vlan, int32_t port, uint8_t* mac, int32_t operation) {
  struct event event = {.port = port, .vlan = vlan, .is_on = operation == BCM_L2_CALLBACK_ADD};
  memcpy(event.mac, mac, sizeof event.mac); /* valid during the call only */
  post(&event);
}

static void note_link(int port, int is_up) {
  static int known[max_port + 1]; /* 0: not yet, 1: down, 2: up */
  if (port < 0 || port > max_port || known[port] == is_up + 1) return;
  known[port] = is_up + 1;
  sai_notice("port %d: link %s", port, is_up ? "up" : "down");
}

/* Events tell of changes. What was so before, or changed while nobody listened, has to be read. */
static void look_around(void) {
  int32_t is_up = 0;
  int32_t room = 0;
  int32_t addresses = 0;
  for (const struct setting* s = state.list.settings; s < state.list.settings + state.list.count; ++s)
    if (s->kind == MEMBER && sai_port_link_status_get(unit, s->port, &is_up) == SAI_E_NONE) note_link(s->port, is_up);
  if (sai_l2_info(unit, &room, &addresses) == SAI_E_NONE) sai_info("addresses in the MAC table: %d", addresses);
}

static void take_events(void) {
  struct event events[64];
  const ssize_t size = read(event_pipe[0], events, sizeof events);
  for (const struct event* e = events; e < events + size / (ssize_t)sizeof *events; ++e) {
    if (e->is_link)
      note_link(e->port, e->is_on);
    else
      sai_info("VLAN %d: " MAC_FORMAT " %s port %d", e->vlan, MAC_BYTES(e->mac), e->is_on ? "is at" : "has left",
               e->port);
  }
  pthread_mutex_lock(&lock);
  const int have_been_lost = were_lost;
  were_lost = 0;
  pthread_mutex_unlock(&lock);
  if (!have_been_lost) return;
  sai_warn("events came too fast, and some were lost");
  look_around();
}

/* --------------------------------------------------------------------------------------------------- Main -------- */

static volatile sig_atomic_t is_ended;
static volatile sig_atomic_t is_to_read;

static void on_signal(int number) {
  if (number == SIGHUP)
    is_to_read = 1;
  else
    is_ended = 1;
}

/* Blocks the signals, also for the SDK's threads, which inherit that. Returns the mask of the main thread's waits. */
static sigset_t prepare_signals(void) {
  static const int numbers[] = {SIGHUP, SIGINT, SIGTERM};
  struct sigaction action;
  sigset_t mine;
  sigset_t while_waiting;
  memset(&action, 0, sizeof action);
  action.sa_handler = on_signal;
  sigemptyset(&mine);
  for (int i = 0; i < 3; ++i) sigaddset(&mine, numbers[i]);
  sigprocmask(SIG_BLOCK, &mine, &while_waiting);
  for (int i = 0; i < 3; ++i) {
    sigaction(numbers[i], &action, NULL);
    sigdelset(&while_waiting, numbers[i]);
  }
  signal(SIGPIPE, SIG_IGN); /* the log's reader may go */
  return while_waiting;
}

int main(int argc, char** argv) {
  static struct list wanted;
  int is_warm = argc > 1 && strcmp(argv[1], "--warm") == 0;
  if (argc - is_warm != 3) {
    fprintf(stderr, "usage: switchd [--warm] CONFIG STATE\n");
    return 2;
  }
  config_path = argv[argc - 2];
  state_path = argv[argc - 1];
  unit = sai_unit_get();
  sai_log_default = open_sai_log("switchd", 0, LOG_PID, LOG_DAEMON);
  if (sai_log_default == NULL || pipe(event_pipe) != 0) return 1;
  fcntl(event_pipe[1], F_SETFL, O_NONBLOCK);
  sai_log_default->show_priority = 1;
  sai_log_default->time_precision = 3;
  sai_log_set_level(sai_log_default, SAI_LOG_CONSOLE, SAI_LOG_INFORMATIONAL);
  const sigset_t while_waiting = prepare_signals();

  if (!read_settings(config_path, &wanted)) return 1;
  const char* const obstacle = is_warm ? start_warm() : NULL;
  if (obstacle != NULL) sai_warn("no warm start: %s", obstacle);
  if (obstacle != NULL) is_warm = 0;
  if (!is_warm && !start_cold(wanted.mac)) {
    sai_err("the chip does not come up");
    return 1;
  }
  if (is_warm && wanted.bad_lines > 0) {
    sai_warn("the chip stays as it is: what a bad line was to say, nobody knows");
    wanted = state.list;
  }
  sai_register_link_service(on_link);
  sai_register_l2_service(unit, on_address);
  put_right(&wanted, is_warm ? "warm start" : "cold start");
  look_around();

  while (!is_ended) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(event_pipe[0], &readable);
    if (pselect(event_pipe[0] + 1, &readable, NULL, NULL, NULL, &while_waiting) > 0) take_events();
    if (!is_to_read) continue;
    is_to_read = 0;
    if (!read_settings(config_path, &wanted)) continue;
    if (wanted.bad_lines > 0) {
      sai_warn("the chip stays as it is: what a bad line was to say, nobody knows");
      continue;
    }
    const char* const loss = examine();
    if (loss != NULL) {
      sai_err("%s; this daemon ends, to be started again", loss);
      return 1;
    }
    put_right(&wanted, "SIGHUP");
  }
  sai_notice("ended; the chip goes on");
  close_sai_log(sai_log_default);
  return 0;
}
