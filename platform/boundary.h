// Nothing is thrown across an export. Each exported function runs its body through
// CallGuarded, which turns any exception (allocation failure included) into the function's
// documented failure value.
#pragma once

namespace velhal {

template <class Result, class Body>
Result CallGuarded(Result failure, Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return failure;
  }
}

}  // namespace velhal
