// IP addresses as text, and the link-local rule, from an address's bytes in network order.
//
// Portable: no Windows header.
#pragma once

#include <cstdint>
#include <string>

namespace velhal::ip {

// Dotted decimal, "192.0.2.1".
std::string Ipv4Text(const uint8_t (&address)[4]);
// RFC 5952: lower-case hex groups without leading zeros, the longest run of two or more zero
// groups (the first of equal runs) as "::", and an IPv4-mapped address as ::ffff:192.0.2.1.
std::string Ipv6Text(const uint8_t (&address)[16]);

// 169.254.0.0/16 and fe80::/10: addresses a host gives itself without a network's help.
bool IsLinkLocal(const uint8_t (&address)[4]);
bool IsLinkLocal(const uint8_t (&address)[16]);

}  // namespace velhal::ip
