#define _POSIX_C_SOURCE 200809L
#include "settings.h"

#include <arpa/inet.h>
#include <errno.h>
#include <sai.h>
#include <stdio.h>
#include <string.h>

int is_same(const struct setting* a, const struct setting* b) { return strcmp(a->text, b->text) == 0; }

int is_same_member(const struct setting* a, const struct setting* b) {
  return a->kind == MEMBER && b->kind == MEMBER && a->vlan == b->vlan && a->port == b->port;
}

int is_untagged_too(const struct setting* a, const struct setting* b) {
  return a->kind == MEMBER && b->kind == MEMBER && !a->is_tagged && !b->is_tagged && a->port == b->port;
}

int is_rival(const struct setting* a, const struct setting* b) {
  if (a->kind != b->kind) return 0;
  if (a->kind == RULE) return is_same(a, b);
  if (a->kind == ROUTE) return a->ip == b->ip && a->mask == b->mask;
  return a->kind == MEMBER ? is_same_member(a, b) || is_untagged_too(a, b) : a->vlan == b->vlan;
}

int uses_address_too(const struct setting* a, const struct setting* b) {
  return a != b && a->kind == ROUTE && a->vlan == b->vlan && memcmp(a->mac, b->mac, sizeof a->mac) == 0;
}

struct setting* find(struct list* list, relation* is_related, const struct setting* to) {
  for (int i = 0; i < list->count; ++i)
    if (is_related(&list->settings[i], to)) return &list->settings[i];
  return NULL;
}

#define A_PORT "port 1..255"
#define A_VLAN "vlan 2..4094"

static const char* const forms[] = {"mac MAC",
                                    A_VLAN,
                                    A_PORT " tagged|untagged " A_VLAN,
                                    "interface 2..4094",
                                    "host ADDRESS MAC " A_VLAN " " A_PORT,
                                    "route SUBNET/LENGTH via ADDRESS MAC " A_VLAN " " A_PORT,
                                    "permit " A_PORT " to SUBNET/LENGTH",
                                    "deny " A_PORT " to SUBNET/LENGTH"};

static int is_none(const uint8_t mac[6]) {
  static const uint8_t none[6];
  return memcmp(mac, none, sizeof none) == 0;
}

int is_mac(const char* text, uint8_t mac[6]) {
  int end = 0;
  sscanf(text, "%2hhx:%2hhx:%2hhx:%2hhx:%2hhx:%2hhx%n", &mac[0], &mac[1], &mac[2], &mac[3], &mac[4], &mac[5], &end);
  return end > 0 && text[end] == '\0' && (mac[0] & 1) == 0;
}

static int is_address(const char* text, uint32_t* ip) {
  struct in_addr address;
  if (inet_pton(AF_INET, text, &address) != 1) return 0;
  *ip = ntohl(address.s_addr);
  return 1;
}

static int is_subnet(char* text, uint32_t* ip, uint32_t* mask) {
  char* const slash = strchr(text, '/');
  int length = 0;
  int end = 0;
  if (slash == NULL || sscanf(slash, "/%2d%n", &length, &end) != 1 || slash[end] != '\0') return 0;
  if (length < 0 || length > 32) return 0;
  *slash = '\0';
  *mask = length == 0 ? 0 : UINT32_MAX << (32 - length);
  return is_address(text, ip) && (*ip & ~*mask) == 0;
}

int understand(struct setting* s) {
  char a[20];
  char b[20];
  char c[20];
  int end = 0;
  int is_right = 1;
  if (sscanf(s->text, "vlan %4d%n", &s->vlan, &end) == 1) {
    s->kind = VLAN;
  } else if (sscanf(s->text, "port %3d %9s vlan %4d%n", &s->port, a, &s->vlan, &end) == 3) {
    s->kind = MEMBER;
    s->is_tagged = strcmp(a, "tagged") == 0;
    is_right = s->is_tagged || strcmp(a, "untagged") == 0;
  } else if (sscanf(s->text, "interface %4d%n", &s->vlan, &end) == 1) {
    s->kind = INTERFACE;
  } else if (sscanf(s->text, "host %19s %19s vlan %4d port %3d%n", a, b, &s->vlan, &s->port, &end) == 4) {
    s->kind = ROUTE;
    s->mask = UINT32_MAX;
    is_right = is_address(a, &s->ip) && is_mac(b, s->mac);
    s->next_hop = s->ip;
  } else if (sscanf(s->text, "route %19s via %19s %19s vlan %4d port %3d%n", a, b, c, &s->vlan, &s->port, &end) == 5) {
    s->kind = ROUTE;
    is_right = is_subnet(a, &s->ip, &s->mask) && is_address(b, &s->next_hop) && is_mac(c, s->mac);
  } else if (sscanf(s->text, "%9s port %3d to %19s%n", a, &s->port, b, &end) == 3) {
    s->kind = RULE;
    s->is_permit = strcmp(a, "permit") == 0;
    is_right = (s->is_permit || strcmp(a, "deny") == 0) && is_subnet(b, &s->ip, &s->mask);
  }
  const int has_vlan = s->kind != RULE;
  const int has_port = s->kind != VLAN && s->kind != INTERFACE;
  return is_right && end > 0 && s->text[end] == '\0' &&
         (!has_vlan || (s->vlan >= first_vlan && s->vlan <= last_vlan)) &&
         (!has_port || (s->port >= 1 && s->port <= max_port));
}

/* Adds what a line says to the list. Returns what is wrong with it, or null. */
static const char* read_setting(struct list* list, struct setting* s) {
  static char wrong[128];
  const size_t word = strcspn(s->text, " ");
  const char* form = "a line that begins with mac, vlan, port, interface, host, route, permit or deny";
  for (size_t i = 0; i < sizeof forms / sizeof *forms; ++i)
    if (strncmp(forms[i], s->text, word) == 0 && forms[i][word] == ' ') form = forms[i];
  snprintf(wrong, sizeof wrong, "expected %s", form);
  if (form == forms[0]) {
    uint8_t mac[6];
    if (s->text[word] == '\0' || !is_mac(s->text + word + 1, mac)) return wrong;
    if (!is_none(list->mac)) return "an earlier line has decided that";
    memcpy(list->mac, mac, sizeof mac);
    return NULL;
  }
  if (!understand(s)) return wrong;
  const struct setting* const rival = find(list, is_rival, s);
  snprintf(wrong, sizeof wrong, "line %d is about the same", rival == NULL ? 0 : rival->line);
  if (rival != NULL) return wrong;
  if (list->count == max_settings) return "there is no room for more settings";
  list->settings[list->count++] = *s;
  return NULL;
}

int read_settings(const char* path, struct list* list) {
  char line[1024];
  FILE* const file = fopen(path, "r");
  memset(list, 0, sizeof *list);
  for (int number = 1; file != NULL && fgets(line, sizeof line, file) != NULL; ++number) {
    struct setting setting = {.line = number, .entry = -1};
    size_t used = 0;
    line[strcspn(line, "#")] = '\0';
    for (const char* word = strtok(line, " \t\r\n"); word != NULL && used < sizeof setting.text;
         word = strtok(NULL, " \t\r\n"))
      used += (size_t)snprintf(setting.text + used, sizeof setting.text - used, used == 0 ? "%s" : " %s", word);
    const char* const wrong = used == 0 ? NULL : read_setting(list, &setting);
    if (wrong == NULL) continue;
    sai_err("%s:%d: %s", path, number, wrong);
    ++list->bad_lines;
  }
  const int is_read = file != NULL && !ferror(file);
  if (!is_read) sai_err("%s cannot be read: %s", path, strerror(errno));
  if (file != NULL) fclose(file);
  if (is_read && is_none(list->mac)) sai_err("%s has no good line: %s", path, forms[0]);
  return is_read && !is_none(list->mac);
}
