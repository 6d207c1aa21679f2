#include "platform/linux/x11/Elements.h"

#include <algorithm>
#include <utility>

#include "platform/linux/x11/Requests.h"

namespace x11 {

namespace {

enum Kind : std::uint32_t { SystemWideKind = 1, ApplicationKind, WindowKind, ButtonKind };

// A button's number is its window's with its role above.
constexpr unsigned roleShift = 32;

xcb_window_t clientOf(const desktop::Element& element) { return static_cast<xcb_window_t>(element.id & 0xffffffffU); }
ButtonRole roleOf(const desktop::Element& element) { return static_cast<ButtonRole>(element.id >> roleShift); }
pid_t pidOf(const desktop::Element& element) { return static_cast<pid_t>(element.id); }

AXError give(desktop::Value& value, desktop::Value answer) {
  value = std::move(answer);
  return kAXErrorSuccess;
}

std::string text(std::string_view literal) { return std::string(literal); }

std::string_view subroleOf(ButtonRole role) {
  switch (role) {
    case ButtonRole::Minimize:
      return "AXMinimizeButton";
    case ButtonRole::Zoom:
      return "AXZoomButton";
    case ButtonRole::Close:
      break;
  }
  return "AXCloseButton";
}

xcb_translate_coordinates_cookie_t translate(const Connection& connection, xcb_window_t to, CGPoint position) {
  return xcb_translate_coordinates(connection.get(), connection.root(), to,
                                   static_cast<std::int16_t>(std::clamp(position.x, -32768.0, 32767.0)),
                                   static_cast<std::int16_t>(std::clamp(position.y, -32768.0, 32767.0)));
}

}  // namespace

desktop::Element Elements::systemWide() { return {SystemWideKind, 0}; }
desktop::Element Elements::application(pid_t pid) { return {ApplicationKind, static_cast<std::uint32_t>(pid)}; }
desktop::Element Elements::window(xcb_window_t client) { return {WindowKind, client}; }
desktop::Element Elements::button(xcb_window_t client, ButtonRole role) {
  return {ButtonKind, client | static_cast<std::uint64_t>(role) << roleShift};
}

/// The children of a window and the one of them that is under a point, asked for in one go. What has not been received
/// when it ends is given up.
class Elements::LevelRequest {
 public:
  struct Level {
    xcb_window_t child;
    std::vector<xcb_window_t> children;
  };

  LevelRequest(const Connection& connection, xcb_window_t window, CGPoint position)
      : connection_(connection),
        child_(translate(connection, window, position)),
        tree_(xcb_query_tree(connection.get(), window)) {}
  ~LevelRequest() {
    if (isReceived_) return;
    xcb_discard_reply(connection_.get(), child_.sequence);
    xcb_discard_reply(connection_.get(), tree_.sequence);
  }
  LevelRequest(const LevelRequest&) = delete;
  LevelRequest& operator=(const LevelRequest&) = delete;

  /// Waits for the server. None when there is no child at the point. Once only.
  std::optional<Level> receive() {
    isReceived_ = true;
    const auto child = connection_.reply(xcb_translate_coordinates_reply, child_);
    const auto tree = connection_.reply(xcb_query_tree_reply, tree_);
    if (!child || !tree || child->child == XCB_WINDOW_NONE) return std::nullopt;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    return Level{child->child, {children, children + xcb_query_tree_children_length(tree.get())}};
  }

 private:
  const Connection& connection_;
  const xcb_translate_coordinates_cookie_t child_;
  const xcb_query_tree_cookie_t tree_;
  bool isReceived_ = false;
};

Elements::Elements(const Connection& connection, WindowTracker& tracker, Placement& placement, Hiding& hiding,
                   ClientButtons clientButtons, DrawnButtons& drawnButtons)
    : connection_(connection),
      atoms_(connection),
      tracker_(tracker),
      placement_(placement),
      hiding_(hiding),
      clientButtons_(std::move(clientButtons)),
      drawnButtons_(drawnButtons) {}

Elements::~Elements() = default;

bool Elements::mayHitButton(xcb_window_t rootChild, CGPoint position) {
  const auto window = tracker_.windowOfFrame(rootChild);
  Press press{rootChild, position, {}};
  if (window && isOnManagedTitleBar(*window, position)) {
    press.inFrame = std::make_unique<LevelRequest>(connection_, rootChild, position);
    connection_.flush();
    drawnButtons_.passedOn(std::nullopt, position);
  } else if (!window || !knownButtonAt(*window, position)) {
    drawnButtons_.passedOn(window && !isDescribed(*window) ? window : std::nullopt, position);
    return false;
  }
  const ns::LockGuard guard(lock_);
  lastPress_ = std::move(press);
  return true;
}

std::optional<Elements::Press> Elements::takePress(CGPoint position) {
  {
    const ns::LockGuard guard(lock_);
    Press press = std::exchange(lastPress_, {});
    if (press.rootChild != XCB_WINDOW_NONE && press.position.x == position.x && press.position.y == position.y) {
      return press;
    }
  }
  const auto top =
      connection_.reply(xcb_translate_coordinates_reply, translate(connection_, connection_.root(), position));
  return top ? std::optional(Press{top->child, position, {}}) : std::nullopt;
}

void Elements::pretendHit(const desktop::Element& button, const std::function<void()>& work) {
  pretendedHit_ = button;
  work();
  pretendedHit_.reset();
}

AXError Elements::atPosition(CGPoint position, desktop::Element& element) {
  if (pretendedHit_) {
    element = *pretendedHit_;
    return kAXErrorSuccess;
  }
  auto press = takePress(position);
  if (!press) return kAXErrorCannotComplete;
  const auto window = tracker_.windowOfFrame(press->rootChild);
  if (!window) return kAXErrorNoValue;
  const auto role = isOnManagedTitleBar(*window, position) ? managedButtonAt(*window, *std::move(press))
                                                           : knownButtonAt(*window, position);
  element = role ? button(window->client, *role) : Elements::window(window->client);
  return kAXErrorSuccess;
}

bool Elements::isOnManagedTitleBar(const Window& window, CGPoint position) const {
  // The press is known to be in the frame; the title bar is what lies above the client.
  return window.geometry.decoration.top > 0 && position.y < window.geometry.client.y &&
         windowManagerNamed(tracker_.windowManager().name) != nullptr;
}

std::optional<ButtonRole> Elements::managedButtonAt(const Window& window, Press press) const {
  const RunningWindowManager running = tracker_.windowManager();
  const WindowManager* manager = windowManagerNamed(running.name);
  if (manager == nullptr) return std::nullopt;
  ButtonPath path{connection_, running.pid, {window.frame}, {}};
  auto asked = std::move(press.inFrame);
  while (path.windows.size() < manager->depth()) {
    if (!asked) asked = std::make_unique<LevelRequest>(connection_, path.leaf(), press.position);
    auto level = std::exchange(asked, nullptr)->receive();
    if (!level) return std::nullopt;
    path.windows.push_back(level->child);
    path.siblings = std::move(level->children);
  }
  return manager->roleOf(path);
}

std::optional<ButtonRole> Elements::clientButtonAt(const Window& window, CGPoint position) const {
  if (!window.drawsItsTitleBar() || window.geometry.fullscreen) return std::nullopt;
  const Rect frame = window.geometry.frame();
  const CGPoint inside{position.x - frame.x, position.y - frame.y};
  for (const atspi::TitleBarButton& button : clientButtons_(window.client)) {
    if (CGRectContainsPoint(button.rect, inside)) return button.role;
  }
  return std::nullopt;
}

bool Elements::isDescribed(const Window& window) const {
  // In full screen a title bar is hidden, or only over the content while it is wanted.
  return window.drawsItsTitleBar() && (window.geometry.fullscreen || !clientButtons_(window.client).empty());
}

std::optional<ButtonRole> Elements::knownButtonAt(const Window& window, CGPoint position) const {
  return isDescribed(window) ? clientButtonAt(window, position) : drawnButtons_.roleAt(window, position);
}

std::vector<ns::DiagnosticLine> Elements::describeButtons(const Window& window) const {
  const std::string manager = tracker_.windowManager().name;
  const bool drawsItself = window.drawsItsTitleBar();
  std::vector<ns::DiagnosticLine> lines{
      {drawsItself ? window.properties.windowClass : manager, window.properties.title}};
  const auto described = isDescribed(window) ? clientButtons_(window.client) : std::vector<atspi::TitleBarButton>();
  for (const auto& [role, name] : {std::pair(ButtonRole::Minimize, " minimise"), std::pair(ButtonRole::Zoom, " zoom"),
                                   std::pair(ButtonRole::Close, " close")}) {
    const auto has = [wanted = role](const atspi::TitleBarButton& button) { return button.role == wanted; };
    if (window.geometry.fullscreen || (!drawsItself && window.geometry.decoration.top == 0)) {
      lines.push_back({name, "none: the window has no title bar now"});
    } else if (!drawsItself && windowManagerNamed(manager) != nullptr) {
      lines.push_back({name, "a button window of the window manager"});
    } else if (isDescribed(window)) {
      lines.push_back({name, std::any_of(described.begin(), described.end(), has) ? "AT-SPI" : "none, by AT-SPI"});
    } else {
      lines.push_back({name, drawnButtons_.sourceOf(window, role)});
    }
  }
  return lines;
}

MinimizeButton Elements::minimizeButtonOf(const Window& window) const {
  const MinimizeButton allowed = window.properties.minimizeButton();
  if (allowed == MinimizeButton::Missing || !window.drawsItsTitleBar()) return allowed;
  for (const atspi::TitleBarButton& button : clientButtons_(window.client)) {
    if (button.role == ButtonRole::Minimize) return button.enabled ? allowed : MinimizeButton::Disabled;
  }
  return drawnButtons_.has(window, ButtonRole::Minimize) ? allowed : MinimizeButton::Missing;
}

AXError Elements::attribute(const desktop::Element& element, std::string_view name, desktop::Value& value) const {
  switch (element.kind) {
    case SystemWideKind:
      return name == "AXRole" ? give(value, text("AXSystemWide")) : kAXErrorAttributeUnsupported;
    case ApplicationKind:
      return applicationAttribute(pidOf(element), name, value);
    case WindowKind:
    case ButtonKind: {
      const auto window = tracker_.window(clientOf(element));
      if (!window) return kAXErrorInvalidUIElement;
      return element.kind == WindowKind ? windowAttribute(*window, name, value)
                                        : buttonAttribute(*window, roleOf(element), name, value);
    }
    default:
      return kAXErrorInvalidUIElement;
  }
}

AXError Elements::applicationAttribute(pid_t pid, std::string_view name, desktop::Value& value) const {
  if (tracker_.windowsOfProcess(pid).empty()) return kAXErrorInvalidUIElement;
  if (name == "AXRole") return give(value, text("AXApplication"));
  if (name == "AXHidden") return give(value, hiding_.isHidden(pid));
  return kAXErrorAttributeUnsupported;
}

AXError Elements::windowAttribute(const Window& window, std::string_view name, desktop::Value& value) const {
  if (name == "AXRole") return give(value, text("AXWindow"));
  if (name == "AXSubrole") {
    const bool isDialog = window.properties.isTransient || !window.properties.isNormalType;
    return give(value, text(isDialog ? "AXDialog" : "AXStandardWindow"));
  }
  if (name == "AXParent") {
    return window.pid == 0 ? kAXErrorNoValue : give(value, application(window.pid));
  }
  if (name == "AXMinimized") return give(value, window.properties.isIconic());
  if (name == "AXMinimizeButton") {
    return minimizeButtonOf(window) == MinimizeButton::Missing
               ? kAXErrorNoValue
               : give(value, button(window.client, ButtonRole::Minimize));
  }
  const Rect frame = placement_.expectedFrame(window.client, window.geometry.frame());
  if (name == "AXPosition") return give(value, CGPointMake(frame.x, frame.y));
  if (name == "AXSize") return give(value, CGSizeMake(frame.width, frame.height));
  return kAXErrorAttributeUnsupported;
}

AXError Elements::buttonAttribute(const Window& window, ButtonRole role, std::string_view name,
                                  desktop::Value& value) const {
  if (name == "AXRole") return give(value, text("AXButton"));
  if (name == "AXSubrole") return give(value, text(subroleOf(role)));
  if (name == "AXParent") return give(value, Elements::window(window.client));
  if (name == "AXEnabled") {
    return give(value, role != ButtonRole::Minimize || minimizeButtonOf(window) == MinimizeButton::Enabled);
  }
  return kAXErrorAttributeUnsupported;
}

AXError Elements::setAttribute(const desktop::Element& element, std::string_view name,
                               const desktop::Value& value) const {
  if (element.kind == ApplicationKind && name == "AXHidden") {
    const bool* hidden = std::get_if<bool>(&value);
    if (hidden == nullptr) return kAXErrorIllegalArgument;
    const bool done = *hidden ? hiding_.hide(pidOf(element)) : hiding_.unhide(pidOf(element));
    return done || !*hidden ? kAXErrorSuccess : kAXErrorInvalidUIElement;
  }
  if (element.kind != WindowKind) return kAXErrorAttributeUnsupported;
  const xcb_window_t client = clientOf(element);
  const auto window = tracker_.window(client);
  if (!window) return kAXErrorInvalidUIElement;
  if (name == "AXPosition") {
    const auto* position = std::get_if<CGPoint>(&value);
    if (position == nullptr) return kAXErrorIllegalArgument;
    placement_.want(client, {*position, std::nullopt}, window->geometry);
  } else if (name == "AXSize") {
    const auto* size = std::get_if<CGSize>(&value);
    if (size == nullptr) return kAXErrorIllegalArgument;
    placement_.want(client, {std::nullopt, *size}, window->geometry);
  } else if (name == "AXMinimized") {
    const bool* minimized = std::get_if<bool>(&value);
    if (minimized == nullptr) return kAXErrorIllegalArgument;
    (*minimized ? requestIconify : requestActivate)(connection_, atoms_, client);
    connection_.flush();
  } else {
    return kAXErrorAttributeUnsupported;
  }
  return kAXErrorSuccess;
}

AXError Elements::processIdentifier(const desktop::Element& element, pid_t& pid) const {
  if (element.kind == ApplicationKind) {
    pid = pidOf(element);
    return kAXErrorSuccess;
  }
  if (element.kind != WindowKind && element.kind != ButtonKind) return kAXErrorIllegalArgument;
  const auto window = tracker_.window(clientOf(element));
  if (!window) return kAXErrorInvalidUIElement;
  if (window->pid == 0) return kAXErrorFailure;
  pid = window->pid;
  return kAXErrorSuccess;
}

}  // namespace x11
