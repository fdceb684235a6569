// Scripted WMI behind the engine seam: for each (namespace, query) the rows of values of one
// property, or a failure code. Records every call, so a test sees what was asked and how.
#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "platform/os/wmi.h"
#include "tests/fakes/fake_variant.h"

namespace velhal::testing {

class FakeWmi final : public os::Wmi {
 public:
  struct Call {
    std::wstring name_space, wql, property;
    bool first_only;
  };

  // Rows for a query and property; result is what the engine reports after handing them over.
  void Script(const std::wstring& name_space, const std::wstring& wql,
              const std::wstring& property, std::vector<FakeValue> rows, HRESULT result = S_OK) {
    scripts_[{name_space, wql, property}] = {std::move(rows), result};
  }

  HRESULT ExecQuery(const std::wstring& name_space, const std::wstring& wql,
                    const std::wstring& property, bool first_only,
                    const ValueCallback& on_value) override {
    calls.push_back({name_space, wql, property, first_only});
    const auto found = scripts_.find({name_space, wql, property});
    // Unscripted queries fail as a query WMI cannot parse would.
    if (found == scripts_.end()) return static_cast<HRESULT>(0x80041017);  // WBEM_E_INVALID_QUERY
    for (const FakeValue& row : found->second.rows) {
      VARIANT value;
      row.ToVariant(&value);
      on_value(value);
      ::VariantClear(&value);
      if (first_only) break;
    }
    return found->second.result;
  }

  std::vector<Call> calls;

 private:
  struct Rows {
    std::vector<FakeValue> rows;
    HRESULT result;
  };
  std::map<std::tuple<std::wstring, std::wstring, std::wstring>, Rows> scripts_;
};

}  // namespace velhal::testing
