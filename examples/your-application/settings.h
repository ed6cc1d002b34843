/* The settings of switchd's file: one a line, as README.md describes them. */
#ifndef SETTINGS_H
#define SETTINGS_H

#include <stdint.h>

enum { max_settings = 1024, max_port = 255, first_vlan = 2, last_vlan = 4094 };

/* In the order in which they are made: each needs only those before it. */
enum kind { VLAN, MEMBER, INTERFACE, ROUTE, RULE };

/* What is known of a setting in the chip. UNREAD: it was written, but no function of the library reads it. */
enum status { MISSING, UNREAD, THERE };

struct setting {
  char text[96]; /* its line, with single spaces; equal texts are equal settings */
  enum kind kind;
  enum status status;
  int line;
  int32_t entry; /* a rule's id, which the chip chooses and no function tells again; -1: none */
  int vlan, port, is_tagged, is_permit;
  uint32_t ip, mask, next_hop; /* in host byte order; a route to one host has all bits in its mask */
  uint8_t mac[6];              /* the next hop's, at that port of that VLAN */
};

struct list {
  struct setting settings[max_settings];
  int count;
  int bad_lines;
  uint8_t mac[6]; /* the switch's own */
};

/* Reads the file. Bad lines are logged and passed over. False when the file cannot be read or has no MAC address. */
int read_settings(const char* path, struct list* list);

/* Fills in a setting from its text. False when it is none. */
int understand(struct setting* setting);

int is_mac(const char* text, uint8_t mac[6]);

typedef int relation(const struct setting* a, const struct setting* b);

/* The first setting of a list that has this relation to another, or null. */
struct setting* find(struct list* list, relation* is_related, const struct setting* to);

relation is_same;
relation is_same_member;   /* the same port of the same VLAN, tagged or not */
relation is_untagged_too;  /* the same port's untagged frames, of whichever VLAN */
relation is_rival;         /* about one thing, so that only one of the two can be in force */
relation uses_address_too; /* another route with the same next hop */

#endif
