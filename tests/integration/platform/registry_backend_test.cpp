// ReadReg against the real registry, on a scratch key under HKEY_LOCAL_MACHINE that the test
// creates and removes. Every answer is checked against the test's own advapi32 calls.
#include "platform/win32.h"

#include "platform/read_reg.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class RegistryBackendTest : public ::testing::Test {
 protected:
  void SetUp() override {
    key_path_ = L"SOFTWARE\\VelHalTest-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
                std::to_wstring(::GetTickCount64());
    HKEY key = nullptr;
    const LSTATUS status =
        ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, key_path_.c_str(), 0, nullptr, 0,
                          KEY_ALL_ACCESS | KEY_WOW64_64KEY, nullptr, &key, nullptr);
    if (status == ERROR_ACCESS_DENIED) GTEST_SKIP() << "HKLM is not writable for this user";
    ASSERT_EQ(status, ERROR_SUCCESS);
    key_ = key;
  }

  void TearDown() override {
    if (key_ != nullptr) ::RegCloseKey(key_);
    if (!key_path_.empty()) {
      ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, key_path_.c_str());
      ::RegDeleteKeyExW(HKEY_LOCAL_MACHINE, key_path_.c_str(), KEY_WOW64_64KEY, 0);
    }
  }

  void Set(const wchar_t* name, DWORD type, const void* data, DWORD size) {
    ASSERT_EQ(::RegSetValueExW(key_, name, 0, type, static_cast<const BYTE*>(data), size),
              ERROR_SUCCESS);
  }

  // The stored type and bytes, read independently of the library.
  std::pair<DWORD, std::vector<BYTE>> Get(const wchar_t* name) {
    DWORD type = 0;
    DWORD size = 0;
    if (::RegQueryValueExW(key_, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
      return {REG_NONE, {}};
    }
    std::vector<BYTE> data(size);
    ::RegQueryValueExW(key_, name, nullptr, &type, data.data(), &size);
    data.resize(size);
    return {type, data};
  }

  std::wstring key_path_;
  HKEY key_ = nullptr;
};

std::vector<BYTE> Terminated(const std::wstring& text) {
  const auto* bytes = reinterpret_cast<const BYTE*>(text.c_str());
  return std::vector<BYTE>(bytes, bytes + (text.size() + 1) * sizeof(wchar_t));
}

TEST_F(RegistryBackendTest, ReadsWhatTheRegistryHolds) {
  const DWORD number = 0x80000001;
  const BYTE binary[4] = {0x11, 0x22, 0x33, 0x44};
  const std::wstring text = L"Example \u00e9 text";
  const std::wstring expand = L"%SystemRoot%\\system32";
  const std::wstring too_long(300, L'x');
  Set(L"Number", REG_DWORD, &number, sizeof(number));
  Set(L"Binary", REG_BINARY, binary, sizeof(binary));
  Set(L"Text", REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * 2));
  Set(L"Expand", REG_EXPAND_SZ, expand.c_str(), static_cast<DWORD>((expand.size() + 1) * 2));
  Set(L"TooLong", REG_SZ, too_long.c_str(), static_cast<DWORD>((too_long.size() + 1) * 2));

  unsigned long value = 0;
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegDW(key_path_, L"Number", value));
  EXPECT_EQ(value, number);
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegDW(key_path_, L"Binary", value));
  EXPECT_EQ(value, 0x44332211u);
  value = 5;
  EXPECT_FALSE(ReadReg::ReadLocalMachineRegDW(key_path_, L"Missing", value));
  EXPECT_EQ(value, 0u);

  std::wstring read;
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegRZ(key_path_, L"Text", read));
  EXPECT_EQ(read, text);
  EXPECT_TRUE(ReadReg::ReadLocalMachineRegExpandRZ(key_path_, L"Expand", read));
  EXPECT_EQ(read, expand);  // never expanded
  EXPECT_FALSE(ReadReg::ReadLocalMachineRegRZ(key_path_, L"TooLong", read));
  EXPECT_TRUE(read.empty());
}

TEST_F(RegistryBackendTest, WritesWhatAnIndependentReadSees) {
  EXPECT_TRUE(ReadReg::WrightLocalMachineRegDW(key_path_, L"Number", 0x01020304));
  EXPECT_TRUE(ReadReg::WriteLocalMachineRegRZ(key_path_, L"Text", L"written"));
  EXPECT_TRUE(ReadReg::WriteLocalMachineRegRZ(key_path_, L"Empty", L""));
  EXPECT_TRUE(ReadReg::WrightLocalMachineRegExpandRZ(key_path_, L"Expand", L"%TEMP%\\x"));

  EXPECT_EQ(Get(L"Number"), (std::pair<DWORD, std::vector<BYTE>>{REG_DWORD, {4, 3, 2, 1}}));
  EXPECT_EQ(Get(L"Text"), (std::pair<DWORD, std::vector<BYTE>>{REG_SZ, Terminated(L"written")}));
  EXPECT_EQ(Get(L"Empty"), (std::pair<DWORD, std::vector<BYTE>>{REG_SZ, {0, 0}}));
  EXPECT_EQ(Get(L"Expand"),
            (std::pair<DWORD, std::vector<BYTE>>{REG_EXPAND_SZ, Terminated(L"%TEMP%\\x")}));

  const std::wstring missing = key_path_ + L"\\Missing";
  EXPECT_FALSE(ReadReg::WriteLocalMachineRegRZ(missing, L"Text", L"x"));
  HKEY probe = nullptr;
  EXPECT_EQ(::RegOpenKeyExW(HKEY_LOCAL_MACHINE, missing.c_str(), 0, KEY_READ, &probe),
            ERROR_FILE_NOT_FOUND);
}

}  // namespace
