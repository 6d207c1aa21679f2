#include "platform/linux/x11/TitleBars/DrawnButtons.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

#include "platform/linux/freedesktop/Files.h"
#include "platform/linux/x11/TitleBars/ShippedButtons.h"

namespace x11 {

namespace {

constexpr int rim = 2;  // points
constexpr unsigned anyButton =
    XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3 | XCB_BUTTON_MASK_4 | XCB_BUTTON_MASK_5;

ButtonBook read(const std::string& file) {
  constexpr std::size_t largestFile = 4 * 1024 * 1024;
  if (file.empty()) return {};
  const freedesktop::FileContent content = freedesktop::readFile(file, largestFile);
  if (content.error == ENOENT) return {};
  if (content.error == 0) {
    if (auto book = ButtonBook::parse(content.text)) return *std::move(book);
  }
  const std::string aside = file + ".damaged";
  std::rename(file.c_str(), aside.c_str());
  freedesktop::logWarning("what was learned about title bars is damaged; it is kept in " + aside);
  return {};
}

bool isAmong(const std::vector<StoredButton>& buttons, ButtonRole role) {
  return std::any_of(buttons.begin(), buttons.end(), [role](const StoredButton& one) { return one.role == role; });
}

}  // namespace

DrawnButtons::DrawnButtons(const Connection& connection, const WindowTracker& tracker, double scale, std::string file,
                           LayoutQuestion hasUsualLayout, EffectHandler onEffect)
    : connection_(connection),
      tracker_(tracker),
      scale_(static_cast<int>(std::lround(scale * 100))),
      file_(std::move(file)),
      idleTime_(connection),
      hasUsualLayout_(std::move(hasUsualLayout)),
      onEffect_(std::move(onEffect)),
      book_(read(file_)) {}

DrawnButtons::~DrawnButtons() { store(); }

std::optional<ButtonRole> DrawnButtons::roleAt(const Window& window, CGPoint position) const {
  const auto spot = spotOf(window, position, scale_);
  if (!spot) return std::nullopt;
  const auto kind = kindOf(window);
  if (!kind) return std::nullopt;
  const auto roleIn = [&](const std::vector<StoredButton>& buttons) {
    const auto found = std::find_if(buttons.begin(), buttons.end(), [&](const StoredButton& button) {
      return button.contains(*spot, rim * scale_ / 100);
    });
    return found == buttons.end() ? std::nullopt : std::optional(found->role);
  };
  const auto known = known_.buttons(window, *kind);
  if (const auto role = roleIn(known)) return role;
  const ns::LockGuard guard(lock_);
  const ButtonEvidence* evidence = book_.evidence(*kind);
  const auto learned = evidence == nullptr ? std::nullopt : roleIn(evidence->buttons());
  return learned && !isAmong(known, *learned) ? learned : std::nullopt;
}

std::optional<TitleBarKind> DrawnButtons::kindOf(const Window& window) const {
  auto kind = x11::kindOf(window, tracker_.windowManager().name, scale_);
  if (kind && !window.drawsItsTitleBar()) kind->look = known_.look();
  return kind;
}

bool DrawnButtons::has(const Window& window, ButtonRole role) const {
  const auto kind = kindOf(window);
  if (!kind) return false;
  if (isAmong(known_.buttons(window, *kind), role)) return true;
  const ns::LockGuard guard(lock_);
  const ButtonEvidence* evidence = book_.evidence(*kind);
  return evidence != nullptr && evidence->has(role);
}

std::string DrawnButtons::sourceOf(const Window& window, ButtonRole role) const {
  const auto kind = kindOf(window);
  if (kind && isAmong(known_.buttons(window, *kind), role)) return "known decoration";
  const ns::LockGuard guard(lock_);
  const ButtonEvidence* evidence = kind ? book_.evidence(*kind) : nullptr;
  const int seen = evidence == nullptr ? 0 : evidence->seen(role);
  const int needed = ButtonEvidence::needed(role);
  if (evidence != nullptr && evidence->has(role)) return book_.isShipped(*kind, role) ? "shipped" : "learned";
  if (seen == 0) return "not known yet";
  if (seen >= needed) return "not known: clicks have shown it in places that do not agree";
  return "still learning, " + std::to_string(seen) + " of " + std::to_string(needed);
}

std::string DrawnButtons::summary() const {
  std::string names;
  const ns::LockGuard guard(lock_);
  for (const std::string& painter : book_.painters()) names += (names.empty() ? "learned of " : ", ") + painter;
  return names.empty() ? "none learned yet" : names;
}

std::size_t DrawnButtons::forget(std::string_view painter) {
  std::size_t count = 0;
  {
    const ns::LockGuard guard(lock_);
    count = book_.forget(painter);
    hasNews_ = hasNews_ || count > 0;
  }
  store();
  for (const Window& window : tracker_.windows()) ship(window);
  return count;
}

void DrawnButtons::ship(const Window& window) {
  const auto kind = kindOf(window);
  if (!kind) return;
  const auto shipped = shippedWith(*kind);
  if (shipped.empty()) return;
  {
    const ns::LockGuard guard(lock_);
    if (book_.hasShipped(*kind)) return;
  }
  if (!hasUsualLayout_()) return;
  const ns::LockGuard guard(lock_);
  for (const auto& [one, presses] : shipped) book_.ship(one, presses);
}

void DrawnButtons::passedOn(const std::optional<Window>& window, CGPoint position) {
  const auto spot = window ? spotOf(*window, position, scale_) : std::nullopt;
  const auto kind = spot ? kindOf(*window) : std::nullopt;
  std::optional<Outcome> outcome;
  {
    const ns::LockGuard guard(lock_);
    ++presses_;
    if (!kind) return watch_.giveUp();
    outcome = watch_.pressed({*window, *kind, *spot, position, presses_, std::chrono::steady_clock::now()});
  }
  if (outcome) learn(*outcome);
}

void DrawnButtons::handleEvent(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != XCB_MAP_NOTIFY) return;
  // A menu, a tooltip or the like has come up: what nobody manages.
  if (reinterpret_cast<const xcb_map_notify_event_t&>(event).override_redirect == 0) return;
  const ns::LockGuard guard(lock_);
  watch_.giveUp();
}

void DrawnButtons::changed(WindowChange change, const Window& window) {
  store();  // of the last press, which could not wait for it
  // Not at every change: a window that has its buttons elsewhere would be asked about again and again.
  if (change == WindowChange::Present || change == WindowChange::Added || change == WindowChange::Activated) {
    ship(window);
  }
  const auto now = change == WindowChange::Removed ? std::nullopt : std::optional(window);
  {
    const ns::LockGuard guard(lock_);
    if (change == WindowChange::Added) watch_.windowAppeared(window.pid);
    if (!watch_.isEffect(window.client, now)) return;
  }
  const auto hands = lookAtHands();
  std::optional<Outcome> outcome;
  {
    const ns::LockGuard guard(lock_);
    if (!hands) return watch_.giveUp();
    outcome = watch_.changed(window.client, now, *hands);
  }
  if (!outcome) return;
  learn(*outcome);
  if (outcome->role != ButtonRole::Close) onEffect_(outcome->press, *outcome->role);
  store();
}

void DrawnButtons::learn(const Outcome& outcome) {
  const ns::LockGuard guard(lock_);
  const bool hasChanged = book_.add(outcome.press.kind, {outcome.role, outcome.press.spot});
  // A press that did nothing and changed nothing is no news: most clicks in title bars are.
  hasNews_ = hasNews_ || outcome.role || hasChanged;
}

void DrawnButtons::store() {
  const ns::LockGuard writing(diskLock_);
  std::string text;
  {
    const ns::LockGuard guard(lock_);
    if (!std::exchange(hasNews_, false) || file_.empty()) return;
    text = book_.text();
  }
  if (const int error = freedesktop::replaceFile(file_, text)) {
    freedesktop::logWarning("cannot store what was learned about title bars: " + std::string(std::strerror(error)));
  }
}

std::optional<Hands> DrawnButtons::lookAtHands() const {
  const auto cookie = xcb_query_pointer(connection_.get(), connection_.root());
  const auto idle = idleTime_.ask();
  const auto pointer = connection_.reply(xcb_query_pointer_reply, cookie);
  if (!pointer || !idle) return std::nullopt;
  Hands hands;
  hands.pointer = {static_cast<CGFloat>(pointer->root_x), static_cast<CGFloat>(pointer->root_y)};
  hands.anyButtonDown = (pointer->mask & anyButton) != 0;
  hands.pointerIdle = idle->pointer;
  hands.keyboardIdle = idle->keyboard;
  hands.time = std::chrono::steady_clock::now();
  const ns::LockGuard guard(lock_);
  hands.presses = presses_;
  return hands;
}

}  // namespace x11
