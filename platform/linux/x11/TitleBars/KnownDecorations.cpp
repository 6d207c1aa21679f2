#include "platform/linux/x11/TitleBars/KnownDecorations.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <utility>

namespace x11 {

namespace {

/// Whether the session's language is written from the right: some window managers turn the title bar round then.
bool isWrittenFromTheRight() {
  constexpr std::string_view languages[] = {"ar", "ckb", "dv", "fa", "he", "iw", "ps", "sd", "ug", "ur", "yi"};
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    const std::string_view locale = value == nullptr ? std::string_view() : value;
    if (locale.empty()) continue;
    const std::string_view language = locale.substr(0, locale.find_first_of("_.@"));
    return std::find(std::begin(languages), std::end(languages), language) != std::end(languages);
  }
  return false;
}

}  // namespace

KnownDecorations::~KnownDecorations() = default;

void KnownDecorations::follow(const std::string& windowManager) {
  if (std::exchange(windowManager_, windowManager) == windowManager) return;
  watch_.reset();
  {
    const ns::LockGuard guard(lock_);
    decoration_.reset();
  }
  const DrawnDecoration* known = drawnDecorationOf(windowManager);
  if (known == nullptr || isWrittenFromTheRight()) return;
  watch_ = std::make_unique<SettingsWatch>(known->settings(), [this, known](const SettingValues& values) {
    auto decoration = known->read(values);
    const ns::LockGuard guard(lock_);
    decoration_ = std::move(decoration);
  });
}

std::string KnownDecorations::look() const {
  const ns::LockGuard guard(lock_);
  return decoration_ ? decoration_->look : std::string();
}

std::vector<StoredButton> KnownDecorations::buttons(const Window& window, const TitleBarKind& kind) const {
  if (window.drawsItsTitleBar()) return {};
  const ns::LockGuard guard(lock_);
  return decoration_ ? buttonsOf(*decoration_, window, kind) : std::vector<StoredButton>();
}

}  // namespace x11
