// Title bars whose buttons are known before anybody has clicked them: those of window managers whose themes have been
// measured.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Lock.h"
#include "platform/linux/x11/WindowManagers/Decoration.h"
#include "platform/linux/x11/WindowManagers/SettingsWatch.h"

namespace x11 {

class KnownDecorations {
 public:
  KnownDecorations() = default;
  ~KnownDecorations();
  KnownDecorations(const KnownDecorations&) = delete;
  KnownDecorations& operator=(const KnownDecorations&) = delete;

  /// Another window manager runs now, or none when the name is empty. What it is set to becomes known a moment later.
  /// One thread at a time.
  void follow(const std::string& windowManager);

  /// The theme and layout of the title bars that the window manager draws; empty when nothing is known of them. From
  /// memory; any thread.
  std::string look() const;
  /// The buttons of a window whose title bar the window manager draws; empty when they are not known for certain. From
  /// memory; any thread.
  std::vector<StoredButton> buttons(const Window& window, const TitleBarKind& kind) const;

 private:
  std::string windowManager_;
  mutable ns::Lock lock_;
  std::optional<Decoration> decoration_ GUARDED_BY(lock_);
  /// The last, so that it ends first.
  std::unique_ptr<SettingsWatch> watch_;
};

}  // namespace x11
