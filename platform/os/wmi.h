// WMI facility: run one WQL query in a namespace and hand over one named property of every
// returned object. The real backend is the library's WMI engine (platform/wmi_engine.cpp);
// module tests install a fake with scripted rows.
#pragma once

#include "platform/win32.h"

#include <oaidl.h>

#include <functional>
#include <string>

#include "platform/os/seam.h"

namespace velhal::os {

class Wmi {
 public:
  using ValueCallback = std::function<void(VARIANT&)>;

  // Calls on_value once per returned object, in WMI's order (only for the first object when
  // first_only is set). Returns S_OK, or the failing HRESULT; a timeout is WBEM_E_TIMED_OUT.
  virtual HRESULT ExecQuery(const std::wstring& name_space, const std::wstring& wql,
                            const std::wstring& property, bool first_only,
                            const ValueCallback& on_value) = 0;

  static Wmi& Real() noexcept;

 protected:
  ~Wmi() = default;
};

inline Wmi& wmi() noexcept { return Seam<Wmi>::Get(); }

}  // namespace velhal::os
