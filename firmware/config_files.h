// The product-adapter files in "config/product_adapter/" beside the library, read with XmlLite.
#pragma once

#include <optional>
#include <string>

namespace velhal::firmware {

// Load codes of a product-adapter file, as HardwareConfig reports them.
enum ConfigCode : int {
  kConfigLoaded = 0,
  kConfigNoPath = -3,
  kConfigMissing = -4,
  kConfigUnreadable = -5,  // cannot be opened or is not well-formed XML
  kConfigNoRoot = -6,
};

// "<library folder>\config\product_adapter\<file>", or nullopt when the library's own path
// cannot be had.
std::optional<std::wstring> ProductAdapterPath(const wchar_t* file);
bool FileExists(const std::wstring& path);

// The text of the first element named child directly under the root element (whatever the
// root's name), the document read whole. text is nullopt when there is no such element.
struct ChildText {
  ConfigCode code = kConfigUnreadable;
  std::optional<std::wstring> text;
};
ChildText ReadFirstChildText(const std::wstring& path, const wchar_t* child);

}  // namespace velhal::firmware
