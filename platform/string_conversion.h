// Conversions between the ANSI code page and UTF-16, as every module of the library uses them.
#pragma once

#include <string>

#include "hal/velhal_export.h"

// Converts with the ANSI code page (CP_ACP). The whole string is converted, embedded NULs
// included. Empty input or a failed conversion gives an empty string.
VELHAL_API std::wstring AnsiToWide(const std::string& text);

// Converts to the ANSI code page; characters it cannot represent become the system's default
// character. Empty input or a failed conversion gives an empty string.
VELHAL_API std::string WideToAnsi(const std::wstring& text);
