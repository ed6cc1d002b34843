#include "values.h"

#include <arpa/inet.h>

#include <cstring>
#include <set>

namespace saish {

void read(const std::string& where, const std::string& word, uint8_t (&mac)[6]) {
  bool good = word.size() == sizeof mac * 3 - 1;
  for (std::size_t i = 0; good && i < sizeof mac; ++i) {
    const std::string digits = word.substr(i * 3, 2);
    const std::optional<uint8_t> byte = number<uint8_t>("0x" + digits);
    good = byte && (i + 1 == sizeof mac || word[i * 3 + 2] == ':');
    mac[i] = byte.value_or(0);
  }
  if (!good) throw BadInput(where + ": \"" + word + "\" is not a MAC address such as 00:11:22:33:44:55");
}

void read(const std::string& where, const std::string& word, uint8_t (&ip6)[16]) {
  if (inet_pton(AF_INET6, word.c_str(), ip6) != 1)
    throw BadInput(where + ": \"" + word + "\" is not an IPv6 address such as ff02::1");
}

uint32_t read_ip4(const std::string& where, const std::string& word) {
  in_addr address;
  if (inet_pton(AF_INET, word.c_str(), &address) == 1) return ntohl(address.s_addr);
  const std::optional<uint32_t> given = number<uint32_t>(word);
  if (!given) throw BadInput(where + ": \"" + word + "\" is not an IPv4 address such as 10.0.0.1");
  return *given;
}

uint32_t other_order(uint32_t address) { return htonl(address); }

std::string text(const uint8_t (&mac)[6]) {
  char result[18];
  std::snprintf(result, sizeof result, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
  return result;
}

std::string text(const uint8_t (&ip6)[16]) {
  char result[INET6_ADDRSTRLEN];
  return inet_ntop(AF_INET6, ip6, result, sizeof result);
}

std::string ip4_text(uint32_t address) {
  const in_addr network = {htonl(address)};
  char result[INET_ADDRSTRLEN];
  return inet_ntop(AF_INET, &network, result, sizeof result);
}

std::string names_text(std::span<const Field> fields) {
  std::string result;
  for (const Field& field : fields) result += (result.empty() ? "" : ", ") + std::string(field.name);
  return result;
}

void read_fields(std::span<const Field> fields, const std::string& where, const std::string& word, void* record) {
  const std::optional<Words> items = enclosed(word, '{', '}');
  if (!items) throw BadInput(where + ": \"" + word + "\" is not a record such as {" + fields[0].name + "=0}");
  std::set<std::string> given;
  for (const std::string& item : *items) {
    const std::size_t equals = std::min(item.find('='), item.size());
    const std::string name = trimmed(item.substr(0, equals));
    const Field* field = nullptr;
    for (const Field& candidate : fields)
      if (name == candidate.name) field = &candidate;
    if (field == nullptr)
      throw BadInput(where + ": there is no field \"" + name + "\"; the fields are " + names_text(fields));
    if (!given.insert(name).second) throw BadInput(where + "." + name + " is given twice");
    if (equals == item.size()) throw BadInput(where + "." + name + " has no value; write " + name + "=VALUE");
    field->read(where + "." + name, trimmed(item.substr(equals + 1)), record);
  }
}

std::string fields_text(std::span<const Field> fields, const void* record) {
  std::string result;
  for (const Field& field : fields)
    result += (result.empty() ? "{" : ", ") + std::string(field.name) + "=" + field.text(record);
  return result + "}";
}

}  // namespace saish
