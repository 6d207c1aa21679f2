#include "platform/linux/atspi/TitleBarLookup.h"

#include <atspi/atspi-constants.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <deque>
#include <optional>
#include <utility>

#include "platform/linux/freedesktop/Files.h"

namespace atspi {

namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* application = "org.a11y.atspi.Application";
constexpr const char* component = "org.a11y.atspi.Component";

/// A title bar is at the top and holds little; a window's content can be endless. These bounds keep to the former.
constexpr std::size_t widest = 64;
constexpr int deepest = 24;
constexpr int mostContainers = 100;
/// How far below the frame's edge a part of the title bar may begin, in the toolkit's units.
constexpr double titleBarBand = 40;
constexpr std::size_t mostLanguages = 32;

/// Where the message catalogues are; the second is where some distributions put what their language packs bring.
const std::vector<std::string>& catalogFolders() {
  static const std::vector<std::string> folders = {"/usr/share/locale", "/usr/share/locale-langpack"};
  return folders;
}

/// What can hold a title bar or be part of one. Everything else is not looked into: a list can have a million rows.
bool isContainer(AtspiRole role) {
  constexpr std::array roles = {ATSPI_ROLE_PANEL,       ATSPI_ROLE_FILLER,        ATSPI_ROLE_GROUPING,
                                ATSPI_ROLE_TOOL_BAR,    ATSPI_ROLE_SPLIT_PANE,    ATSPI_ROLE_LAYERED_PANE,
                                ATSPI_ROLE_UNKNOWN,     ATSPI_ROLE_SECTION,       ATSPI_ROLE_HEADER,
                                ATSPI_ROLE_SCROLL_PANE, ATSPI_ROLE_ROOT_PANE,     ATSPI_ROLE_LANDMARK,
                                ATSPI_ROLE_TITLE_BAR,   ATSPI_ROLE_GLASS_PANE,    ATSPI_ROLE_EXTENDED,
                                ATSPI_ROLE_OPTION_PANE, ATSPI_ROLE_INTERNAL_FRAME};
  return std::ranges::find(roles, role) != roles.end();
}

Task<std::vector<Address>> children(const AccessibilityBus& bus, const Address& parent) {
  std::vector<Address> found;
  const auto reply = co_await bus.call(parent, accessible, "GetChildren", nullptr, "(a(so))");
  if (!reply) co_return found;
  const Variant list(g_variant_get_child_value(reply.get(), 0));
  const std::size_t count = std::min<std::size_t>(g_variant_n_children(list.get()), widest);
  for (std::size_t i = 0; i < count; ++i) {
    const char* name = nullptr;
    const char* path = nullptr;
    g_variant_get_child(list.get(), i, "(&s&o)", &name, &path);
    found.push_back({name, path});
  }
  co_return found;
}

Task<AtspiRole> role(const AccessibilityBus& bus, const Address& object) {
  const auto reply = co_await bus.call(object, accessible, "GetRole", nullptr, "(u)");
  guint32 number = ATSPI_ROLE_INVALID;
  if (reply) g_variant_get(reply.get(), "(u)", &number);
  co_return static_cast<AtspiRole>(number);
}

Task<guint32> states(const AccessibilityBus& bus, const Address& object) {
  const auto reply = co_await bus.call(object, accessible, "GetState", nullptr, "(au)");
  if (!reply) co_return 0u;
  const Variant words(g_variant_get_child_value(reply.get(), 0));
  guint32 first = 0;
  if (g_variant_n_children(words.get()) > 0) g_variant_get_child(words.get(), 0, "u", &first);
  co_return first;
}

bool has(guint32 states, AtspiStateType state) { return (states >> state & 1u) != 0; }

/// In the coordinates of the toplevel: those are right in every toolkit and stay right while the window is moved.
Task<std::optional<CGRect>> extents(const AccessibilityBus& bus, const Address& object) {
  const auto reply = co_await bus.call(object, component, "GetExtents",
                                       g_variant_new("(u)", static_cast<guint32>(ATSPI_COORD_TYPE_WINDOW)), "((iiii))");
  if (!reply) co_return std::nullopt;
  gint32 x = 0;
  gint32 y = 0;
  gint32 width = 0;
  gint32 height = 0;
  g_variant_get(reply.get(), "((iiii))", &x, &y, &width, &height);
  co_return CGRectMake(x, y, width, height);
}

/// None for toolkits whose title bars we do not know.
Task<std::optional<Toolkit>> toolkit(const AccessibilityBus& bus, const Address& root) {
  const auto name = co_await bus.text(root, application, "ToolkitName");
  const auto version = co_await bus.text(root, application, "Version");
  if (name != "gtk" && name != "GTK") co_return std::nullopt;
  if (version.starts_with("3.")) co_return Toolkit::Gtk3;
  if (!version.starts_with("4.")) co_return std::nullopt;
  int minor = 0;
  std::from_chars(version.data() + 2, version.data() + version.size(), minor);
  co_return minor < 10 ? Toolkit::Gtk4 : Toolkit::Gtk4Nested;
}

struct Toplevel {
  Address object;
  CGRect rect;
  Placement where;
};

/// The window among an application's toplevels: of its size and, when several are, of its title.
Task<std::optional<Toplevel>> toplevel(const AccessibilityBus& bus, const Address& root, Toolkit kind,
                                       const Window& window) {
  std::vector<Toplevel> fitting;
  const auto candidates = co_await children(bus, root);
  for (const auto& candidate : candidates) {
    const auto rect = co_await extents(bus, candidate);
    if (!rect) continue;
    if (const auto where = placement(kind, window, rect->size)) fitting.push_back({candidate, *rect, *where});
  }
  if (fitting.empty()) co_return std::nullopt;
  if (fitting.size() > 1) {
    for (const auto& one : fitting) {
      const auto title = co_await bus.text(one.object, accessible, "Name");
      if (title == window.title) co_return one;
    }
  }
  co_return fitting.front();
}

/// Whether the application made the push button itself; the title buttons are neither reached with the keyboard (GTK 3)
/// nor labelled (GTK 4). Nothing else tells them from a button that happens to be called "Close".
Task<bool> isApplicationsOwn(const AccessibilityBus& bus, const Address& button, guint32 state, Toolkit kind) {
  if (kind == Toolkit::Gtk3) co_return has(state, ATSPI_STATE_FOCUSABLE);
  const auto parts = co_await children(bus, button);
  for (const auto& part : parts) {
    if (co_await role(bus, part) == ATSPI_ROLE_LABEL) co_return true;
  }
  co_return false;
}

/// A hidden title bar keeps its place in the tree, be it that of a full-screen window or one of a stack's other pages.
Task<bool> isShown(const AccessibilityBus& bus, const Address& button, guint32 state, CGRect rect, Toolkit kind) {
  if (!has(state, ATSPI_STATE_VISIBLE)) co_return false;
  // Since 4.10 what is hidden is not in the tree.
  if (kind == Toolkit::Gtk4Nested) co_return true;
  if (kind == Toolkit::Gtk3) co_return has(state, ATSPI_STATE_SHOWING);
  // GTK 4 said "showing" of windows only, but something hidden contained no point.
  const auto x = static_cast<gint32>(rect.origin.x + rect.size.width / 2);
  const auto y = static_cast<gint32>(rect.origin.y + rect.size.height / 2);
  const auto reply =
      co_await bus.call(button, component, "Contains",
                        g_variant_new("(iiu)", x, y, static_cast<guint32>(ATSPI_COORD_TYPE_WINDOW)), "(b)");
  gboolean contains = FALSE;
  if (reply) g_variant_get(reply.get(), "(b)", &contains);
  co_return contains != FALSE;
}

bool isInTitleBar(CGRect rect, const Placement& where) {
  const double top = rect.origin.y + where.offset.y / where.scale;
  return rect.size.width > 0 && rect.size.height > 0 && top < titleBarBand && top + rect.size.height > 0;
}

struct Member {
  Address object;
  AtspiRole role = ATSPI_ROLE_INVALID;
  std::optional<CGRect> rect;
};

/// With the rectangles of those that matter: buttons and containers, and all when their parent's padding is to be told.
Task<std::vector<Member>> membersOf(const AccessibilityBus& bus, const Address& container, Toolkit kind) {
  std::vector<Member> members;
  const auto objects = co_await children(bus, container);
  for (const auto& object : objects) {
    // g++ 12 destroys parts of an aggregate twice when it is made of what a coroutine awaits.
    Member member;
    member.object = object;
    member.role = co_await role(bus, object);
    if (kind == Toolkit::Gtk4Nested || member.role == ATSPI_ROLE_PUSH_BUTTON || isContainer(member.role))
      member.rect = co_await extents(bus, object);
    members.push_back(std::move(member));
  }
  co_return members;
}

std::vector<CGRect> rectsOf(const std::vector<Member>& members) {
  std::vector<CGRect> rects;
  for (const Member& member : members)
    if (member.rect) rects.push_back(*member.rect);
  return rects;
}

/// The push buttons at the window's top, by their parents.
Task<std::vector<ButtonGroup>> buttonGroups(const AccessibilityBus& bus, const Toplevel& window, Toolkit kind) {
  struct Container {
    Address object;
    int depth = 0;
    CGRect rect{};
    /// What its own rectangle and, once it was looked into, those of its children are to be moved by.
    CGPoint shift{};
    bool isStretched = true;
  };
  const auto moved = [](CGRect rect, CGPoint by) {
    return CGRectMake(rect.origin.x + by.x, rect.origin.y + by.y, rect.size.width, rect.size.height);
  };
  std::vector<ButtonGroup> groups;
  std::deque<Container> queue = {{window.object, 0, window.rect}};
  for (int visited = 0; !queue.empty() && visited < mostContainers; ++visited) {
    const Container container = std::move(queue.front());
    queue.pop_front();
    const auto members = co_await membersOf(bus, container.object, kind);
    CGPoint shift = container.shift;
    CGSize content = container.rect.size;
    if (kind == Toolkit::Gtk4Nested && container.isStretched) {
      CGPoint inset = contentInset(container.rect, rectsOf(members));
      // A window counts its own place from its content.
      if (container.depth == 0) {
        inset = CGPointMake(-container.rect.origin.x, -container.rect.origin.y);
        shift = inset;
      }
      shift = CGPointMake(shift.x + inset.x, shift.y + inset.y);
      content.width -= 2 * inset.x;
    }
    ButtonGroup group;
    for (const Member& member : members) {
      if (isContainer(member.role)) group.mixed = true;
      if (!member.rect) continue;
      const CGRect rect = moved(*member.rect, shift);
      if (!isInTitleBar(rect, window.where)) continue;
      if (member.role == ATSPI_ROLE_PUSH_BUTTON) {
        const auto state = co_await states(bus, member.object);
        if (!co_await isShown(bus, member.object, state, *member.rect, kind)) continue;
        group.mixed = group.mixed || co_await isApplicationsOwn(bus, member.object, state, kind);
        auto name = co_await bus.text(member.object, accessible, "Name");
        group.buttons.push_back({std::move(name), rect, has(state, ATSPI_STATE_SENSITIVE)});
      } else if (isContainer(member.role) && container.depth < deepest) {
        queue.push_back({member.object, container.depth + 1, *member.rect, shift,
                         container.isStretched && isStretched(*member.rect, content)});
      }
    }
    if (!group.buttons.empty()) groups.push_back(std::move(group));
  }
  co_return groups;
}

/// LANGUAGE goes before the locale, and an application does not tell it.
std::string languageOf(pid_t pid) {
  constexpr std::string_view name = "LANGUAGE=";
  constexpr std::size_t largestEnvironment = 2u << 20;
  const auto file = freedesktop::readFile("/proc/" + std::to_string(pid) + "/environ", largestEnvironment);
  std::string_view rest = file.text;
  while (!rest.empty()) {
    const auto entry = rest.substr(0, rest.find('\0'));
    if (entry.starts_with(name)) return std::string(entry.substr(name.size()));
    rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
  }
  return "";
}

}  // namespace

TitleBarLookup::TitleBarLookup(std::string decorationLayout) : decorationLayout_(std::move(decorationLayout)) {}

Task<std::vector<TitleBarButton>> TitleBarLookup::find(const AccessibilityBus& bus, Window window) {
  std::vector<TitleBarButton> buttons;
  const auto candidates = co_await applications(bus, window.pid);
  for (const auto& candidate : candidates) {
    buttons = co_await findIn(bus, candidate, window);
    if (!buttons.empty()) break;
  }
  co_return buttons;
}

/// A process may have several connections, and the registry names only the connections that show something.
Task<std::vector<Address>> TitleBarLookup::applications(const AccessibilityBus& bus, pid_t pid) {
  const Address registry{"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};
  const Address daemon{"org.freedesktop.DBus", "/org/freedesktop/DBus"};
  const auto reply = co_await bus.call(registry, accessible, "GetChildren", nullptr, "(a(so))");
  std::vector<Address> found;
  if (!reply) co_return found;
  std::map<std::string, pid_t> present;
  const Variant list(g_variant_get_child_value(reply.get(), 0));
  for (std::size_t i = 0; i < g_variant_n_children(list.get()); ++i) {
    const char* name = nullptr;
    const char* path = nullptr;
    g_variant_get_child(list.get(), i, "(&s&o)", &name, &path);
    const Address object{name, path};
    const auto known = processes_.find(object.name);
    guint32 process = 0;
    if (known != processes_.end()) {
      process = static_cast<guint32>(known->second);
    } else {
      // The bus itself answers this, whatever the application is doing.
      const auto answer = co_await bus.call(daemon, "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                                            g_variant_new("(s)", object.name.c_str()), "(u)");
      if (!answer) continue;
      g_variant_get(answer.get(), "(u)", &process);
    }
    present[object.name] = static_cast<pid_t>(process);
    if (static_cast<pid_t>(process) == pid) found.push_back(object);
  }
  processes_ = std::move(present);
  co_return found;
}

Task<std::vector<TitleBarButton>> TitleBarLookup::findIn(const AccessibilityBus& bus, const Address& root,
                                                         const Window& window) {
  const auto kind = co_await toolkit(bus, root);
  if (!kind) co_return {};
  const auto found = co_await toplevel(bus, root, *kind, window);
  if (!found) co_return {};
  const auto groups = co_await buttonGroups(bus, *found, *kind);
  if (groups.empty()) co_return {};
  const auto locale = co_await bus.text(root, accessible, "Locale");
  co_return titleBarButtons(groups, names(*kind, locale, window.pid), decorationLayout_, *kind, window, found->where);
}

const ButtonNames& TitleBarLookup::names(Toolkit toolkit, const std::string& locale, pid_t pid) {
  const std::string domain = toolkit == Toolkit::Gtk3 ? "gtk30" : "gtk40";
  const auto languages = messageLanguages(locale, languageOf(pid));
  // Whether LANGUAGE counts for "C.UTF-8" depends on the C library: glibc 2.36 translates, 2.41 does not.
  const bool maybeUntranslated = locale.starts_with("C.");
  std::string key = maybeUntranslated ? domain + ":C" : domain;
  for (const auto& language : languages) key += ":" + language;
  auto known = names_.find(key);
  // Nobody runs applications in so many languages; one that claims to costs no more memory than this.
  if (known == names_.end() && names_.size() >= mostLanguages) names_.clear();
  if (known == names_.end()) {
    known = names_.emplace(key, ButtonNames::load(domain, languages, catalogFolders())).first;
    if (maybeUntranslated) known->second.addUntranslated();
  }
  return known->second;
}

}  // namespace atspi
