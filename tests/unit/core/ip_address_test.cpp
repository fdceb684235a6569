#include "core/ip_address.h"

#include <gtest/gtest.h>

namespace {

TEST(IpAddressTest, Ipv6TextFollowsRfc5952) {
  const struct {
    uint8_t bytes[16];
    const char* text;
  } cases[] = {
      {{}, "::"},
      {{0, 1}, "1::"},
      {{0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1}, "2001:db8::1:0:0:1"},
      {{0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0x0A, 0xBC},
       "2001:db8:0:1:1:1:1:abc"},
      {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 192, 0, 2, 1}, "::ffff:192.0.2.1"},
  };
  for (const auto& c : cases) EXPECT_EQ(velhal::ip::Ipv6Text(c.bytes), c.text);
  const uint8_t link_local[16] = {0xFE, 0xBF}, site_local[16] = {0xFE, 0xC0};
  EXPECT_TRUE(velhal::ip::IsLinkLocal(link_local));
  EXPECT_FALSE(velhal::ip::IsLinkLocal(site_local));
}

}  // namespace
