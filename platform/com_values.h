// Owners of the OLE automation values COM calls take: a BSTR and a VARIANT, each freed once.
#pragma once

#include "platform/win32.h"

#include <oleauto.h>

#include <string>

namespace velhal {

class Bstr {
 public:
  explicit Bstr(const std::wstring& text) : Bstr(text.data(), static_cast<UINT>(text.size())) {}
  // Exactly length units of text, whatever they hold.
  Bstr(const wchar_t* text, UINT length) : value_(::SysAllocStringLen(text, length)) {}
  ~Bstr() { ::SysFreeString(value_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  BSTR get() const noexcept { return value_; }  // null when memory ran out

 private:
  BSTR value_;
};

class Variant {
 public:
  Variant() noexcept { ::VariantInit(&value_); }
  ~Variant() { ::VariantClear(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  VARIANT* get() noexcept { return &value_; }

 private:
  VARIANT value_;
};

}  // namespace velhal
