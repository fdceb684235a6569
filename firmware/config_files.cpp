#include "platform/win32.h"

#include "firmware/config_files.h"

#include <shlwapi.h>
#include <xmllite.h>

#include "platform/com_ptr.h"
#include "platform/file_process.h"

namespace velhal::firmware {
namespace {

const wchar_t kProductAdapterFolder[] = L"config\\product_adapter\\";

// XmlLite ships with Windows but MinGW has no import library for it: bound at run time.
using CreateXmlReaderFn = HRESULT(WINAPI*)(REFIID, void**, IMalloc*);

CreateXmlReaderFn XmlReaderFactory() {
  static const CreateXmlReaderFn factory = [] {
    const HMODULE xmllite =
        ::LoadLibraryExW(L"xmllite.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return xmllite ? reinterpret_cast<CreateXmlReaderFn>(
                         reinterpret_cast<void*>(::GetProcAddress(xmllite, "CreateXmlReader")))
                   : nullptr;
  }();
  return factory;
}

}  // namespace

std::optional<std::wstring> ProductAdapterPath(const wchar_t* file) {
  const std::wstring folder = FileProcess().GetLibraryFolder();
  if (folder.empty()) return std::nullopt;
  return folder + kProductAdapterFolder + file;
}

bool FileExists(const std::wstring& path) { return FileProcess().IsFileExist(path); }

ChildText ReadFirstChildText(const std::wstring& path, const wchar_t* child) {
  ChildText result;
  const CreateXmlReaderFn factory = XmlReaderFactory();
  if (factory == nullptr) return result;
  ComPtr<IStream> stream;
  ComPtr<IXmlReader> reader;
  if (FAILED(::SHCreateStreamOnFileW(path.c_str(), STGM_READ | STGM_SHARE_DENY_WRITE,
                                     stream.Put())) ||
      FAILED(factory(__uuidof(IXmlReader), reader.PutVoid(), nullptr)) ||
      FAILED(reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit)) ||
      FAILED(reader->SetInput(stream.Get()))) {
    return result;
  }
  // Nesting is counted here rather than taken from GetDepth, whose answer for end tags differs
  // between XmlLite implementations; the count also catches elements left open at the end.
  bool have_root = false;
  bool collecting = false;
  int open_elements = 0;
  std::wstring text;
  XmlNodeType type = XmlNodeType_None;
  HRESULT hr = S_OK;
  // The whole document is read, so that a fault anywhere in it counts as unreadable.
  while ((hr = reader->Read(&type)) == S_OK) {
    if (type == XmlNodeType_Element) {
      const int depth = open_elements;  // 0 for the root, 1 for its children
      have_root = have_root || depth == 0;
      const wchar_t* name = nullptr;
      const bool wanted = depth == 1 && !result.text && !collecting &&
                          SUCCEEDED(reader->GetLocalName(&name, nullptr)) && name != nullptr &&
                          std::wstring(name) == child;
      if (reader->IsEmptyElement()) {
        if (wanted) result.text = std::wstring();
      } else {
        ++open_elements;
        if (wanted) {
          collecting = true;
          text.clear();
        }
      }
    } else if (type == XmlNodeType_EndElement) {
      --open_elements;
      if (collecting && open_elements == 1) {
        collecting = false;
        result.text = text;
      }
    } else if (collecting && open_elements == 2 &&
               (type == XmlNodeType_Text || type == XmlNodeType_CDATA ||
                type == XmlNodeType_Whitespace)) {
      const wchar_t* value = nullptr;
      UINT length = 0;
      if (SUCCEEDED(reader->GetValue(&value, &length))) text.append(value, length);
    }
  }
  if (FAILED(hr) || open_elements != 0) {
    result.text.reset();
    result.code = kConfigUnreadable;
    return result;
  }
  result.code = have_root ? kConfigLoaded : kConfigNoRoot;
  return result;
}

}  // namespace velhal::firmware
