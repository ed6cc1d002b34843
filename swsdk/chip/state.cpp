#include "chip/state.h"

#include <cereal/archives/portable_binary.hpp>
#include <cereal/types/array.hpp>
#include <cereal/types/map.hpp>
#include <cereal/types/memory.hpp>
#include <cereal/types/optional.hpp>
#include <cereal/types/set.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/utility.hpp>
#include <cereal/types/variant.hpp>
#include <cereal/types/vector.hpp>
#include <sstream>
#include <type_traits>

namespace chip {

/// Only ever named.
struct Anything {
  template <class T>
  operator T() const;  // NOLINT(google-explicit-constructor): it stands for the value of any member
};

namespace {

/// How many members a record has.
template <class T, class... Given>
consteval std::size_t member_count() {
  if constexpr (requires { T{Given{}..., Anything{}}; })
    return member_count<T, Given..., Anything>();
  else
    return sizeof...(Given);
}

/// A plain record, whose members are its state; not an array.
template <class T>
concept Record = std::is_class_v<T> && std::is_aggregate_v<T> && !requires {
  std::tuple_size<T>::value;
};

}  // namespace

template <class Archive, Record T>
void serialize(Archive& archive, T& record) {
  constexpr std::size_t count = member_count<T>();
  static_assert(count <= 12);
  // clang-format off
  if constexpr (count == 0) {}
  else if constexpr (count == 1) { auto& [a] = record; archive(a); }
  else if constexpr (count == 2) { auto& [a, b] = record; archive(a, b); }
  else if constexpr (count == 3) { auto& [a, b, c] = record; archive(a, b, c); }
  else if constexpr (count == 4) { auto& [a, b, c, d] = record; archive(a, b, c, d); }
  else if constexpr (count == 5) { auto& [a, b, c, d, e] = record; archive(a, b, c, d, e); }
  else if constexpr (count == 6) { auto& [a, b, c, d, e, f] = record; archive(a, b, c, d, e, f); }
  else if constexpr (count == 7) { auto& [a, b, c, d, e, f, g] = record; archive(a, b, c, d, e, f, g); }
  else if constexpr (count == 8) { auto& [a, b, c, d, e, f, g, h] = record; archive(a, b, c, d, e, f, g, h); }
  else if constexpr (count == 9) { auto& [a, b, c, d, e, f, g, h, i] = record; archive(a, b, c, d, e, f, g, h, i); }
  else if constexpr (count == 10) {
    auto& [a, b, c, d, e, f, g, h, i, j] = record;
    archive(a, b, c, d, e, f, g, h, i, j);
  } else if constexpr (count == 11) {
    auto& [a, b, c, d, e, f, g, h, i, j, k] = record;
    archive(a, b, c, d, e, f, g, h, i, j, k);
  } else {
    auto& [a, b, c, d, e, f, g, h, i, j, k, l] = record;
    archive(a, b, c, d, e, f, g, h, i, j, k, l);
  }
  // clang-format on
}

std::string state_of(const Chip& chip) {
  std::ostringstream out;
  cereal::PortableBinaryOutputArchive archive(out);
  archive(chip);
  return std::move(out).str();
}

void load_state(const std::string& state, Chip& chip) {
  std::istringstream in(state);
  cereal::PortableBinaryInputArchive archive(in);
  archive(chip);
}

}  // namespace chip
