// Where frames come from and go to, each with numbers of its own kind.
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <variant>

namespace chip {

/// A number of one kind, which does not pass for one of another. A number that stands in the code is written as it is;
/// one that is computed or handed in says what it is: `Port::of(number)`.
template <class Kind>
class Id {
 public:
  constexpr Id() = default;
  // NOLINTBEGIN(google-explicit-constructor): a literal is a number of whichever kind is wanted
#if defined(__clang__) && __clang_major__ < 15
  constexpr Id(int number) : number_(number) {}  // consteval crashes this compiler; builds with gcc check the callers
#else
  consteval Id(int number) : number_(number) {}
#endif
  // NOLINTEND(google-explicit-constructor)
  static constexpr Id of(int number) {
    Id result;
    result.number_ = number;
    return result;
  }

  constexpr int number() const { return number_; }
  /// The number as an index; it is not negative.
  constexpr std::size_t index() const { return static_cast<std::size_t>(number_); }

  friend constexpr auto operator<=>(const Id&, const Id&) = default;

  template <class Archive>
  void serialize(Archive& archive) {
    archive(number_);
  }

 private:
  int number_ = 0;
};

/// A port of the chip. 0 is the CPU port, and never stands for none or for all.
using Port = Id<struct PortKind>;
using TrunkId = Id<struct TrunkKind>;
using VirtualPortId = Id<struct VirtualPortKind>;
/// A multicast group.
using GroupId = Id<struct GroupKind>;
/// A destination of mirrored frames.
using MirrorId = Id<struct MirrorKind>;

/// Where one frame can go, or come from; the CPU is a port.
using Place = std::variant<Port, TrunkId, VirtualPortId>;

inline bool is_trunk(const Place& place) { return std::holds_alternative<TrunkId>(place); }
inline bool is_virtual(const Place& place) { return std::holds_alternative<VirtualPortId>(place); }

/// A function of several kinds, for std::visit.
template <class... OfKind>
struct ByKind : OfKind... {
  using OfKind::operator()...;
};
template <class... OfKind>
ByKind(OfKind...) -> ByKind<OfKind...>;

}  // namespace chip

template <class Kind>
struct std::hash<chip::Id<Kind>> {
  std::size_t operator()(const chip::Id<Kind>& id) const { return std::hash<int>()(id.number()); }
};
