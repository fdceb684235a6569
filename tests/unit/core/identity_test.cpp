#include "core/identity.h"

#include <gtest/gtest.h>

namespace {

namespace id = velhal::identity;

TEST(IdentityTest, DeviceValueBrandsAndChassisRules) {
  // OEM string 1 of 9 characters: no device value, which counts as the first brand.
  EXPECT_EQ(id::DeviceValue(L"ABCDEFGHI"), 0);
  EXPECT_EQ(id::BrandOf(0), id::kCorvane);
  EXPECT_TRUE(id::IsCorvane(0));
  EXPECT_FALSE(id::IsCorvaneStation(0, id::kChassisDesktop));

  const uint16_t three = id::DeviceValue(L"ABCDEFGHI3");
  EXPECT_EQ(three, L'3');
  EXPECT_TRUE(id::IsTalmer(three));
  EXPECT_TRUE(id::IsOndrel(three, id::kChassisNotebook));
  EXPECT_FALSE(id::IsVastrel(three, id::kChassisNotebook));
  EXPECT_FALSE(id::IsOndrel(three, 0x8A));  // lock bit set: another chassis byte
  EXPECT_TRUE(id::IsVastrel(three, id::kChassisDesktop));

  const uint16_t four = L'4';
  EXPECT_EQ(id::BrandOf(four), id::kTalmer);
  EXPECT_TRUE(id::IsBrakkon(four));
  EXPECT_FALSE(id::IsOndrel(four, id::kChassisNotebook));
  EXPECT_EQ(id::BrandOf(L'5'), id::kSmart);
  EXPECT_EQ(id::BrandOf(L'9'), id::kUnknownBrand);
  EXPECT_TRUE(id::IsCorvaneStation(L'1', id::kChassisDesktop));
}

TEST(IdentityTest, ConsumerChannelSitsAtIndex10) {
  uint32_t type = 7;
  EXPECT_FALSE(id::ConsumerType(L"0123456789", type));  // 10 characters: too short
  EXPECT_EQ(type, 0u);
  EXPECT_TRUE(id::ConsumerType(L"0123456789x", type));
  EXPECT_EQ(type, 0u);
  EXPECT_FALSE(id::IsConsumerTypeToB(L"0123456789x"));
  EXPECT_TRUE(id::ConsumerType(L"01234567893", type));
  EXPECT_EQ(type, 3u);
  EXPECT_TRUE(id::IsConsumerTypeToB(L"01234567893"));
  EXPECT_FALSE(id::IsConsumerTypeToB(L"01234567891"));  // 1 is the consumer channel
}

TEST(IdentityTest, WifiAndBluetoothAreHiddenInThisOrder) {
  const std::wstring flagged = L"0123456789012345" L"1";  // '1' at index 16
  const std::vector<std::string> skus = {"EXB14G2#ABA", "ZX-100"};
  EXPECT_TRUE(id::IsUnsupportWifiAndBt(L"", flagged, "", {}));
  EXPECT_FALSE(id::IsUnsupportWifiAndBt(L"PERROW", flagged, "ZX-100", skus));
  EXPECT_TRUE(id::IsUnsupportWifiAndBt(L"perrowX", flagged, "", {}));
  EXPECT_TRUE(id::IsUnsupportWifiAndBt(L"", L"short", "ZX-100", skus));
  EXPECT_FALSE(id::IsUnsupportWifiAndBt(L"", L"short", "zx-100", skus));
  EXPECT_FALSE(id::IsUnsupportWifiAndBt(L"", L"short", "", skus));
}

TEST(IdentityTest, ListTextsSplitAndTrimAsTheFilesAreWritten) {
  EXPECT_EQ(id::SplitList("A;B;;C;"), (std::vector<std::string>{"A", "B", "C"}));
  EXPECT_TRUE(id::SplitList("").empty());
  EXPECT_EQ(id::ParseVendorList(" X;Y\n;Z "), (std::vector<std::string>{"X", "Y", "Z"}));
  EXPECT_EQ(id::ParseVendorList("X ; Y"), (std::vector<std::string>{"X ", " Y"}));
  // Line breaks go, but indentation after them is inside the text and stays.
  EXPECT_EQ(id::ParseVendorList("\nVEN_10EC;\nVEN_8086\n"),
            (std::vector<std::string>{"VEN_10EC", "VEN_8086"}));
  EXPECT_EQ(id::ParseVendorList("\n  VEN_10EC;\n  VEN_8086\n"),
            (std::vector<std::string>{"VEN_10EC", "  VEN_8086"}));
  EXPECT_EQ(id::ParseVendorList("\tA;B\r"), (std::vector<std::string>{"\tA", "B\r"}));
  EXPECT_TRUE(id::ParseVendorList("   \n  ").empty());
}

}  // namespace
