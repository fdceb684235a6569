#include "platform/diagnostics.h"

#include "platform/os/debug_output.h"

namespace velhal::diagnostics_detail {

void Emit(const std::wstring& message) noexcept {
  os::debug_output().OutputDebugStringW(message.c_str());
}

}  // namespace velhal::diagnostics_detail
