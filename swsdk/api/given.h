// The arguments of a recorded call, parsed from their texts: to repeat the call or to write it as C.
#pragma once

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "api/caller.h"
#include "api/calls/c_text.h"
#include "api/calls/parse.h"
#include "api/control_records.h"
#include "api/recording.h"

namespace api {

/// A call in C: definitions that come before it, statements that make its arguments.
struct CCall {
  std::vector<std::string> definitions;
  std::string statements;
};

/// What the callbacks of the present line return: a traversal that its callback ended has the callback's result.
inline int callback_answer = 0;

/// Functions of one type that do nothing; each has its own address.
template <class F>
struct Callbacks;

template <class Returned, class... Args>
struct Callbacks<Returned (*)(Args...)> {
  using Function = Returned (*)(Args...);
  static constexpr std::size_t count = 64;

  template <std::size_t>
  static Returned answer(Args...) {
    if constexpr (!std::is_void_v<Returned>) return callback_answer;
  }

  static Function numbered(uintptr_t number) {
    if (number < 1 || number > count) throw Unreadable("more callbacks than can be told apart");
    static constexpr auto all = []<std::size_t... i>(std::index_sequence<i...>) {
      return std::array<Function, count>{&answer<i>...};
    }
    (std::make_index_sequence<count>());
    return all[number - 1];
  }

  static std::string c_definition(const std::string& name) {
    constexpr bool answers = !std::is_void_v<Returned>;
    std::string parameters;
    std::string body;
    int number = 0;
    const auto add = [&](const std::string& type) {
      const std::string parameter = "a" + std::to_string(number++);
      parameters += (parameters.empty() ? "" : ", ") + type + ' ' + parameter;
      body += "  (void)" + parameter + ";\n";
    };
    (add(c_type<Args>()), ...);
    return "static " + c_type<Returned>() + ' ' + name + '(' + parameters + ") {\n" + body +
           (answers ? "  return callback_answer;\n" : "") + "}\n";
  }
};

/// The number in "<callback 3>".
uintptr_t parsed_pointer(std::string_view text, const char* what);

/// A pointer of a recording, which gets the number there; or one of a client.
void know_pointer(const char* what, const void* pointer, uintptr_t number);

/// The capacity that the text of an array shows: "[1, 2]", or "&[1] of 16" for an array that the call fills.
std::size_t parsed_room(std::string_view text);

/// A capacity greater than that of any table of the chip, and the memory that an array gets at most.
constexpr std::size_t max_room = 1 << 20;
constexpr std::size_t max_bytes = std::size_t{16} << 20;

/// An argument of any type.
struct AnyGiven {
  virtual ~AnyGiven() = default;
  /// The expression that is passed in C; `name` is for variables that the statements before it define.
  virtual std::string c(const std::string& name, CCall& call) const = 0;
  /// How many items of an array the argument asks for, if it is a count.
  virtual std::size_t asked_items() const { return 0; }
  /// How many items an array has; nothing if the argument is no array.
  virtual std::optional<std::size_t> items_there() const { return std::nullopt; }
};

/// A plain value or a record by value.
template <class T>
struct Given : AnyGiven {
  explicit Given(std::string_view text) { parse_value(text, value); }
  T get() const { return value; }
  std::string c(const std::string& name, CCall& call) const override {
    if constexpr (!std::is_class_v<T>) return text(value) + (std::is_unsigned_v<T> ? "U" : "");
    call.statements += "  " + c_type<T>() + ' ' + name + " = {0};\n" + c_assignment(name, value);
    return name;
  }
  std::size_t asked_items() const override {
    if constexpr (std::is_integral_v<T>) return static_cast<std::size_t>(std::max(value, T{0}));
    return 0;
  }
  T value{};
};

/// What the call reads, writes or both: one value or an array.
template <class T>
struct Given<T*> : AnyGiven {
  using Item = std::remove_const_t<T>;
  explicit Given(std::string_view text) {
    if (text == "NULL") return;
    room = std::is_same_v<Item, uint8_t> ? sizeof(bcm_ip6_t) : parsed_room(text);
    count = std::clamp(room, std::size_t{1}, std::min(max_room, max_bytes / sizeof(Item)));
    items = std::make_unique<Item[]>(count);
    if (text.starts_with('&')) return;
    given = count;
    text = text.substr(0, text.find(" -> &"));
    if constexpr (std::is_same_v<Item, uint8_t>) {
      const std::vector<uint8_t> bytes =
          text.size() == 17 && text.find("::") == std::string_view::npos ? parsed_mac(text) : parsed_ip6(text);
      std::copy(bytes.begin(), bytes.end(), items.get());
    } else if (text.starts_with('[')) {
      parse_items(text, items.get(), count);
    } else {
      parse_value(text, items[0]);
    }
  }
  T* get() const { return items.get(); }
  std::string c(const std::string& name, CCall& call) const override {
    if (items == nullptr) return "NULL";
    call.statements += "  " + c_type<Item>() + ' ' + name + '[' + std::to_string(count) + "] = {0};\n";
    for (std::size_t i = 0; i < given; ++i)
      call.statements += c_assignment(name + '[' + std::to_string(i) + ']', items[i]);
    return name;
  }
  std::optional<std::size_t> items_there() const override {
    return items == nullptr ? std::nullopt : std::optional(room);
  }
  std::size_t room = 0;   // as recorded
  std::size_t count = 0;  // as allocated
  std::size_t given = 0;  // that the text has values of
  std::unique_ptr<Item[]> items;
};

/// Text, or room for it: "&? of 100".
template <>
struct Given<char*> : AnyGiven {
  explicit Given(std::string_view text) : null(text == "NULL") {
    if (text.starts_with('&')) room = std::min(parsed_room(text), max_text);
    if (room)
      characters.resize(std::max(*room, std::size_t{1}));
    else if (!null)
      characters = parsed_quoted(text);
  }
  char* get() { return null ? nullptr : characters.data(); }
  std::string c(const std::string& name, CCall& call) const override {
    if (null) return "NULL";
    call.statements += "  char " + name + "[] = " + c_string(characters) + ";\n";
    return name;
  }
  std::optional<std::size_t> items_there() const override { return room; }
  bool null;
  std::optional<std::size_t> room;
  std::string characters;
};

template <>
struct Given<const char*> : Given<char*> {
  using Given<char*>::Given;
};

/// A pointer that is never dereferenced: its number stands for it.
template <class T>
requires std::is_void_v<T> || std::is_pointer_v<T>
struct Given<T*> : AnyGiven {
  explicit Given(std::string_view text) : number(parsed_pointer(text, "pointer")) {
    if (number > 0) know_pointer("pointer", get(), number);
  }
  T* get() const {
    return reinterpret_cast<T*>(number);  // NOLINT(performance-no-int-to-ptr): it is no address
  }
  std::string c(const std::string& /*name*/, CCall& /*call*/) const override {
    return number == 0 ? "NULL" : "(" + c_type<T*>() + ')' + std::to_string(number);
  }
  uintptr_t number;
};

/// A frame.
template <>
struct Given<const void*> : AnyGiven {
  explicit Given(std::string_view text) : bytes(parsed_bytes(text)) {
    bytes.reserve(1);  // an empty frame has an address, too
  }
  const void* get() const { return bytes.data(); }
  std::string c(const std::string& name, CCall& call) const override {
    std::string list;
    for (const uint8_t byte : bytes) list += (list.empty() ? "" : ", ") + text(byte);
    call.statements += "  static const unsigned char " + name + "[] = {" + (list.empty() ? "0" : list) + "};\n";
    return name;
  }
  std::optional<std::size_t> items_there() const override { return bytes.size(); }
  std::vector<uint8_t> bytes;
};

template <class Returned, class... Args>
struct Given<Returned (*)(Args...)> : AnyGiven {
  using Function = Returned (*)(Args...);
  explicit Given(std::string_view text) : number(parsed_pointer(text, "callback")) {
    if (number > 0) know_pointer("callback", reinterpret_cast<const void*>(get()), number);
  }
  Function get() const {
    if (number == 0) return nullptr;
    // A client's function has no meaning here but to name it in what the client is told.
    if (present_caller() != nullptr) return reinterpret_cast<Function>(number);
    return Callbacks<Function>::numbered(number);
  }
  std::string c(const std::string& /*name*/, CCall& call) const override {
    if (number == 0) return "NULL";
    const std::string name = "callback_" + std::to_string(number);
    call.definitions.push_back(Callbacks<Function>::c_definition(name));
    return name;
  }
  uintptr_t number;
};

template <>
struct Given<kcom_msg_t*> : AnyGiven {
  explicit Given(std::string_view text)
      : null(text == "NULL"), bytes(null || text.starts_with('&') ? std::vector<uint8_t>() : parsed_bytes(text)) {
    if (bytes.size() > sizeof message) throw Unreadable(text, "command that fits");
    std::copy(bytes.begin(), bytes.end(), message.bytes);
  }
  kcom_msg_t* get() { return null ? nullptr : &message; }
  std::string c(const std::string& name, CCall& call) const override {
    if (null) return "NULL";
    call.statements += "  kcom_msg_t " + name + " = {{0}};\n" + c_assignment(name + ".bytes", message.bytes);
    return '&' + name;
  }
  bool null;
  std::vector<uint8_t> bytes;
  kcom_msg_t message{};
};

}  // namespace api
