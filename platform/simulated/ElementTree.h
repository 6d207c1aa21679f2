// The windows of a simulated desktop and what is in them, as Accessibility shows it.
//
// Written down as indented lines, one element each, windows in front coming last:
//
//   AXWindow #editor 100,80 640x480
//     AXGroup
//       AXButton/AXMinimizeButton #yellow 24,6 14x14
//       AXButton/AXZoomButton #green 44,6 14x14 disabled
//
// A line is a role, with a subrole after a slash, then in any order: #name, by which tests and the journal call the
// element; its place, in the global space for a top-level element and from its top-level element's origin for the
// others (without one it covers its parent); "disabled"; and attributes as Name=value with a number, true, false or "a
// text".
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/portable/Desktop.h"

namespace simulated {

class ElementTree {
 public:
  using Identifier = std::uint64_t;
  struct Node {
    Identifier identifier = 0;
    /// 0 for a top-level element.
    Identifier parent = 0;
    pid_t pid = 0;
    std::string name;
    /// Global for a top-level element, else from its origin.
    std::optional<CGRect> place;
    /// Stored attributes win over those that follow from the tree (AXParent, AXMinimizeButton, AXPosition, AXSize).
    std::map<std::string, desktop::Value, std::less<>> attributes;
    bool isGone = false;
  };

  /// Adds the elements of a text in front of all others. Throws std::invalid_argument for a text it cannot read.
  void add(pid_t pid, std::string_view text);
  /// Adds one element; the reference holds until the tree is destroyed.
  Node& add(pid_t pid, Identifier parent);

  /// Takes an element and everything below it away.
  void remove(Identifier identifier);
  void removeAll(pid_t pid);

  /// The element by its name; throws std::invalid_argument when there is none.
  Node& named(std::string_view name);
  /// Null for one that is gone or never was.
  Node* find(Identifier identifier);

  /// 0 when there is none.
  Identifier deepestAt(CGPoint point) const;
  CGRect frame(const Node& node) const;
  std::optional<desktop::Value> attribute(const Node& node, std::string_view name) const;
  /// AXPosition, AXSize and AXMinimized of a top-level element; kAXErrorAttributeUnsupported for everything else.
  AXError setAttribute(Node& node, std::string_view name, const desktop::Value& value);

 private:
  const Node& topLevel(const Node& node) const;
  bool isWithin(const Node& node, Identifier ancestor) const;

  /// Index is identifier - 1; elements that are gone keep theirs.
  std::deque<Node> nodes_;
};

/// How the C half names elements of this tree.
inline constexpr std::uint32_t treeElementKind = 3;

}  // namespace simulated
