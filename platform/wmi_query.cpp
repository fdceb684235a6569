#include "platform/win32.h"

#include "platform/wmi_query.h"

#include <oaidl.h>

#include "platform/boundary.h"
#include "platform/os/wmi.h"
#include "platform/wmi_variant.h"

namespace VelSDK {
namespace {

constexpr int kNoValue = -15;  // the query ran but produced no value

// One value appended in the form of the caller's vector.
void Append(VARIANT& value, std::vector<std::wstring>& values) {
  velhal::wmi::AppendText(value, values);
}
void Append(VARIANT& value, std::vector<unsigned int>& values) {
  velhal::wmi::AppendUInt32(value, values);
}
void Append(VARIANT& value, std::vector<unsigned char>& values) {
  velhal::wmi::AppendBytes(value, values);
}

}  // namespace

WmiQuery::WmiQuery(const std::wstring& nameSpace) : nameSpace_(nameSpace) {}

WmiQuery::~WmiQuery() = default;

template <class T>
int WmiQuery::ExcuteQuery(const std::wstring& query, const std::wstring& property,
                          std::vector<T>& values, bool flag) {
  return velhal::CallGuarded(static_cast<int>(E_OUTOFMEMORY), [&] {
    values.clear();
    const int result = static_cast<int>(velhal::os::wmi().ExecQuery(
        nameSpace_, query, property, flag, [&values](VARIANT& value) { Append(value, values); }));
    if (result != 0) return result;  // what was appended before the failure stays
    return values.empty() ? kNoValue : 0;
  });
}

template VELHAL_API int WmiQuery::ExcuteQuery<std::wstring>(const std::wstring&,
                                                            const std::wstring&,
                                                            std::vector<std::wstring>&, bool);
template VELHAL_API int WmiQuery::ExcuteQuery<unsigned int>(const std::wstring&,
                                                            const std::wstring&,
                                                            std::vector<unsigned int>&, bool);
template VELHAL_API int WmiQuery::ExcuteQuery<unsigned char>(const std::wstring&,
                                                             const std::wstring&,
                                                             std::vector<unsigned char>&, bool);

}  // namespace VelSDK

namespace {

// Both helpers: the flag set (the first object only), the first value kept, the output left
// alone when there is none.
template <class T, class Store>
int FirstValue(const std::wstring& name_space, const std::wstring& query,
               const std::wstring& property, Store&& store) {
  return velhal::CallGuarded(0, [&] {
    VelSDK::WmiQuery wmi(name_space);
    std::vector<T> values;
    if (wmi.ExcuteQuery(query, property, values, true) != 0) return 0;
    store(values.front());
    return 1;
  });
}

}  // namespace

int WmiQueryFirstString(const std::wstring& nameSpace, const std::wstring& query,
                        const std::wstring& property, std::wstring& out) {
  return FirstValue<std::wstring>(nameSpace, query, property,
                                  [&](std::wstring& value) { out = std::move(value); });
}

int WmiQueryFirstUInt(const std::wstring& nameSpace, const std::wstring& query,
                      const std::wstring& property, unsigned int* out) {
  if (out == nullptr) return 0;
  return FirstValue<unsigned int>(nameSpace, query, property,
                                  [&](unsigned int value) { *out = value; });
}
