// halinfo's report is a tree of Nodes that both renderers print: JSON by key, plain text by label.
//
// To add a section: write `Node XxxSection()` in its own xxx_section.cpp, reading the library's
// public interface and returning Object("xxx", "Xxx", {...}) of Text, Number, Flag, Object and
// Array nodes; declare it in sections.h, list the file in CMakeLists.txt and add its row to
// kSections in live.cpp. JSON keys are camelCase with any unit in the name ("sizeMiB"); labels
// are words, the unit goes to Number ("MiB"); an unknown number is std::nullopt (null, "?").
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace halinfo {

struct Node {
  enum class Kind { kValue, kObject, kArray };
  using Value = std::variant<std::nullptr_t, std::string, int64_t, uint64_t, double, bool>;

  Kind kind = Kind::kValue;
  std::string key;  // in JSON; an array's elements have none
  // In plain text. Without one, a value is JSON only and a container's children stand in its
  // place, with no heading.
  std::string label;
  Value value;                 // null: unknown
  std::string unit;            // after a known number, in plain text
  std::string shown;           // in plain text instead of the value, when set (a decoded form)
  std::vector<Node> children;  // an object's members or an array's elements
};

// The builders. An empty text prints as "?" in plain text and stays "" in JSON.
Node Leaf(std::string key, std::string label, Node::Value value, std::string unit = {});
Node Text(std::string key, std::string label, std::string text);
Node Flag(std::string key, std::string label, std::optional<bool> flag);
Node Object(std::string key, std::string label, std::vector<Node> members);
Node Array(std::string key, std::string label, std::vector<Node> elements);
// The node with its value written another way in plain text ("Notebook" for chassis type 10);
// JSON keeps the value.
Node Shown(Node node, std::string text);

template <class T>
concept Numeric = std::is_arithmetic_v<T> && !std::same_as<T, bool>;

// Numbers are kept at their widest: int64_t, uint64_t or double.
template <Numeric T>
Node::Value Widened(T number) {
  if constexpr (std::floating_point<T>) {
    return static_cast<double>(number);
  } else if constexpr (std::signed_integral<T>) {
    return static_cast<int64_t>(number);
  } else {
    return static_cast<uint64_t>(number);
  }
}

template <Numeric T>
Node Number(std::string key, std::string label, std::optional<T> number, std::string unit = {}) {
  return Leaf(std::move(key), std::move(label), number ? Widened(*number) : Node::Value(),
              std::move(unit));
}

template <Numeric T>
Node Number(std::string key, std::string label, T number, std::string unit = {}) {
  return Number(std::move(key), std::move(label), std::optional<T>(number), std::move(unit));
}

// The version of the JSON documents' shape (tools/halinfo/halinfo.schema.json describes it):
// raised when a key changes meaning or goes; new keys come without a change.
inline constexpr int kSchemaVersion = 1;

// The sections as one JSON object keyed by their keys, after "schemaVersion", indented by 2,
// with a final line break.
std::string JsonDocument(const std::vector<Node>& sections);
// The sections one after the other, a blank line between: a heading line each, then a line a
// value, "label  value unit", indented by depth.
std::string PlainText(const std::vector<Node>& sections);

}  // namespace halinfo
