#include "l3/addresses.h"

#include <stdio.h>

const char* sai::trace_text(const Ip4Text& text) {
  const bcm_ip_t ip = text.address();
  snprintf(text.room(), text.room_size, "%u.%u.%u.%u", ip >> 24, ip >> 16 & 0xFF, ip >> 8 & 0xFF, ip & 0xFF);
  return text.room();
}

const char* sai::trace_text(const Ip6Text& text) {
  int length = 0;
  for (int i = 0; i < 16; ++i)
    length += snprintf(text.room() + length, static_cast<size_t>(text.room_size - length), i == 0 ? "%x" : ":%x",
                       text.address()[i]);
  return text.room();
}

const char* sai::trace_text(const MacText& text) {
  const uint8_t* const mac = text.address();
  snprintf(text.room(), text.room_size, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3], mac[4],
           mac[5]);
  return text.room();
}

const char* sai::trace_text(const PairedMacText& text) {
  const uint8_t* const mac = text.address();
  snprintf(text.room(), text.room_size, "%02x%02x:%02x%02x:%02x%02x", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
  return text.room();
}
