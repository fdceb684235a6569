// Small helpers shared by the sections: optional numbers become JSON null, text "?".
#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace halinfo {

template <class T>
nlohmann::ordered_json OrNull(const std::optional<T>& value) {
  return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json(nullptr);
}

template <class T>
std::string OrUnknown(const std::optional<T>& value, const std::string& unit = "") {
  return value ? std::to_string(*value) + unit : std::string("?");
}

inline std::string OrUnknown(const std::string& text) { return text.empty() ? "?" : text; }

// A reading of 0 means "not reported" for the library's numeric getters.
template <class T>
std::optional<T> Reported(T value) {
  return value != 0 ? std::optional<T>(value) : std::nullopt;
}

}  // namespace halinfo
