#include "tools/halinfo/node.h"

#include <cstdio>

#include <nlohmann/json.hpp>

namespace halinfo {
namespace {

constexpr size_t kValueColumn = 26;  // where every value starts, whatever its depth
constexpr size_t kIndent = 2;

nlohmann::ordered_json ToJson(const Node& node) {
  switch (node.kind) {
    case Node::Kind::kObject: {
      nlohmann::ordered_json object = nlohmann::ordered_json::object();
      for (const Node& member : node.children) object[member.key] = ToJson(member);
      return object;
    }
    case Node::Kind::kArray: {
      nlohmann::ordered_json array = nlohmann::ordered_json::array();
      for (const Node& element : node.children) array.push_back(ToJson(element));
      return array;
    }
    case Node::Kind::kValue:
      break;
  }
  return std::visit([](const auto& value) { return nlohmann::ordered_json(value); }, node.value);
}

std::string NumberText(double number) {
  char text[32] = {};
  std::snprintf(text, sizeof(text), "%.2f", number);
  return text;
}
std::string NumberText(int64_t number) { return std::to_string(number); }
std::string NumberText(uint64_t number) { return std::to_string(number); }

std::string ValueText(const Node& node) {
  if (!node.shown.empty()) return node.shown;
  return std::visit(
      [&](const auto& value) -> std::string {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::nullptr_t>) {
          return "?";
        } else if constexpr (std::is_same_v<T, std::string>) {
          return value.empty() ? "?" : value;
        } else if constexpr (std::is_same_v<T, bool>) {
          return value ? "yes" : "no";
        } else {
          return NumberText(value) + (node.unit.empty() ? "" : " " + node.unit);
        }
      },
      node.value);
}

// The indented label, padded up to the value column.
std::string LabelColumn(size_t indent, const std::string& label) {
  const size_t used = indent + label.size();
  const size_t padding = used + 2 < kValueColumn ? kValueColumn - used : 2;
  return std::string(indent, ' ') + label + std::string(padding, ' ');
}

void AppendLines(const Node& node, size_t indent, std::string& text) {
  if (node.kind == Node::Kind::kValue) {
    if (!node.label.empty()) text += LabelColumn(indent, node.label) + ValueText(node) + "\n";
    return;
  }
  if (node.children.empty()) {
    text += (node.label.empty() ? std::string(indent, ' ') : LabelColumn(indent, node.label)) +
            "none\n";
    return;
  }
  if (!node.label.empty()) {
    text += std::string(indent, ' ') + node.label + "\n";
    indent += kIndent;
  }
  for (const Node& child : node.children) AppendLines(child, indent, text);
}

Node Container(Node::Kind kind, std::string key, std::string label, std::vector<Node> children) {
  Node node;
  node.kind = kind;
  node.key = std::move(key);
  node.label = std::move(label);
  node.children = std::move(children);
  return node;
}

}  // namespace

Node Leaf(std::string key, std::string label, Node::Value value, std::string unit) {
  Node node;
  node.key = std::move(key);
  node.label = std::move(label);
  node.value = std::move(value);
  node.unit = std::move(unit);
  return node;
}

Node Text(std::string key, std::string label, std::string text) {
  return Leaf(std::move(key), std::move(label), std::move(text));
}

Node Flag(std::string key, std::string label, std::optional<bool> flag) {
  return Leaf(std::move(key), std::move(label), flag ? Node::Value(*flag) : Node::Value());
}

Node Object(std::string key, std::string label, std::vector<Node> members) {
  return Container(Node::Kind::kObject, std::move(key), std::move(label), std::move(members));
}

Node Array(std::string key, std::string label, std::vector<Node> elements) {
  return Container(Node::Kind::kArray, std::move(key), std::move(label), std::move(elements));
}

Node Shown(Node node, std::string text) {
  node.shown = std::move(text);
  return node;
}

std::string JsonDocument(const std::vector<Node>& sections) {
  nlohmann::ordered_json document = nlohmann::ordered_json::object();
  document["schemaVersion"] = kSchemaVersion;
  for (const Node& section : sections) document[section.key] = ToJson(section);
  return document.dump(2) + "\n";
}

std::string PlainText(const std::vector<Node>& sections) {
  std::string text;
  for (const Node& section : sections) {
    if (!text.empty()) text += "\n";
    AppendLines(section, 0, text);
  }
  return text;
}

}  // namespace halinfo
