// Arguments for every function of sai.h by their C types: good ones, and one at a time bad.
#pragma once

#include <sai.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace input {

/// The value that is good for a parameter of a function, or for a record's field.
int64_t good(std::string_view function, std::string_view name);

/// The ids that the chip chose when the scene was set; they are good before all others.
extern std::map<std::string, int64_t, std::less<>> chosen;

/// Memory of a size that must not be left: a canary stands on both sides, which sanitizers do not let anybody touch.
class Room {
 public:
  explicit Room(std::size_t size);
  Room(const Room&) = delete;
  Room& operator=(const Room&) = delete;
  ~Room();
  uint8_t* get() const { return block_.get() + canary; }
  bool intact();

 private:
  void open();

  static constexpr std::size_t canary = 64;
  static constexpr uint8_t filler = 0xA5;
  std::size_t size_;
  std::unique_ptr<uint8_t[]> block_;
};

/// A number goes in as it is; of bytes, as of an address, it is the first.
template <class T>
void put(T& to, int64_t value) {
  if constexpr (std::is_array_v<T>) {
    std::memset(&to, 0, sizeof to);
    to[0] = static_cast<std::remove_extent_t<T>>(value);
  } else {
    to = static_cast<T>(value);
  }
}

// What the table that is made from sai.h consists of.

enum class Form { ip4, network_ip4 };
enum class Result { none, number, code };

struct Name {
  const char* name;
  int64_t value;
};

struct Field {
  const char* name;
  bool is_number;
  void (*write)(void* record, int64_t value);
};

template <class Record, class Member>
constexpr std::pair<Record*, Member*> types_of(Member Record::*) {
  return {};
}

template <auto member, Form...>
constexpr Field field(const char* name) {
  using Types = decltype(types_of(member));
  using Record = std::remove_pointer_t<typename Types::first_type>;
  using Member = std::remove_pointer_t<typename Types::second_type>;
  return {name, std::is_integral_v<Member>,
          [](void* record, int64_t value) { put(static_cast<Record*>(record)->*member, value); }};
}

/// The fields of a record of sai.h.
template <class Record>
std::span<const Field> fields();

/// A parameter as sai.h declares it.
struct Declared {
  const char* name;
  std::size_t count = 0;  // of the items of an array, when it is known
  bool network_order = false;
  bool taken = false;
};

struct Parameter : Declared {
  bool is_pointer;
  bool is_text;
  bool is_number;
  std::span<const Field> fields;
};
using Parameters = std::vector<Parameter>;

/// What is bad in one call: a parameter, or a field of its record, and in which way. With nothing, all is good.
struct Bad {
  static constexpr std::size_t nothing = SIZE_MAX;
  std::size_t parameter = nothing;
  const Field* field = nullptr;
  bool is_null = false;
  const char* text = nullptr;
  int64_t number = 0;
};

struct Outcome {
  std::optional<int32_t> result;
  bool memory_intact = true;
};

struct Function {
  const char* name;
  const char* prototype;
  const char* summary;
  Result kind;
  Parameters parameters;
  Outcome (*run)(const Function& function, const Bad& bad);
};

/// What an argument is made from. `bad` is null where this one is good.
struct Source {
  Source(const Function& of, std::size_t index, const Bad& all)
      : function(of), parameter(of.parameters[index]), bad(all.parameter == index ? &all : nullptr) {}
  /// The good value of what is called `name`.
  int64_t value(std::string_view name) const { return good(function.name, name); }

  const Function& function;
  const Parameter& parameter;
  const Bad* bad;
};

/// An argument of type T.
template <class T>
class Argument;

template <class T>
requires std::is_integral_v<T>
class Argument<T> {
 public:
  explicit Argument(const Source& source)
      : value_(static_cast<T>(source.bad != nullptr ? source.bad->number : source.value(source.parameter.name))) {}
  T get() const { return value_; }
  bool intact() const { return true; }

 private:
  T value_;
};

template <class T>
requires std::is_class_v<T>
class Argument<T> {
 public:
  explicit Argument(const Source& source) {
    for (const Field& one : fields<T>()) one.write(&record_, source.value(one.name));
    if (source.bad != nullptr && source.bad->field != nullptr) source.bad->field->write(&record_, source.bad->number);
  }
  T get() const { return record_; }
  bool intact() const { return true; }

 private:
  T record_{};
};

std::size_t items_of(const Parameter& parameter);

template <class T>
class Argument<T*> {
 public:
  using Item = std::remove_const_t<T>;
  explicit Argument(const Source& source)
      : is_null_(source.bad != nullptr && source.bad->is_null),
        items_(items_of(source.parameter)),
        room_(items_ * sizeof(T)) {
    auto* const items = reinterpret_cast<Item*>(room_.get());
    std::memset(items, 0, items_ * sizeof(T));
    if constexpr (std::is_class_v<Item>)
      for (std::size_t i = 0; i < items_; ++i) items[i] = Argument<Item>(source).get();
    else
      put(items[0], source.value(source.parameter.name));
    before_.assign(room_.get(), room_.get() + items_ * sizeof(T));
  }
  T* get() const { return is_null_ ? nullptr : reinterpret_cast<T*>(room_.get()); }
  bool intact() {
    return room_.intact() && (!std::is_const_v<T> || std::memcmp(room_.get(), before_.data(), before_.size()) == 0);
  }

 private:
  bool is_null_;
  std::size_t items_;
  Room room_;
  std::vector<uint8_t> before_;
};

/// A text, with its end at the end of its room.
class Text {
 public:
  explicit Text(const Source& source);
  char* get() const { return is_null_ ? nullptr : reinterpret_cast<char*>(room_.get()); }
  bool intact() { return room_.intact(); }

 private:
  bool is_null_;
  Room room_;
};

template <>
class Argument<char*> : public Text {
  using Text::Text;
};
template <>
class Argument<const char*> : public Text {
  using Text::Text;
};

template <>
class Argument<sai_log_handle*> {
 public:
  explicit Argument(const Source& source);
  sai_log_handle* get() const { return log_; }
  bool intact() const { return true; }

 private:
  sai_log_handle* log_;
};

template <class... Args>
class Argument<void (*)(Args...)> {
 public:
  using Callback = void (*)(Args...);
  explicit Argument(const Source& source) : is_null_(source.bad != nullptr) {}
  Callback get() const {
    constexpr Callback ignore = [](Args...) {};
    return is_null_ ? nullptr : ignore;
  }
  bool intact() const { return true; }

 private:
  bool is_null_;
};

template <class T>
Parameter parameter_of(const Declared& declared) {
  using Pointee = std::remove_const_t<std::remove_pointer_t<T>>;
  // A buffer for a text has none of its own.
  const bool is_text = std::is_same_v<Pointee, char> && !std::string_view(declared.name).ends_with("_buf");
  Parameter parameter{declared, std::is_pointer_v<T>, is_text, std::is_integral_v<T>, {}};
  if constexpr (std::is_class_v<Pointee> && !std::is_same_v<Pointee, sai_log_handle>)
    parameter.fields = fields<Pointee>();
  return parameter;
}

template <class Returned, class... Args>
Parameters parameters(Returned (*)(Args...), std::initializer_list<Declared> declared) {
  [[maybe_unused]] auto next = declared.begin();
  return {parameter_of<Args>(*next++)...};
}

inline Parameters parameters(void (*)(const char*, ...), std::initializer_list<Declared> declared) {
  return {parameter_of<const char*>(*declared.begin())};
}

template <class Returned, class... Args, std::size_t... I>
Outcome call(Returned (*function)(Args...), const Function& row, const Bad& bad, std::index_sequence<I...>) {
  std::tuple<Argument<Args>...> arguments(Source(row, I, bad)...);
  Outcome outcome;
  if constexpr (std::is_same_v<Returned, int32_t>)
    outcome.result = function(std::get<I>(arguments).get()...);
  else if constexpr (std::is_pointer_v<Returned>)
    close_sai_log(function(std::get<I>(arguments).get()...));
  else
    function(std::get<I>(arguments).get()...);
  outcome.memory_intact = (std::get<I>(arguments).intact() && ...);
  return outcome;
}

template <class Returned, class... Args>
Outcome call(Returned (*function)(Args...), const Function& row, const Bad& bad) {
  return call(function, row, bad, std::index_sequence_for<Args...>{});
}

/// A message is logged as it stands.
inline Outcome call(void (*function)(const char*, ...), const Function& row, const Bad& bad) {
  Argument<const char*> text(Source(row, 0, bad));
  text.get() == nullptr ? function(nullptr) : function("%s", text.get());
  return {std::nullopt, text.intact()};
}

template <auto function>
Outcome run(const Function& row, const Bad& bad) {
  return call(function, row, bad);
}

/// Every function of sai.h.
std::span<const Function> functions();

}  // namespace input
