// The report's header: which library answered, on which Windows.
#pragma once

#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

namespace halinfo {

struct HeaderSection {
  std::string library_path;
  std::string library_version;  // from VelHal.dll's version resource
  uint32_t windows_major = 0;   // as the kernel reports it, not as compatibility shims do
  uint32_t windows_minor = 0;
  uint32_t windows_build = 0;
  std::string windows_product;  // the registry's ProductName, read through ReadReg

  static HeaderSection Collect(void* library_module);
  void AddTo(nlohmann::ordered_json& document) const;
  std::string ToText() const;
};

}  // namespace halinfo
