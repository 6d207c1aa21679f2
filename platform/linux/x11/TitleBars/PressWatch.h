// What became of a window after a press in its title bar.
#pragma once

#include <chrono>
#include <optional>

#include "platform/linux/x11/TitleBars/ButtonEvidence.h"

namespace x11 {

/// A press in a title bar's band that was passed on, because no button is known there.
struct PassedPress {
  Window window;  // as it was
  TitleBarKind kind;
  Spot spot;
  CGPoint position{};
  /// How many presses of the mouse there had been, this one included.
  std::uint64_t number = 0;
  std::chrono::steady_clock::time_point time;
};

/// What the person's hands are doing at the moment in which a window changes.
struct Hands {
  CGPoint pointer{};
  bool anyButtonDown = false;
  /// Since the last press, release or motion, and since the last key went down or up.
  std::chrono::milliseconds pointerIdle{};
  std::chrono::milliseconds keyboardIdle{};
  /// How many presses there have been.
  std::uint64_t presses = 0;
  std::chrono::steady_clock::time_point time;
};

/// An observation, and what it is about.
struct Outcome {
  PassedPress press;
  std::optional<ButtonRole> role;
};

/// Keeps the last such press in mind until it is known what it did. Pure: time and the state of the hands are given to
/// it. What cannot be told for certain is told to nobody.
class PressWatch {
 public:
  /// Takes the next press. The one before has done nothing if its time is over; then it is the answer.
  std::optional<Outcome> pressed(PassedPress press);
  /// Something else has happened that may be the cause of what comes: a press elsewhere, a menu.
  void giveUp() { press_.reset(); }
  /// A new window of the process has come up, a question perhaps: the press did something, but not to its window.
  void windowAppeared(pid_t pid);

  /// Whether that window's change is one of the three effects that a press is being watched for: most changes are not,
  /// and need no look at the hands. `now` is the window after the change, none when it is gone.
  bool isEffect(xcb_window_t client, const std::optional<Window>& now) const;
  /// What the press did, if this change is an effect and nothing but the press can have caused it.
  std::optional<Outcome> changed(xcb_window_t client, const std::optional<Window>& now, const Hands& hands);

 private:
  struct Place {
    xcb_window_t client;
    CGPoint position;
    std::chrono::steady_clock::time_point time;
  };

  std::optional<PassedPress> press_;
  /// Where the last press was, whether it is still watched or not: the next one may be half of a double click with it.
  std::optional<Place> last_;
};

}  // namespace x11
