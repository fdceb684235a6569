#include "platform/win32.h"

#include "platform/file_process.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/fake_system.h"
#include "tests/support/version_block.h"

namespace {

constexpr wchar_t kFile[] = L"C:\\Host\\notes.txt";

class FileProcessTest : public ::testing::Test {
 protected:
  void Serve(std::vector<BYTE> bytes) { os_.io.devices[kFile].data = std::move(bytes); }

  velhal::testing::FakeSystem os_;
  FileProcess files_;
};

std::vector<BYTE> Bytes(std::initializer_list<int> values) {
  return std::vector<BYTE>(values.begin(), values.end());
}

std::vector<BYTE> Utf8(const std::string& text, bool bom) {
  const std::string marked = (bom ? std::string("\xEF\xBB\xBF") : std::string()) + text;
  return std::vector<BYTE>(marked.begin(), marked.end());
}

TEST_F(FileProcessTest, TextFilesReadAsUtf16WhateverTheirEncoding) {
  const std::wstring text =
      L"Gr\u00FC\u00DFe \u20AC \U0001F600";  // two, three and four UTF-8 bytes
  const std::string utf8 =
      "Gr\xC3\xBC\xC3\x9F"
      "e \xE2\x82\xAC \xF0\x9F\x98\x80";
  std::vector<BYTE> le = Bytes({0xFF, 0xFE});
  std::vector<BYTE> be = Bytes({0xFE, 0xFF});
  for (const wchar_t unit : text) {
    le.insert(le.end(), {static_cast<BYTE>(unit), static_cast<BYTE>(unit >> 8)});
    be.insert(be.end(), {static_cast<BYTE>(unit >> 8), static_cast<BYTE>(unit)});
  }
  struct Case {
    const char* name;
    std::vector<BYTE> bytes;
    unsigned long result;
    std::wstring text;
  };
  std::vector<BYTE> odd = le;
  odd.push_back(0x41);
  const Case cases[] = {
      {"UTF-8", Utf8(utf8, false), ERROR_SUCCESS, text},
      {"UTF-8 with its mark", Utf8(utf8, true), ERROR_SUCCESS, text},
      {"UTF-16 LE", le, ERROR_SUCCESS, text},
      {"UTF-16 BE", be, ERROR_SUCCESS, text},
      {"empty", {}, ERROR_SUCCESS, L""},
      {"only the UTF-8 mark", Bytes({0xEF, 0xBB, 0xBF}), ERROR_SUCCESS, L""},
      {"Latin-1, not UTF-8", Bytes({'G', 'r', 0xFC, 0xDF, 'e'}), ERROR_NO_UNICODE_TRANSLATION, L""},
      {"UTF-16 cut in a unit", odd, ERROR_NO_UNICODE_TRANSLATION, L""},
      {"1 MiB", std::vector<BYTE>(1 << 20, 'a'), ERROR_SUCCESS, std::wstring(1 << 20, L'a')},
      {"1 MiB and a byte", std::vector<BYTE>((1 << 20) + 1, 'a'), ERROR_FILE_TOO_LARGE, L""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Serve(c.bytes);
    std::wstring read = L"left over";
    EXPECT_EQ(files_.ReadTextFile(kFile, read), c.result);
    EXPECT_EQ(read, c.text);
  }
  EXPECT_EQ(os_.io.opens.back().access, static_cast<DWORD>(GENERIC_READ));
}

TEST_F(FileProcessTest, AMissingOrLockedFileSaysWhy) {
  std::wstring read = L"left over";
  EXPECT_EQ(files_.ReadTextFile(L"C:\\Host\\absent.txt", read),
            static_cast<unsigned long>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(read, L"");
  Serve(Utf8("text", false));
  os_.io.devices[kFile].open_error = ERROR_SHARING_VIOLATION;
  EXPECT_EQ(files_.ReadTextFile(kFile, read), static_cast<unsigned long>(ERROR_SHARING_VIOLATION));
}

TEST_F(FileProcessTest, VersionsComeFromTheWholeFixedInfo) {
  auto& file = os_.file_system.files[L"C:\\Host\\host.exe"];
  file.version_info = velhal::testing::VersionBlock(u"VS_VERSION_INFO", 52, 200);
  EXPECT_EQ(files_.GetFileVersion(L"C:\\Host\\host.exe"), L"10.0.22621.2506");
  EXPECT_EQ(files_.GetProductVersion(L"C:\\Host\\host.exe"), L"6.1.7601.65535");

  // A resource shorter than its block says (a damaged file): all of it is handed over.
  file.version_info.resize(120);
  EXPECT_EQ(files_.GetFileVersion(L"C:\\Host\\host.exe"), L"");
  EXPECT_EQ(files_.GetProductVersion(L"C:\\Host\\host.exe"), L"");
  os_.file_system.files[L"C:\\Host\\plain.txt"] = {};  // no version resource
  EXPECT_EQ(files_.GetFileVersion(L"C:\\Host\\plain.txt"), L"");
}

TEST_F(FileProcessTest, LibraryFolderExistenceAndSize) {
  os_.module.library_path = L"C:\\Program Files\\Host\\VelHal.dll";
  EXPECT_EQ(files_.GetLibraryFolder(), L"C:\\Program Files\\Host\\");
  os_.module.library_path = std::wstring(400, L'd') + L"\\VelHal.dll";  // beyond MAX_PATH
  EXPECT_EQ(files_.GetLibraryFolder(), std::wstring(400, L'd') + L"\\");
  os_.module.handle_fails = true;
  EXPECT_EQ(files_.GetLibraryFolder(), L"");

  auto& files = os_.file_system.files;
  files[L"C:\\Host\\big.bin"].size = 5ULL << 30;  // beyond 32 bits
  files[L"C:\\Host\\folder"].attributes = FILE_ATTRIBUTE_DIRECTORY;
  files[L"C:\\Host\\folder"].size = 4096;
  EXPECT_TRUE(files_.IsFileExist(L"C:\\Host\\big.bin"));
  EXPECT_EQ(files_.GetFileSize(L"C:\\Host\\big.bin"), 5ULL << 30);
  EXPECT_FALSE(files_.IsFileExist(L"C:\\Host\\folder"));
  EXPECT_EQ(files_.GetFileSize(L"C:\\Host\\folder"), 0u);
  EXPECT_FALSE(files_.IsFileExist(L"Q:\\velhal-no-such-file"));
  EXPECT_EQ(files_.GetFileSize(L"Q:\\velhal-no-such-file"), 0u);
}

}  // namespace
