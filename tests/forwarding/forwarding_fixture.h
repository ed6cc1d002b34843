// The whole switch as an application sees it: the library has started the chip, all links are up, frames come in.
#pragma once

#include <gtest/gtest.h>
#include <sai.h>
#include <swsdk/chip.h>
#include <swsdk/frames.h>

#include <cstdio>
#include <string>

#include "support/frames.h"
#include "support/start.h"

namespace support {

class ForwardingTest : public testing::Test {
 protected:
  ForwardingTest() {
    start_chip();
    EXPECT_EQ(sai_switch_chip_init(mac(0xC0).data()), SAI_E_NONE);
    connect();
  }
  ~ForwardingTest() override { swsdk_power_off(); }

  /// Brings all links up, and takes the frames that leave.
  void connect() {
    for (int port = 1; port <= 12; ++port) swsdk_link_event(0, port, 1);
    swsdk_events_drain();
    EXPECT_EQ(swsdk_frame_handle(0, take, &out_), 0);
  }

  /// Makes a VLAN with members: the library's CPU port is tagged, as are the ports unless they are in `untagged`.
  static void vlan(uint16_t id, std::initializer_list<uint16_t> tagged, std::initializer_list<uint16_t> untagged = {}) {
    EXPECT_EQ(sai_vlan_create(0, id), SAI_E_NONE);
    for (const uint16_t port : tagged) EXPECT_EQ(sai_vlan_port_add(0, id, port, 1), SAI_E_NONE);
    for (const uint16_t port : untagged) EXPECT_EQ(sai_vlan_port_add(0, id, port, 0), SAI_E_NONE);
  }

  /// Lets a frame come in and tells the copies that leave, a line each: "3: 01>02 [10] ...", "cpu 0x2: ..."; why it is
  /// not passed on stands last: "dropped: storm control".
  std::string send(int port, const Bytes& frame) {
    out_.clear();
    const int reason = swsdk_frame_send(0, port, frame.data(), frame.size());
    if (reason != 0) out_ += std::string("dropped: ") + (reason > 0 ? swsdk_drop_name(reason) : "refused") + '\n';
    return out_;
  }

 private:
  static void take(int, const swsdk_out* out, void* text) {
    char place[32];
    if (out->port == 0)
      std::snprintf(place, sizeof place, "cpu 0x%x: ", out->cpu);
    else
      std::snprintf(place, sizeof place, "%d: ", out->port);
    *static_cast<std::string*>(text) += place + told({out->data, out->length}) + '\n';
  }

  std::string out_;
};

}  // namespace support
