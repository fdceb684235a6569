#include "core/ip_address.h"

#include <gtest/gtest.h>

namespace {

TEST(IpAddressTest, Ipv6TextFollowsRfc5952) {
  const struct {
    uint8_t bytes[16];
    const char* text;
  } cases[] = {
      {{}, "::"},
      {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, "::1"},
      {{0, 1}, "1::"},
      // The longest zero run is compressed; of two equal runs, the first.
      {{0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1}, "2001:db8::1:0:0:1"},
      {{0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1}, "2001:db8:0:1::1"},
      // One zero group stays; leading zeros go; lower case.
      {{0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0x0A, 0xBC},
       "2001:db8:0:1:1:1:1:abc"},
      {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 192, 0, 2, 1}, "::ffff:192.0.2.1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(velhal::ip::Ipv6Text(c.bytes), c.text);
  }
  const uint8_t v4[4] = {192, 0, 2, 255};
  EXPECT_EQ(velhal::ip::Ipv4Text(v4), "192.0.2.255");
}

TEST(IpAddressTest, LinkLocalIs169Dot254AndFe80Slash10) {
  const uint8_t v4[][4] = {{169, 254, 0, 1}, {169, 253, 0, 1}, {10, 254, 0, 1}};
  EXPECT_TRUE(velhal::ip::IsLinkLocal(v4[0]));
  EXPECT_FALSE(velhal::ip::IsLinkLocal(v4[1]));
  EXPECT_FALSE(velhal::ip::IsLinkLocal(v4[2]));
  const uint8_t v6[][16] = {{0xFE, 0x80}, {0xFE, 0xBF}, {0xFE, 0xC0}, {0xFF, 0x02}};
  EXPECT_TRUE(velhal::ip::IsLinkLocal(v6[0]));
  EXPECT_TRUE(velhal::ip::IsLinkLocal(v6[1]));
  EXPECT_FALSE(velhal::ip::IsLinkLocal(v6[2]));
  EXPECT_FALSE(velhal::ip::IsLinkLocal(v6[3]));
}

}  // namespace
