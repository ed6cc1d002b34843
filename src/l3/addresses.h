// How traces show addresses and results.
#pragma once

#include "core/result.h"
#include "core/sdk.h"

namespace sai {

// Arguments of traces. Each has a buffer for its text, so that no static buffer is shared; it is written only when the
// trace is logged.

template <class Address, int size>
class AddressText {
 public:
  explicit AddressText(Address address) : address_(address) {}

  Address address() const { return address_; }
  char* room() const { return room_; }
  static constexpr int room_size = size;

 private:
  Address address_;
  mutable char room_[size];
};

/// "192.168.1.10", of an address in host order.
struct Ip4Text : AddressText<bcm_ip_t, sizeof "255.255.255.255"> {
  using AddressText::AddressText;
};

/// Sixteen bytes in hexadecimal, without leading zeros, as "ff:2:0:0:0:0:0:0:0:0:0:0:0:0:0:1".
struct Ip6Text : AddressText<const uint8_t*, sizeof "ff" * 16> {
  using AddressText::AddressText;
};

/// "02:00:00:00:00:2a".
struct MacText : AddressText<const uint8_t*, sizeof "ff" * 6> {
  using AddressText::AddressText;
};

/// "0200:0000:002a".
struct PairedMacText : AddressText<const uint8_t*, sizeof "ffff" * 3> {
  using AddressText::AddressText;
};

[[gnu::cold]] const char* trace_text(const Ip4Text& text);
[[gnu::cold]] const char* trace_text(const Ip6Text& text);
[[gnu::cold]] const char* trace_text(const MacText& text);
[[gnu::cold]] const char* trace_text(const PairedMacText& text);

/// The SDK's text for a result.
struct ErrorText {
  int rv;
};

inline const char* trace_text(ErrorText text) { return error_text(text.rv); }

}  // namespace sai
