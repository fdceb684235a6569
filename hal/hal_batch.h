// A batch for the length of a C++ scope: HalBeginBatch on construction, HalEndBatch on
// destruction (see hal_api.h). Header-only over the flat exports.
#pragma once

#include "hal/hal_api.h"

class HalBatch {
 public:
  HalBatch() noexcept : begun_(HalBeginBatch() != 0) {}
  ~HalBatch() {
    if (begun_) HalEndBatch();
  }
  HalBatch(const HalBatch&) = delete;
  HalBatch& operator=(const HalBatch&) = delete;

 private:
  bool begun_;  // a batch that could not begin is not ended, so an outer one stays open
};
