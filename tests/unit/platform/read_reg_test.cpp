#include "platform/read_reg.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/fakes/fake_registry.h"

namespace {

using velhal::testing::FakeRegistry;

constexpr wchar_t kKey[] = L"SOFTWARE\\VelHal\\Test";
constexpr REGSAM kRead64 = 0x20119;   // KEY_READ | KEY_WOW64_64KEY
constexpr REGSAM kWrite64 = 0x20106;  // KEY_WRITE | KEY_WOW64_64KEY

std::vector<BYTE> Utf16Bytes(const std::wstring& text, bool terminated) {
  std::vector<BYTE> bytes((text.size() + (terminated ? 1 : 0)) * sizeof(wchar_t), 0);
  std::memcpy(bytes.data(), text.data(), text.size() * sizeof(wchar_t));
  return bytes;
}

class ReadRegTest : public ::testing::Test {
 protected:
  void SetUp() override { registry_.AddKey(kKey); }
  // Every operation closes what it opened, exactly once.
  void TearDown() override {
    EXPECT_EQ(registry_.open_handles(), 0u);
    EXPECT_EQ(registry_.bad_closes(), 0u);
  }

  FakeRegistry registry_;
  velhal::os::ScopedBackend<velhal::os::Registry> backend_{registry_};
};

TEST_F(ReadRegTest, ReadsNumbersInThe64BitViewWithoutCheckingTheType) {
  registry_.SetDword(kKey, L"Number", 0xCAFEF00D);
  registry_.SetValue(kKey, L"Binary4", REG_BINARY, {0x78, 0x56, 0x34, 0x12});
  registry_.SetValue(kKey, L"Binary8", REG_BINARY, {1, 2, 3, 4, 5, 6, 7, 8});

  unsigned long value = 0;
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegDW(kKey, L"Number", value));
  EXPECT_EQ(value, 0xCAFEF00Du);
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegDW(kKey, L"Binary4", value));
  EXPECT_EQ(value, 0x12345678u);

  struct Failure {
    const wchar_t* key;
    const wchar_t* name;
  };
  for (const Failure& failure : {Failure{kKey, L"Missing"}, Failure{L"SOFTWARE\\Absent", L"X"},
                                 Failure{kKey, L"Binary8"}}) {
    SCOPED_TRACE(testing::Message() << "value " << failure.name);
    value = 77;
    EXPECT_FALSE(ReadReg::ReadLocalMachineRegDW(failure.key, failure.name, value));
    EXPECT_EQ(value, 0u);
  }
  for (REGSAM access : registry_.requested_access()) EXPECT_EQ(access, kRead64);
}

TEST_F(ReadRegTest, ReadsStringsUpTo259CharactersAsStored) {
  const std::wstring longest(259, L'x');
  registry_.SetString(kKey, L"Plain", L"Example CPU @ 2.40GHz");
  registry_.SetString(kKey, L"Expand", L"%SystemRoot%\\system32", REG_EXPAND_SZ);
  registry_.SetString(kKey, L"Longest", longest);
  registry_.SetString(kKey, L"TooLong", std::wstring(260, L'y'));
  registry_.SetString(kKey, L"Chars300", std::wstring(300, L'z'));
  // 520 bytes with no terminator: still fits, and must not be read past.
  registry_.SetValue(kKey, L"Unterminated", REG_SZ, Utf16Bytes(std::wstring(260, L'u'), false));
  registry_.SetValue(kKey, L"EmbeddedNul", REG_SZ, Utf16Bytes(std::wstring(L"ab\0cd", 5), true));

  std::wstring text;
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegRZ(kKey, L"Plain", text));
  EXPECT_EQ(text, L"Example CPU @ 2.40GHz");
  // Neither read checks the stored type, and nothing is expanded.
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegExpandRZ(kKey, L"Plain", text));
  EXPECT_EQ(text, L"Example CPU @ 2.40GHz");
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegRZ(kKey, L"Expand", text));
  EXPECT_EQ(text, L"%SystemRoot%\\system32");
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegExpandRZ(kKey, L"Longest", text));
  EXPECT_EQ(text, longest);
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegRZ(kKey, L"Unterminated", text));
  EXPECT_EQ(text, std::wstring(260, L'u'));
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegRZ(kKey, L"EmbeddedNul", text));
  EXPECT_EQ(text, L"ab");

  for (const wchar_t* name : {L"TooLong", L"Chars300", L"Missing"}) {
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
  for (REGSAM access : registry_.requested_access()) EXPECT_EQ(access, kRead64);
}

TEST_F(ReadRegTest, WritesTypedValuesWithTheirTerminator) {
  EXPECT_TRUE(ReadReg::WrightLocalMachineRegDW(kKey, L"Number", 0x01020304));
  EXPECT_TRUE(ReadReg::WriteLocalMachineRegRZ(kKey, L"Text", L"abc"));
  EXPECT_TRUE(ReadReg::WriteLocalMachineRegRZ(kKey, L"Empty", L""));
  EXPECT_TRUE(ReadReg::WrightLocalMachineRegExpandRZ(kKey, L"Path", L"%TEMP%"));

  const auto* number = registry_.FindValue(kKey, L"Number");
  ASSERT_NE(number, nullptr);
  EXPECT_EQ(number->type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(number->data, (std::vector<BYTE>{4, 3, 2, 1}));

  const auto* text = registry_.FindValue(kKey, L"Text");
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text->type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(text->data, Utf16Bytes(L"abc", true));

  const auto* empty = registry_.FindValue(kKey, L"Empty");
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(empty->data, (std::vector<BYTE>{0, 0}));

  const auto* path = registry_.FindValue(kKey, L"Path");
  ASSERT_NE(path, nullptr);
  EXPECT_EQ(path->type, static_cast<DWORD>(REG_EXPAND_SZ));
  EXPECT_EQ(path->data, Utf16Bytes(L"%TEMP%", true));

  for (REGSAM access : registry_.requested_access()) EXPECT_EQ(access, kWrite64);
}

TEST_F(ReadRegTest, WritesNeverCreateAKey) {
  const std::wstring missing = L"SOFTWARE\\VelHal\\Missing";
  EXPECT_FALSE(ReadReg::WrightLocalMachineRegDW(missing, L"Number", 1));
  EXPECT_FALSE(ReadReg::WriteLocalMachineRegRZ(missing, L"Text", L"abc"));
  EXPECT_FALSE(ReadReg::WrightLocalMachineRegExpandRZ(missing, L"Path", L"%TEMP%"));
  EXPECT_FALSE(registry_.HasKey(missing));
}

}  // namespace
