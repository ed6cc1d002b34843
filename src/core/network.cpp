// The kernel network interface of the CPU port, and the commands to the kernel module behind it.
#include <sai.h>

#include "core/convert.h"
#include "core/result.h"
#include "core/sdk.h"

using sai::failed;
using sai::result;

namespace {

/// A command in the kernel module's layout: a type and an opcode, then words in host order from byte 8 on.
struct Command {
  uint8_t type = 0;
  uint8_t opcode = 0;
  uint8_t header_rest[6] = {};
  uint32_t words[3] = {};
};

constexpr unsigned tag_command_size = 20;
constexpr unsigned vlan_command_size = 16;
static_assert(sizeof(Command) == tag_command_size);

constexpr int32_t first_tag_command = 36996;
constexpr uint8_t tag_opcodes[16] = {
    33,  // 36996
    0,
    35,  // 36998
    34,  // 36999
    0,  0, 0, 0, 0, 0, 0, 0, 0,
    32,  // 37009
    36,  // 37010
    37,  // 37011
};

/// Meant: a command that is not in the table is sent as opcode 0, not refused.
uint8_t tag_opcode(int32_t command) {
  const int64_t row = int64_t{command} - first_tag_command;
  return row >= 0 && row < int64_t{sizeof tag_opcodes} ? tag_opcodes[row] : 0;
}

uint8_t vlan_opcode(int32_t command) {
  switch (command) {
    case 37008:
      return 39;
    case 37009:
      return 38;
    default:
      return 0;
  }
}

/// Meant: 0 or -1, not a converted code.
int32_t send(const Command& command, unsigned size) {
  kcom_msg_t message{};
  __builtin_memcpy(&message, &command, size);
  return failed(soc_knet_cmd_req(&message, size, size), "Failed to soc_knet_cmd_req: %s") ? SAI_E_FAIL : SAI_E_NONE;
}

int create(int unit, int netif_id, const char* name, const uint8_t* mac) {
  bcm_knet_netif_t netif;
  bcm_knet_netif_t_init(&netif);
  netif.id = netif_id;
  netif.type |= BCM_KNET_NETIF_T_TX_CPU_INGRESS;
  netif.flags |= BCM_KNET_NETIF_F_KEEP_RX_TAG;
  sai::copy_mac(netif.mac_addr, mac);
  bool ended = false;
  for (int i = 0; i < BCM_KNET_NETIF_NAME_MAX; ++i) {
    ended = ended || i == BCM_KNET_NETIF_NAME_MAX - 1 || name[i] == '\0';
    netif.name[i] = ended ? '\0' : name[i];
  }
  return bcm_knet_netif_create(unit, &netif);
}

}  // namespace

int32_t sai_knet_netif_init(int32_t unit, int32_t netif_id, const char* name, const uint8_t* mac) {
  return result(name == nullptr || mac == nullptr ? BCM_E_PARAM : create(unit, netif_id, name, mac),
                "bcm_knet_netif_create failed: %s");
}

int32_t sai_knet_ktag_set(int32_t command, uint32_t value) {
  return send({.opcode = tag_opcode(command), .words = {value}}, tag_command_size);
}

int32_t sai_knet_vlan_set(int32_t command, uint32_t value1, uint32_t value2) {
  return send({.opcode = vlan_opcode(command), .words = {value1, value2}}, vlan_command_size);
}
