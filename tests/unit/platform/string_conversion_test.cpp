#include "platform/win32.h"

#include "platform/string_conversion.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(StringConversionTest, ConvertsWholeStringsIncludingEmbeddedNuls) {
  EXPECT_EQ(AnsiToWide(""), L"");
  EXPECT_EQ(WideToAnsi(L""), "");

  const std::string narrow("a\0b", 3);
  const std::wstring wide(L"a\0b", 3);
  EXPECT_EQ(AnsiToWide(narrow), wide);
  EXPECT_EQ(WideToAnsi(wide), narrow);

  std::string printable;
  for (char c = 0x20; c < 0x7F; ++c) printable += c;
  const std::wstring widened = AnsiToWide(printable);
  ASSERT_EQ(widened.size(), printable.size());
  EXPECT_EQ(WideToAnsi(widened), printable);
}

TEST(StringConversionTest, UsesTheAnsiCodePage) {
  if (::GetACP() != 1252) GTEST_SKIP() << "expectations are written for code page 1252";
  EXPECT_EQ(AnsiToWide("caf\xE9 \x80"), L"caf\u00e9 \u20ac");
  EXPECT_EQ(WideToAnsi(L"caf\u00e9 \u20ac"), "caf\xE9 \x80");
  // A character outside the code page becomes the default character, not an empty result.
  EXPECT_EQ(WideToAnsi(L"x\u4e2dy"), "x?y");
}

}  // namespace
