// Process-wide state the library keeps until it is unloaded: the firmware identity, the
// product-adapter files, the serial number, the class-3 endpoints and the like. Each piece
// registers how to forget itself when it is first filled (never at load). Tests forget all of
// it between cases, so that every case starts as a fresh process would; the library itself
// never calls the reset.
#pragma once

namespace velhal {

// Idempotent: registering the same function twice keeps one entry.
void RegisterProcessStateReset(void (*reset)());
void ResetProcessStateForTesting();

}  // namespace velhal
