// Random work through the library, by family, and what every family has to give back when asked.
#pragma once

#include <sai.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace soak {

inline constexpr int32_t unit = 0;
inline constexpr int ports = 12;

class Random {
 public:
  explicit Random(uint32_t seed) : engine_(seed) {}

  uint32_t below(uint32_t bound) { return static_cast<uint32_t>(engine_() % bound); }
  int between(int low, int high) { return low + static_cast<int>(below(static_cast<uint32_t>(high - low + 1))); }
  bool one_in(uint32_t bound) { return below(bound) == 0; }

  /// Mostly an Ethernet port, now and then one that the chip does not have.
  int port() { return one_in(64) ? between(ports + 1, 300) : between(1, ports); }
  int flag() { return between(0, 1); }

  /// One of the keys of a map that is not empty.
  template <class Map>
  typename Map::key_type key_of(const Map& map) {
    return std::next(map.begin(), static_cast<std::ptrdiff_t>(below(static_cast<uint32_t>(map.size()))))->first;
  }

 private:
  std::mt19937 engine_;
};

struct Mac {
  uint8_t bytes[6];
};

/// A station's address; `number` below 65536.
inline Mac mac_of(uint32_t number) {
  return {{0x02, 0, 0, 0x50, static_cast<uint8_t>(number >> 8), static_cast<uint8_t>(number)}};
}

/// Of the whole run.
struct Tally {
  uint64_t calls = 0;
  uint64_t refused = 0;
};
extern Tally tally;

/// Counts a call of the library, whatever became of it.
inline int32_t made(int32_t rv) {
  ++tally.calls;
  if (rv < 0) ++tally.refused;
  return rv;
}

/// Ends the program because of a call that did not do what it has to.
[[noreturn]] void fail(const std::string& what);

/// Counts a call whose outcome is known: success where `good`, otherwise a refusal.
inline void expect(bool good, const char* what, int32_t rv) {
  made(rv);
  if (good != (rv >= 0)) fail(std::string(what) + " returned " + std::to_string(rv));
}
inline void must(const char* what, int32_t rv) { expect(true, what, rv); }

/// The numbers that begin the lines of one of the chip's tables.
std::vector<int> ids_in(const char* table);

/// A family of the library's functions, with what it made in the chip.
class Family {
 public:
  virtual ~Family() = default;

  /// Makes what its work stands on; at the beginning of each round.
  virtual void prepare() {}
  /// One piece of work: a call or a few.
  virtual void work(Random& random) = 0;
  /// Gives back everything, settings too.
  virtual void tear_down() = 0;
};

std::unique_ptr<Family> core_family();
std::unique_ptr<Family> port_family();
std::unique_ptr<Family> phy_family();
std::unique_ptr<Family> field_family();
std::unique_ptr<Family> l2_family();
std::unique_ptr<Family> vlan_family();
std::unique_ptr<Family> route_family();
std::unique_ptr<Family> multicast_family();
std::unique_ptr<Family> vport_family();

}  // namespace soak
