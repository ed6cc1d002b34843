#include <bcm/knet.h>

#include "api/call.h"

using api::inout;

int bcm_knet_netif_create(int unit, bcm_knet_netif_t* netif) {
  return api::Call(calls::bcm_knet_netif_create(unit, netif)).answer([&](chip::Chip& chip) {
    const chip::NetworkInterface wanted{
        .type = netif->type,
        .flags = netif->flags,
        .mac = api::address(netif->mac_addr),
        .name = std::string(netif->name, strnlen(netif->name, sizeof netif->name)),
    };
    return chip.network_interfaces.create(wanted, netif->id);
  });
}
