// One question to one application: where are the buttons of this window's title bar?
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "platform/linux/atspi/AccessibilityBus.h"
#include "platform/linux/atspi/ButtonGeometry.h"
#include "platform/linux/atspi/ButtonNames.h"

namespace atspi {

/// Asks, and remembers what stays true from one question to the next. Belongs to one thread; several questions may be
/// under way at a time.
class TitleBarLookup {
 public:
  explicit TitleBarLookup(std::string decorationLayout);

  /// The buttons; empty when the application answered but does not show the window, or not yet in the size that
  /// `window` has, or without buttons. Throws Silence. `bus` must stay until the task ends.
  Task<std::vector<TitleBarButton>> find(const AccessibilityBus& bus, Window window);

 private:
  Task<std::vector<Address>> applications(const AccessibilityBus& bus, pid_t pid);
  Task<std::vector<TitleBarButton>> findIn(const AccessibilityBus& bus, const Address& application,
                                           const Window& window);
  const ButtonNames& names(Toolkit toolkit, const std::string& locale, pid_t pid);

  std::string decorationLayout_;
  std::map<std::string, pid_t> processes_;
  std::map<std::string, ButtonNames> names_;
};

}  // namespace atspi
