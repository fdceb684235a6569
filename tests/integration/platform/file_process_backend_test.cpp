// FileProcess against the real file system, checked against the test's own reads: its own
// module path, GetFileAttributesExW, and the version resource read through VerQueryValueW (the
// system's parser, where the library parses the block itself). The library is linked into
// this test program here, so its folder is the program's.
#include "platform/win32.h"

#include "platform/file_process.h"

#include <gtest/gtest.h>

#include <winver.h>

#include <string>
#include <vector>

namespace {

std::wstring VersionText(DWORD most, DWORD least) {
  return std::to_wstring(HIWORD(most)) + L"." + std::to_wstring(LOWORD(most)) + L"." +
         std::to_wstring(HIWORD(least)) + L"." + std::to_wstring(LOWORD(least));
}

class FileProcessBackendTest : public ::testing::Test {
 protected:
  void SetUp() override {
    wchar_t temp[MAX_PATH] = {};
    ASSERT_GT(::GetTempPathW(MAX_PATH, temp), 0u);
    path_ =
        std::wstring(temp) + L"velhal-text-" + std::to_wstring(::GetCurrentProcessId()) + L".txt";
  }
  void TearDown() override { ::DeleteFileW(path_.c_str()); }
  void Write(const std::string& bytes) {
    const HANDLE file = ::CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    ::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    ::CloseHandle(file);
  }

  std::wstring path_;
  FileProcess files_;
};

TEST_F(FileProcessBackendTest, TheLibraryFolderIsTheModules) {
  wchar_t path[MAX_PATH] = {};
  const DWORD length = ::GetModuleFileNameW(nullptr, path, MAX_PATH);
  ASSERT_GT(length, 0u);
  const std::wstring own(path, length);
  EXPECT_EQ(files_.GetLibraryFolder(), own.substr(0, own.find_last_of(L"\\/") + 1));
}

TEST_F(FileProcessBackendTest, VersionsAgreeWithTheSystemsParser) {
  wchar_t folder[MAX_PATH] = {};
  ASSERT_GT(::GetSystemDirectoryW(folder, MAX_PATH), 0u);
  const std::wstring kernel32 = std::wstring(folder) + L"\\kernel32.dll";
  DWORD ignored = 0;
  std::vector<BYTE> block(::GetFileVersionInfoSizeW(kernel32.c_str(), &ignored));
  ASSERT_FALSE(block.empty());
  ASSERT_TRUE(
      ::GetFileVersionInfoW(kernel32.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
  VS_FIXEDFILEINFO* fixed = nullptr;
  UINT fixed_size = 0;  // Wine answers 0 here where Windows answers the structure's size
  ASSERT_TRUE(::VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&fixed), &fixed_size));
  ASSERT_NE(fixed, nullptr);
  EXPECT_EQ(files_.GetFileVersion(kernel32),
            VersionText(fixed->dwFileVersionMS, fixed->dwFileVersionLS));
  EXPECT_EQ(files_.GetProductVersion(kernel32),
            VersionText(fixed->dwProductVersionMS, fixed->dwProductVersionLS));

  Write("no resources here");
  EXPECT_EQ(files_.GetFileVersion(path_), L"");
}

TEST_F(FileProcessBackendTest, TextSizeAndLocksAreTheFileSystems) {
  Write(
      std::string("\xFF\xFE"
                  "h\0i\0",
                  6));
  EXPECT_TRUE(files_.IsFileExist(path_));
  WIN32_FILE_ATTRIBUTE_DATA data{};
  ASSERT_TRUE(::GetFileAttributesExW(path_.c_str(), GetFileExInfoStandard, &data));
  EXPECT_EQ(files_.GetFileSize(path_), data.nFileSizeLow);
  std::wstring text;
  EXPECT_EQ(files_.ReadTextFile(path_, text), 0u);
  EXPECT_EQ(text, L"hi");

  // Another program holding the file without sharing it.
  const HANDLE held = ::CreateFileW(path_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  EXPECT_EQ(files_.ReadTextFile(path_, text), static_cast<unsigned long>(ERROR_SHARING_VIOLATION));
  EXPECT_EQ(text, L"");
  ::CloseHandle(held);

  const std::wstring folder = path_.substr(0, path_.find_last_of(L'\\'));
  EXPECT_FALSE(files_.IsFileExist(folder));
  EXPECT_EQ(files_.ReadTextFile(path_ + L".absent", text),
            static_cast<unsigned long>(ERROR_FILE_NOT_FOUND));
}

}  // namespace
