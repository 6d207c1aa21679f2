// Title-bar buttons that nobody describes: neither windows of their own nor known to assistive technology. Where the
// window manager's theme is known they are, too; of all others what presses did tells where they are.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Lock.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/TitleBars/ButtonBook.h"
#include "platform/linux/x11/TitleBars/IdleTime.h"
#include "platform/linux/x11/TitleBars/KnownDecorations.h"
#include "platform/linux/x11/TitleBars/PressWatch.h"
#include "platform/linux/x11/WindowTracker.h"

namespace x11 {

/// Follows presses and what becomes of windows. No question is put to anybody while a press waits for its answer.
class DrawnButtons {
 public:
  /// Whether programs that draw their own title bar have its buttons in the usual order now. Called on the tracker's
  /// thread or that of forget(), without a lock, and may wait.
  using LayoutQuestion = std::function<bool()>;
  /// A press that was passed on, because its button was not known, has had its native effect: minimise or zoom. Called
  /// on the tracker's thread, without a lock.
  using EffectHandler = std::function<void(const PassedPress& press, ButtonRole role)>;

  /// References are lent. `connection` is asked questions; its events are left alone. `scale`: how many pixels
  /// make a point. `file` is where what is learned lasts, and is read now; empty for nowhere.
  DrawnButtons(const Connection& connection, const WindowTracker& tracker, double scale, std::string file,
               LayoutQuestion hasUsualLayout, EffectHandler onEffect);
  /// Stores what is not stored yet.
  ~DrawnButtons();
  DrawnButtons(const DrawnButtons&) = delete;
  DrawnButtons& operator=(const DrawnButtons&) = delete;

  /// The button at a point of the root window that lies in the window. From memory; any thread.
  std::optional<ButtonRole> roleAt(const Window& window, CGPoint position) const;

  /// Whether it is known where that window has this button. From memory; any thread.
  bool has(const Window& window, ButtonRole role) const;

  /// Where it is known from, in words for the person: "known decoration", "shipped", "learned", or how much is missing.
  /// From memory; any thread.
  std::string sourceOf(const Window& window, ButtonRole role) const;
  /// Whose title bars have been learned, in words for the person. Any thread.
  std::string summary() const;

  /// Forgets what was learned of one painter's title bars, of all when it is empty, and stores that; what is shipped
  /// counts again. How many kinds it
  /// was. Waits for the disk; any thread.
  std::size_t forget(std::string_view painter);

  /// The tap's thread, at each press that is not taken for a button; `window` is what it falls into when nobody else
  /// knows that window's buttons.
  void passedOn(const std::optional<Window>& window, CGPoint position);

  /// The tracker's observers.
  void follow(const RunningWindowManager& running) { known_.follow(running.name); }
  void changed(WindowChange change, const Window& window);
  void handleEvent(const xcb_generic_event_t& event);

 private:
  std::optional<TitleBarKind> kindOf(const Window& window) const;
  /// Takes what is known beforehand about a window's title bar.
  void ship(const Window& window);
  void learn(const Outcome& outcome);
  /// Waits for the disk, so never while a press waits for its answer.
  void store();
  std::optional<Hands> lookAtHands() const;

  const Connection& connection_;
  const WindowTracker& tracker_;
  const int scale_;
  const std::string file_;
  const IdleTime idleTime_;
  const LayoutQuestion hasUsualLayout_;
  const EffectHandler onEffect_;
  KnownDecorations known_;
  /// Held while the disk is written, so that nothing older is written over anything newer. Taken before the other.
  ns::Lock diskLock_;
  mutable ns::Lock lock_;
  std::uint64_t presses_ GUARDED_BY(lock_) = 0;
  PressWatch watch_ GUARDED_BY(lock_);
  ButtonBook book_ GUARDED_BY(lock_);
  bool hasNews_ GUARDED_BY(lock_) = false;
};

}  // namespace x11
