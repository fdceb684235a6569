// The one table of VARIANT conversions behind every WMI read of the library.
//
//   text:       VT_BSTR as it is (a null BSTR is the empty string); every integer type as
//               decimal text (signed types signed, unsigned types unsigned); VT_BOOL as TRUE or
//               FALSE, the way MOF writes it.
//   unsigned:   every integer type that fits in 32 bits (signed types by their two's-complement
//               bit pattern, as WMI hands its uint32 values over as VT_I4); 64-bit integers and
//               decimal BSTR text when the value fits (WMI hands 64-bit integers over as text);
//               VT_BOOL as 1 or 0.
//   bytes:      a one-dimensional array of VT_UI1 or VT_I1, element by element; a single VT_UI1.
//
// Anything else, VT_NULL and VT_EMPTY included, appends nothing.
#pragma once

#include "platform/win32.h"

#include <oaidl.h>

#include <string>
#include <vector>

namespace velhal::wmi {

void AppendText(const VARIANT& value, std::vector<std::wstring>& out);
void AppendUInt32(const VARIANT& value, std::vector<unsigned int>& out);
void AppendBytes(const VARIANT& value, std::vector<unsigned char>& out);

}  // namespace velhal::wmi
