// pdh.dll as the loader fake hands it out: one counter whose instances hold scripted values.
// Queries are counted, so a test sees one left open.
#pragma once

#include "platform/win32.h"

#include <pdh.h>
#include <pdhmsg.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/fakes/fake_module.h"

namespace velhal::testing {

class FakePdh {
 public:
  std::vector<std::optional<LONG>> values;  // per instance; nullopt: no valid data
  std::wstring counter_path;                // the path last added
  PDH_STATUS add_result = ERROR_SUCCESS;
  int open_queries = 0;

  explicit FakePdh(FakeModule& module) {
    current_ = this;
    module.libraries[L"pdh.dll"]
        .Procedure("PdhOpenQueryW", &OpenQuery)
        .Procedure("PdhAddEnglishCounterW", &AddCounter)
        .Procedure("PdhCollectQueryData", &Collect)
        .Procedure("PdhGetFormattedCounterArrayW", &Read)
        .Procedure("PdhCloseQuery", &CloseQuery);
  }
  ~FakePdh() { current_ = nullptr; }
  FakePdh(const FakePdh&) = delete;
  FakePdh& operator=(const FakePdh&) = delete;

 private:
  static inline FakePdh* current_ = nullptr;
  static inline wchar_t kName[] = L"\\_TZ.TZ00";
  static PDH_HQUERY Query() { return reinterpret_cast<PDH_HQUERY>(current_); }

  static PDH_STATUS WINAPI OpenQuery(const wchar_t*, DWORD_PTR, PDH_HQUERY* query) {
    ++current_->open_queries;
    *query = Query();
    return ERROR_SUCCESS;
  }
  static PDH_STATUS WINAPI AddCounter(PDH_HQUERY query, const wchar_t* path, DWORD_PTR,
                                      PDH_HCOUNTER* counter) {
    if (query != Query()) return PDH_INVALID_HANDLE;
    current_->counter_path = path;
    *counter = reinterpret_cast<PDH_HCOUNTER>(current_);
    return current_->add_result;
  }
  static PDH_STATUS WINAPI Collect(PDH_HQUERY query) {
    return query == Query() ? ERROR_SUCCESS : PDH_INVALID_HANDLE;
  }
  static PDH_STATUS WINAPI Read(PDH_HCOUNTER, DWORD format, DWORD* size, DWORD* count,
                                PDH_FMT_COUNTERVALUE_ITEM_W* items) {
    const auto& values = current_->values;
    const DWORD needed = static_cast<DWORD>(values.size() * sizeof(*items) + sizeof(kName));
    *count = static_cast<DWORD>(values.size());
    if (items == nullptr || *size < needed) {
      *size = needed;
      return static_cast<PDH_STATUS>(PDH_MORE_DATA);
    }
    if (format != PDH_FMT_LONG) return PDH_INVALID_ARGUMENT;
    for (size_t i = 0; i < values.size(); ++i) {
      items[i].szName = kName;
      items[i].FmtValue.CStatus = values[i] ? PDH_CSTATUS_VALID_DATA : PDH_CSTATUS_INVALID_DATA;
      items[i].FmtValue.longValue = values[i].value_or(0);
    }
    return ERROR_SUCCESS;
  }
  static PDH_STATUS WINAPI CloseQuery(PDH_HQUERY query) {
    if (query != Query()) return PDH_INVALID_HANDLE;
    --current_->open_queries;
    return ERROR_SUCCESS;
  }
};

}  // namespace velhal::testing
