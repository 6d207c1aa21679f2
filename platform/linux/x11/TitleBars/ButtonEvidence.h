// What presses in one kind of title bar have shown, and which buttons follow from it.
#pragma once

#include <optional>
#include <vector>

#include "platform/linux/x11/TitleBars/TitleBarKind.h"

namespace x11 {

/// A press that was passed on and what it did: a role's effect, or nothing.
struct Observation {
  std::optional<ButtonRole> role;
  Spot spot;
  friend bool operator==(const Observation&, const Observation&) = default;
};

/// A button's rectangle, in pixels from a top corner inwards and downwards.
struct StoredButton {
  ButtonRole role = ButtonRole::Minimize;
  Corner corner = Corner::Right;
  int across = 0;
  int down = 0;
  int width = 0;
  int height = 0;

  /// Whether a press there is certainly on the button: `rim` pixels along its edges count as off it.
  bool contains(const Spot& spot, int rim) const;
  friend bool operator==(const StoredButton&, const StoredButton&) = default;
};

/// Pure: no clock, no window. A role becomes a button with its second press in one place, close with its third.
/// Everything doubtful counts against it: two presses of a role that are too far apart for one button, another role's
/// press or one that did nothing in the same place.
class ButtonEvidence {
 public:
  explicit ButtonEvidence(int scale) : scale_(scale) {}

  /// Takes one more observation into account. Returns whether any button has come, gone or changed.
  bool add(const Observation& observation);

  const std::vector<StoredButton>& buttons() const { return buttons_; }
  bool has(ButtonRole role) const;
  const std::vector<Observation>& observations() const { return observations_; }
  /// How many presses speak for a role, and how many it takes.
  int seen(ButtonRole role) const;
  /// Whether any press speaks for a button; those that did nothing only keep others from being believed.
  bool hasAnyRole() const;
  static int needed(ButtonRole role) { return role == ButtonRole::Close ? 3 : 2; }

 private:
  std::optional<StoredButton> buttonOf(ButtonRole role) const;
  void forgetOldest();

  int scale_;
  /// The oldest first.
  std::vector<Observation> observations_;
  std::vector<StoredButton> buttons_;
};

}  // namespace x11
