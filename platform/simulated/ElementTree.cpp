#include "platform/simulated/ElementTree.h"

#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/simulated/Words.h"

namespace simulated {

namespace {

desktop::Element element(ElementTree::Identifier identifier) { return {treeElementKind, identifier}; }

desktop::Value valueOf(std::string_view text) {
  if (text == "true") return true;
  if (text == "false") return false;
  if (text.size() >= 2 && text.front() == '"') return std::string(text.substr(1, text.size() - 2));
  std::size_t used = 0;
  const double number = std::stod(std::string(text), &used);
  if (used != text.size()) refuse(text, "an attribute");
  if (number == static_cast<double>(static_cast<std::int64_t>(number))) return static_cast<std::int64_t>(number);
  return number;
}

void readRole(ElementTree::Node& node, std::string_view word) {
  const std::size_t slash = word.find('/');
  node.attributes["AXRole"] = std::string(word.substr(0, slash));
  if (slash != std::string_view::npos) node.attributes["AXSubrole"] = std::string(word.substr(slash + 1));
  node.attributes["AXEnabled"] = true;
}

void readWord(ElementTree::Node& node, std::string_view word) {
  const std::size_t equals = word.find('=');
  if (word.front() == '#') {
    node.name = word.substr(1);
  } else if (word == "disabled") {
    node.attributes["AXEnabled"] = false;
  } else if (equals != std::string_view::npos) {
    node.attributes[std::string(word.substr(0, equals))] = valueOf(word.substr(equals + 1));
  } else if (const auto origin = pairOf(word, ',')) {
    node.place = CGRect{*origin, node.place.value_or(CGRect{}).size};
  } else if (const auto size = pairOf(word, 'x')) {
    node.place = CGRect{node.place.value_or(CGRect{}).origin, {size->x, size->y}};
  } else {
    refuse(word, "an element");
  }
}

bool isMinimizeButton(const ElementTree::Node& node) {
  const auto found = node.attributes.find("AXSubrole");
  const auto* subrole = found != node.attributes.end() ? std::get_if<std::string>(&found->second) : nullptr;
  return subrole != nullptr && *subrole == "AXMinimizeButton";
}

}  // namespace

void ElementTree::add(pid_t pid, std::string_view text) {
  std::vector<std::pair<std::size_t, Identifier>> ancestors;  // indentation and element
  for (const Line& line : linesOf(text)) {
    while (!ancestors.empty() && ancestors.back().first >= line.indentation) ancestors.pop_back();
    Node& node = add(pid, ancestors.empty() ? 0 : ancestors.back().second);
    readRole(node, line.words.front());
    for (std::size_t i = 1; i < line.words.size(); ++i) readWord(node, line.words[i]);
    ancestors.emplace_back(line.indentation, node.identifier);
  }
}

ElementTree::Node& ElementTree::add(pid_t pid, Identifier parent) {
  Node& node = nodes_.emplace_back();
  node.identifier = nodes_.size();
  node.parent = parent;
  node.pid = pid;
  return node;
}

void ElementTree::remove(Identifier identifier) {
  for (Node& node : nodes_) {
    if (isWithin(node, identifier)) node.isGone = true;
  }
}

void ElementTree::removeAll(pid_t pid) {
  for (Node& node : nodes_) {
    if (node.pid == pid) node.isGone = true;
  }
}

ElementTree::Node& ElementTree::named(std::string_view name) {
  for (Node& node : nodes_) {
    if (node.name == name) return node;
  }
  throw std::invalid_argument("no element is named " + std::string(name));
}

ElementTree::Node* ElementTree::find(Identifier identifier) {
  if (identifier == 0 || identifier > nodes_.size()) return nullptr;
  Node& node = nodes_[identifier - 1];
  return node.isGone ? nullptr : &node;
}

const ElementTree::Node& ElementTree::topLevel(const Node& node) const {
  const Node* top = &node;
  while (top->parent != 0) top = &nodes_[top->parent - 1];
  return *top;
}

bool ElementTree::isWithin(const Node& node, Identifier ancestor) const {
  for (const Node* each = &node;; each = &nodes_[each->parent - 1]) {
    if (each->identifier == ancestor) return true;
    if (each->parent == 0) return false;
  }
}

CGRect ElementTree::frame(const Node& node) const {
  const Node* placed = &node;
  while (!placed->place && placed->parent != 0) placed = &nodes_[placed->parent - 1];
  CGRect frame = placed->place.value_or(CGRect{});
  if (placed->parent == 0) return frame;
  const CGPoint origin = topLevel(*placed).place.value_or(CGRect{}).origin;
  frame.origin = CGPointMake(frame.origin.x + origin.x, frame.origin.y + origin.y);
  return frame;
}

ElementTree::Identifier ElementTree::deepestAt(CGPoint point) const {
  // The frontmost top-level element takes the click; in it, what is declared later lies above or within.
  Identifier top = 0;
  Identifier deepest = 0;
  for (const Node& node : nodes_) {
    if (node.isGone || !CGRectContainsPoint(frame(node), point)) continue;
    if (node.parent == 0) top = deepest = node.identifier;
    if (top != 0 && topLevel(node).identifier == top) deepest = node.identifier;
  }
  return deepest;
}

std::optional<desktop::Value> ElementTree::attribute(const Node& node, std::string_view name) const {
  if (const auto stored = node.attributes.find(name); stored != node.attributes.end()) return stored->second;
  if (name == "AXParent" && node.parent != 0) return element(node.parent);
  if (name == "AXPosition") return frame(node).origin;
  if (name == "AXSize") return frame(node).size;
  if (name == "AXMinimized" && node.parent == 0) return false;
  if (name == "AXMinimizeButton") {
    for (const Node& each : nodes_) {
      if (!each.isGone && isMinimizeButton(each) && isWithin(each, node.identifier)) return element(each.identifier);
    }
  }
  return std::nullopt;
}

AXError ElementTree::setAttribute(Node& node, std::string_view name, const desktop::Value& value) {
  if (node.parent != 0) return kAXErrorAttributeUnsupported;
  if (name == "AXMinimized") {
    if (!std::holds_alternative<bool>(value)) return kAXErrorIllegalArgument;
    node.attributes[std::string(name)] = value;
    return kAXErrorSuccess;
  }
  if (name != "AXPosition" && name != "AXSize") return kAXErrorAttributeUnsupported;
  CGRect place = node.place.value_or(CGRect{});
  if (name == "AXPosition" && std::holds_alternative<CGPoint>(value)) {
    place.origin = std::get<CGPoint>(value);
  } else if (name == "AXSize" && std::holds_alternative<CGSize>(value)) {
    place.size = std::get<CGSize>(value);
  } else {
    return kAXErrorIllegalArgument;
  }
  node.place = place;
  return kAXErrorSuccess;
}

}  // namespace simulated
