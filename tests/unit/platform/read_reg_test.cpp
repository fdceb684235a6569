// ReadReg on the real registry, HKEY_LOCAL_MACHINE redirected to the test's scratch key.
#include "platform/read_reg.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/fake_system.h"

namespace {

using velhal::testing::Utf16Bytes;

constexpr wchar_t kKey[] = L"SOFTWARE\\VelHal\\Test";

class ReadRegTest : public ::testing::Test {
 protected:
  void SetUp() override { os_.registry.AddKey(kKey); }
  void ExpectAccessEverywhere(REGSAM access) {
    for (REGSAM asked : os_.registry.requested_access()) EXPECT_EQ(asked, access);
  }

  velhal::testing::FakeSystem os_;
};

TEST_F(ReadRegTest, ReadsNumbersInThe64BitViewWithoutCheckingTheType) {
  os_.registry.SetDword(kKey, L"Number", 0xCAFEF00D);
  os_.registry.Set(kKey, L"Binary4", REG_BINARY, {0x78, 0x56, 0x34, 0x12});
  os_.registry.Set(kKey, L"Binary8", REG_BINARY, {1, 2, 3, 4, 5, 6, 7, 8});

  unsigned long value = 0;
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegDW(kKey, L"Number", value));
  EXPECT_EQ(value, 0xCAFEF00Du);
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegDW(kKey, L"Binary4", value));
  EXPECT_EQ(value, 0x12345678u);
  struct Failure {
    const wchar_t* key;
    const wchar_t* name;
  };
  for (const Failure& failure :
       {Failure{kKey, L"Missing"}, Failure{L"SOFTWARE\\Absent", L"X"}, Failure{kKey, L"Binary8"}}) {
    SCOPED_TRACE(testing::Message() << "value " << failure.name);
    value = 77;
    EXPECT_FALSE(ReadReg::ReadLocalMachineRegDW(failure.key, failure.name, value));
    EXPECT_EQ(value, 0u);
  }
  ExpectAccessEverywhere(KEY_READ | KEY_WOW64_64KEY);
}

TEST_F(ReadRegTest, ReadsStringsUpTo259CharactersAsStored) {
  const std::wstring longest(259, L'x');
  os_.registry.SetString(kKey, L"Plain", L"Example \u00e9 CPU @ 2.40GHz");
  os_.registry.SetString(kKey, L"Expand", L"%SystemRoot%\\system32", REG_EXPAND_SZ);
  os_.registry.SetString(kKey, L"Longest", longest);
  os_.registry.SetString(kKey, L"TooLong", std::wstring(260, L'y'));
  // 520 bytes with no terminator: still fits, and must not be read past.
  os_.registry.Set(kKey, L"Unterminated", REG_SZ, Utf16Bytes(std::wstring(260, L'u'), false));
  os_.registry.Set(kKey, L"EmbeddedNul", REG_SZ, Utf16Bytes(std::wstring(L"ab\0cd", 5), true));

  std::wstring text;
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegRZ(kKey, L"Plain", text));
  EXPECT_EQ(text, L"Example \u00e9 CPU @ 2.40GHz");
  // Neither read checks the stored type, and nothing is expanded.
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegExpandRZ(kKey, L"Plain", text));
  EXPECT_EQ(text, L"Example \u00e9 CPU @ 2.40GHz");
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegRZ(kKey, L"Expand", text));
  EXPECT_EQ(text, L"%SystemRoot%\\system32");
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegExpandRZ(kKey, L"Longest", text));
  EXPECT_EQ(text, longest);
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegRZ(kKey, L"Unterminated", text));
  EXPECT_EQ(text, std::wstring(260, L'u'));
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegRZ(kKey, L"EmbeddedNul", text));
  EXPECT_EQ(text, L"ab");
  for (const wchar_t* name : {L"TooLong", L"Missing"}) {
    SCOPED_TRACE(testing::Message() << "value " << name);
    text = L"stale";
    EXPECT_FALSE(ReadReg::ReadLocalMachineRegRZ(kKey, name, text));
    EXPECT_TRUE(text.empty());
    text = L"stale";
    EXPECT_FALSE(ReadReg::ReadLocalMachineRegExpandRZ(kKey, name, text));
    EXPECT_TRUE(text.empty());
  }
  text = L"stale";
  EXPECT_FALSE(ReadReg::ReadLocalMachineRegRZ(L"SOFTWARE\\Absent", L"Plain", text));
  EXPECT_TRUE(text.empty());
  ExpectAccessEverywhere(KEY_READ | KEY_WOW64_64KEY);
}

TEST_F(ReadRegTest, WritesTypedValuesWithTheirTerminatorAndNeverCreateAKey) {
  EXPECT_TRUE(ReadReg::WrightLocalMachineRegDW(kKey, L"Number", 0x01020304));
  EXPECT_TRUE(ReadReg::WriteLocalMachineRegRZ(kKey, L"Text", L"abc"));
  EXPECT_TRUE(ReadReg::WriteLocalMachineRegRZ(kKey, L"Empty", L""));
  EXPECT_TRUE(ReadReg::WrightLocalMachineRegExpandRZ(kKey, L"Path", L"%TEMP%"));
  using Stored = std::pair<DWORD, std::vector<BYTE>>;
  EXPECT_EQ(os_.registry.Get(kKey, L"Number"), (Stored{REG_DWORD, {4, 3, 2, 1}}));
  EXPECT_EQ(os_.registry.Get(kKey, L"Text"), (Stored{REG_SZ, Utf16Bytes(L"abc")}));
  EXPECT_EQ(os_.registry.Get(kKey, L"Empty"), (Stored{REG_SZ, {0, 0}}));
  EXPECT_EQ(os_.registry.Get(kKey, L"Path"), (Stored{REG_EXPAND_SZ, Utf16Bytes(L"%TEMP%")}));
  ExpectAccessEverywhere(KEY_WRITE | KEY_WOW64_64KEY);

  const std::wstring missing = L"SOFTWARE\\VelHal\\Missing";
  EXPECT_FALSE(ReadReg::WrightLocalMachineRegDW(missing, L"Number", 1));
  EXPECT_FALSE(ReadReg::WriteLocalMachineRegRZ(missing, L"Text", L"abc"));
  EXPECT_FALSE(ReadReg::WrightLocalMachineRegExpandRZ(missing, L"Path", L"%TEMP%"));
  EXPECT_FALSE(os_.registry.HasKey(missing));
}

}  // namespace
