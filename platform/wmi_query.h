// WMI reads of one property: VelSDK::WmiQuery and two convenience functions.
//
// ExcuteQuery (spelt so in the export table) runs a WQL query in the object's namespace and
// collects one named property of every returned object, in WMI's order. It returns 0 on
// success, the failing HRESULT of the engine, or -15 when the query ran but produced no value.
// The flag asks for the first returned object only; the library's own callers of ExcuteQuery
// pass false.
#pragma once

#include <string>
#include <vector>

#include "hal/velhal_export.h"

// The first value of a text property, or 0 with out unchanged.
VELHAL_API int WmiQueryFirstString(const std::wstring& nameSpace, const std::wstring& query,
                                   const std::wstring& property, std::wstring& out);
// The first value of a numeric property, or 0 with *out unchanged.
VELHAL_API int WmiQueryFirstUInt(const std::wstring& nameSpace, const std::wstring& query,
                                 const std::wstring& property, unsigned int* out);

namespace VelSDK {

class VELHAL_API WmiQuery {
 public:
  explicit WmiQuery(const std::wstring& nameSpace);
  ~WmiQuery();

  template <class T>
  int ExcuteQuery(const std::wstring& query, const std::wstring& property, std::vector<T>& values,
                  bool flag);

 private:
  std::wstring nameSpace_;
};

extern template VELHAL_API int WmiQuery::ExcuteQuery<std::wstring>(
    const std::wstring&, const std::wstring&, std::vector<std::wstring>&, bool);
extern template VELHAL_API int WmiQuery::ExcuteQuery<unsigned int>(
    const std::wstring&, const std::wstring&, std::vector<unsigned int>&, bool);
extern template VELHAL_API int WmiQuery::ExcuteQuery<unsigned char>(
    const std::wstring&, const std::wstring&, std::vector<unsigned char>&, bool);

}  // namespace VelSDK
