// The MAC table from the side of frames, without frames.
#include <swsdk/chip.h>

#include "api/call.h"
#include "chip/gports.h"
#include "chip/learning.h"

using chip::Chip;

int swsdk_l2_learn(int unit, int vid, const unsigned char* mac, int port, unsigned tunnel) {
  const auto learn = [&](Chip& chip) {
    const int place = chip::gport::port_of(port);
    if (!chip.mac_table.is_place({.port = place})) return -1;
    const chip::Source source{api::mac_at(mac), static_cast<uint16_t>(vid), place, tunnel};
    return is_in_place(chip::learn(chip, source)) ? 1 : 0;
  };
  if (mac == nullptr || !chip::MacTable::is_vlan(vid)) return -1;
  return api::act(__func__, unit, learn, vid, api::mac(mac), port, tunnel);
}

int swsdk_l2_lookup(int unit, int vid, const unsigned char* mac) {
  const auto look_up = [&](Chip& chip) { return chip::look_up(chip, vid, api::mac_at(mac)) != nullptr ? 1 : 0; };
  if (mac == nullptr || !chip::MacTable::is_vlan(vid)) return -1;
  return api::act(__func__, unit, look_up, vid, api::mac(mac));
}
