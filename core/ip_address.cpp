#include "core/ip_address.h"

#include <cstdio>

namespace velhal::ip {

std::string Ipv4Text(const uint8_t (&address)[4]) {
  return std::to_string(address[0]) + "." + std::to_string(address[1]) + "." +
         std::to_string(address[2]) + "." + std::to_string(address[3]);
}

std::string Ipv6Text(const uint8_t (&address)[16]) {
  uint32_t groups[8];
  for (int i = 0; i < 8; ++i) groups[i] = address[2 * i] << 8 | address[2 * i + 1];
  if (groups[0] == 0 && groups[1] == 0 && groups[2] == 0 && groups[3] == 0 && groups[4] == 0 &&
      groups[5] == 0xFFFF) {
    const uint8_t v4[4] = {address[12], address[13], address[14], address[15]};
    return "::ffff:" + Ipv4Text(v4);
  }
  int best = -1, best_length = 1;  // a single zero group is written out
  for (int i = 0; i < 8;) {
    int j = i;
    while (j < 8 && groups[j] == 0) ++j;
    if (j - i > best_length) {
      best = i;
      best_length = j - i;
    }
    i = j == i ? i + 1 : j;
  }
  std::string text;
  for (int i = 0; i < 8; ++i) {
    if (i == best) {
      text += "::";
      i += best_length - 1;
      continue;
    }
    if (!text.empty() && text.back() != ':') text += ':';
    char group[5];
    std::snprintf(group, sizeof(group), "%x", groups[i]);
    text += group;
  }
  return text;
}

bool IsLinkLocal(const uint8_t (&address)[4]) { return address[0] == 169 && address[1] == 254; }

bool IsLinkLocal(const uint8_t (&address)[16]) {
  return address[0] == 0xFE && (address[1] & 0xC0) == 0x80;
}

}  // namespace velhal::ip
