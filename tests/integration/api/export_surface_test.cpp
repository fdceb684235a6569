// VelHal.dll as a host sees it: which names it exports and which DLLs it needs.
#include "platform/win32.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {

// Walks the PE directories of a loaded module.
class LoadedImage {
 public:
  explicit LoadedImage(HMODULE module) : base_(reinterpret_cast<const BYTE*>(module)) {
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base_);
    nt_ = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base_ + dos->e_lfanew);
  }

  std::vector<std::string> ExportNames() const {
    const IMAGE_DATA_DIRECTORY& dir = Directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
    if (dir.VirtualAddress == 0) return {};
    const auto* exports = At<IMAGE_EXPORT_DIRECTORY>(dir.VirtualAddress);
    const auto* names = At<DWORD>(exports->AddressOfNames);
    std::vector<std::string> result;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i) result.emplace_back(At<char>(names[i]));
    return result;
  }

  std::vector<std::string> ImportedDlls() const {
    std::vector<std::string> result;
    const IMAGE_DATA_DIRECTORY& dir = Directory(IMAGE_DIRECTORY_ENTRY_IMPORT);
    if (dir.VirtualAddress != 0) {
      for (const auto* d = At<IMAGE_IMPORT_DESCRIPTOR>(dir.VirtualAddress); d->Name != 0; ++d) {
        result.emplace_back(At<char>(d->Name));
      }
    }
    const IMAGE_DATA_DIRECTORY& delayed = Directory(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT);
    if (delayed.VirtualAddress != 0) {
      for (const auto* d = At<IMAGE_DELAYLOAD_DESCRIPTOR>(delayed.VirtualAddress);
           d->DllNameRVA != 0; ++d) {
        result.emplace_back(At<char>(d->DllNameRVA));
      }
    }
    return result;
  }

 private:
  const IMAGE_DATA_DIRECTORY& Directory(int index) const {
    return nt_->OptionalHeader.DataDirectory[index];
  }
  template <class T>
  const T* At(DWORD rva) const {
    return reinterpret_cast<const T*>(base_ + rva);
  }

  const BYTE* base_;
  const IMAGE_NT_HEADERS64* nt_;
};

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

class ExportSurfaceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    module_ = ::LoadLibraryW(L"VelHal.dll");
    ASSERT_NE(module_, nullptr) << "error " << ::GetLastError();
  }
  void TearDown() override {
    if (module_ != nullptr) ::FreeLibrary(module_);
  }
  HMODULE module_ = nullptr;
};

// The export table is exactly the checked-in list: flat names undecorated, every class member
// under its mangled name (constness and argument types included). A change of the surface shows
// as a diff of tests/data/velhal_exports.txt; the actual list is written beside the test to copy.
TEST_F(ExportSurfaceTest, ExportsExactlyTheCheckedInList) {
  std::vector<std::string> actual = LoadedImage(module_).ExportNames();
  std::sort(actual.begin(), actual.end());
  std::vector<std::string> expected;
  std::ifstream list(VELHAL_TEST_DATA_DIR "/velhal_exports.txt");
  ASSERT_TRUE(list.is_open());
  for (std::string line; std::getline(list, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty() && line[0] != '#') expected.push_back(line);
  }
  std::sort(expected.begin(), expected.end());
  std::vector<std::string> missing, unexpected;
  std::set_difference(expected.begin(), expected.end(), actual.begin(), actual.end(),
                      std::back_inserter(missing));
  std::set_difference(actual.begin(), actual.end(), expected.begin(), expected.end(),
                      std::back_inserter(unexpected));
  for (const std::string& name : missing) ADD_FAILURE() << "not exported: " << name;
  for (const std::string& name : unexpected) ADD_FAILURE() << "exported but not listed: " << name;
  if (!missing.empty() || !unexpected.empty()) {
    std::ofstream out("velhal_exports.actual.txt");
    for (const std::string& name : actual) out << name << "\n";
  }
}

TEST_F(ExportSurfaceTest, ImportsOnlyWindowsSystemDlls) {
  wchar_t system_dir[MAX_PATH] = {};
  ASSERT_GT(::GetSystemDirectoryW(system_dir, MAX_PATH), 0u);
  // The MinGW runtime is linked in; a host must never need these beside the DLL.
  const std::set<std::string> runtime = {"libstdc++-6.dll", "libgcc_s_seh-1.dll",
                                         "libwinpthread-1.dll"};
  const std::vector<std::string> imports = LoadedImage(module_).ImportedDlls();
  EXPECT_FALSE(imports.empty());
  for (const std::string& dll : imports) {
    SCOPED_TRACE(dll);
    EXPECT_EQ(runtime.count(Lower(dll)), 0u);
    const std::wstring path =
        std::wstring(system_dir) + L"\\" + std::wstring(dll.begin(), dll.end());
    EXPECT_NE(::GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES);
  }
}

}  // namespace
