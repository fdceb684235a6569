#include "tests/fakes/fake_module.h"

#include <cstring>

namespace velhal::testing {
namespace {

const HMODULE kSelf = reinterpret_cast<HMODULE>(0x6A000000);

}  // namespace

HMODULE FakeModule::LoadLibraryExW(const wchar_t* path, HANDLE, DWORD) {
  if (path == nullptr || libraries.count(path) == 0) {
    ::SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  ++loads;
  const HMODULE handle = reinterpret_cast<HMODULE>(next_ += 0x10000);
  loaded_[handle] = path;
  return handle;
}

BOOL FakeModule::FreeLibrary(HMODULE module) {
  if (loaded_.erase(module) == 0) {
    ++bad_frees;
    ::SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  ++frees;
  return TRUE;
}

HMODULE FakeModule::GetModuleHandleW(const wchar_t* name) {
  for (const auto& [handle, path] : loaded_) {
    if (name != nullptr && path == name) return handle;
  }
  ::SetLastError(ERROR_MOD_NOT_FOUND);
  return nullptr;
}

FARPROC FakeModule::GetProcAddress(HMODULE module, const char* name) {
  const auto found = loaded_.find(module);
  if (found == loaded_.end() || name == nullptr) return nullptr;
  const Library& library = libraries[found->second];
  const auto procedure = library.procedures.find(name);
  if (procedure == library.procedures.end()) {
    ::SetLastError(ERROR_PROC_NOT_FOUND);
    return nullptr;
  }
  return procedure->second;
}

BOOL FakeModule::GetModuleHandleExW(DWORD, const wchar_t*, HMODULE* module) {
  if (handle_fails) return FALSE;
  *module = kSelf;
  return TRUE;
}

DWORD FakeModule::GetModuleFileNameW(HMODULE module, wchar_t* path, DWORD size) {
  if (module != kSelf || size == 0) return 0;
  const DWORD length = static_cast<DWORD>(library_path.size());
  const DWORD copied = length < size ? length : size - 1;
  std::memcpy(path, library_path.data(), copied * sizeof(wchar_t));
  path[copied] = L'\0';
  return length < size ? length : size;  // a full buffer means truncated, as Windows says
}

UINT FakeModule::GetSystemDirectoryW(wchar_t* path, UINT size) {
  const UINT length = static_cast<UINT>(system_directory.size());
  if (length == 0) return 0;
  if (size <= length) return length + 1;  // the size needed, as Windows says
  std::memcpy(path, system_directory.c_str(), (length + 1) * sizeof(wchar_t));
  return length;
}

}  // namespace velhal::testing
