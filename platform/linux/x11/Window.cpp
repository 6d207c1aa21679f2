#include "platform/linux/x11/Window.h"

#include <xcb/res.h>

#include <algorithm>
#include <span>
#include <vector>

#include "platform/linux/x11/Properties.h"

namespace x11 {

namespace {

// _MOTIF_WM_HINTS: flags, functions, decorations, …
constexpr std::uint32_t motifHasFunctions = 1;
constexpr std::uint32_t motifHasDecorations = 2;
// In functions and decorations alike, bit 0 turns the meaning of all others round.
constexpr std::uint32_t motifAll = 1;
constexpr std::uint32_t motifFunctionMinimize = 8;
constexpr std::uint32_t motifDecorationMinimize = 32;

bool motifAllows(std::uint32_t bits, std::uint32_t bit) { return ((bits & motifAll) != 0) != ((bits & bit) != 0); }

Extents extentsFrom(const std::vector<std::uint32_t>& items) {
  if (items.size() < 4) return {};
  // Decorations beyond any screen are somebody's garbage, and would overflow the arithmetic.
  if (std::any_of(items.begin(), items.begin() + 4, [](std::uint32_t item) { return item > 0x7fff; })) return {};
  return {static_cast<int>(items[0]), static_cast<int>(items[1]), static_cast<int>(items[2]),
          static_cast<int>(items[3])};
}

bool contains(const std::vector<std::uint32_t>& items, std::uint32_t item) {
  return std::find(items.begin(), items.end(), item) != items.end();
}

/// What the frame window has around the client, invisible borders included.
Extents extentsInFrame(const Connection& connection, xcb_window_t client, const Rect& size) {
  const auto frame = rootChildOf(connection, client);
  if (!frame || *frame == client) return {};
  const auto offsetCookie = xcb_translate_coordinates(connection.get(), client, *frame, 0, 0);
  const auto outer = connection.reply(xcb_get_geometry_reply, xcb_get_geometry(connection.get(), *frame));
  const auto offset = connection.reply(xcb_translate_coordinates_reply, offsetCookie);
  if (!outer || !offset) return {};
  const int border = outer->border_width;
  const auto extent = [border](int inside) { return std::max(border + inside, 0); };
  return {extent(offset->dst_x), extent(outer->width - offset->dst_x - size.width), extent(offset->dst_y),
          extent(outer->height - offset->dst_y - size.height)};
}

std::optional<pid_t> processKnownToServer(const Connection& connection, xcb_window_t window) {
  const xcb_res_client_id_spec_t asked{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
  const auto reply =
      connection.reply(xcb_res_query_client_ids_reply, xcb_res_query_client_ids(connection.get(), 1, &asked));
  if (!reply) return std::nullopt;
  for (auto ids = xcb_res_query_client_ids_ids_iterator(reply.get()); ids.rem > 0; xcb_res_client_id_value_next(&ids)) {
    const auto& [kind, length] = *ids.data;
    if ((kind.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
        xcb_res_client_id_value_value_length(ids.data) > 0) {
      return static_cast<pid_t>(*xcb_res_client_id_value_value(ids.data));
    }
  }
  return std::nullopt;
}

}  // namespace

MinimizeButton WindowProperties::minimizeButton() const {
  if (isTransient || !isNormalType || !decorationHasMinimize) return MinimizeButton::Missing;
  return functionsHaveMinimize && minimizeIsAllowed.value_or(true) ? MinimizeButton::Enabled : MinimizeButton::Disabled;
}

GeometryRequest::GeometryRequest(const Connection& connection, const Atoms& atoms, xcb_window_t client)
    : connection_(connection),
      atoms_(atoms),
      client_(client),
      size_(xcb_get_geometry(connection.get(), client)),
      position_(xcb_translate_coordinates(connection.get(), client, connection.root(), 0, 0)),
      decoration_(requestProperty(connection, client, atoms.netFrameExtents)),
      shadow_(requestProperty(connection, client, atoms.gtkFrameExtents)),
      state_(requestProperty(connection, client, atoms.netWmState)) {}

std::optional<WindowGeometry> GeometryRequest::receive() {
  const auto size = connection_.reply(xcb_get_geometry_reply, size_);
  const auto position = connection_.reply(xcb_translate_coordinates_reply, position_);
  WindowGeometry geometry;
  const std::vector<std::uint32_t> decoration = propertyItems(receiveProperty(connection_, decoration_));
  const std::vector<std::uint32_t> shadow = propertyItems(receiveProperty(connection_, shadow_));
  geometry.shadow = extentsFrom(shadow);
  geometry.drawsShadow = !shadow.empty();
  const std::vector<std::uint32_t> states = propertyItems(receiveProperty(connection_, state_));
  if (!size || !position) return std::nullopt;
  geometry.client = {position->dst_x, position->dst_y, size->width, size->height};
  // Fluxbox tells none of the tabs but the first, even when that has been closed.
  geometry.decoration =
      decoration.empty() ? extentsInFrame(connection_, client_, geometry.client) : extentsFrom(decoration);
  geometry.maximizedHorizontally = contains(states, atoms_.netWmStateMaximizedHorz);
  geometry.maximizedVertically = contains(states, atoms_.netWmStateMaximizedVert);
  geometry.fullscreen = contains(states, atoms_.netWmStateFullscreen);
  geometry.shaded = contains(states, atoms_.netWmStateShaded);
  return geometry;
}

PropertiesRequest::PropertiesRequest(const Connection& connection, const Atoms& atoms, xcb_window_t client)
    : connection_(connection),
      atoms_(atoms),
      wmState_(requestProperty(connection, client, atoms.wmState)),
      netWmState_(requestProperty(connection, client, atoms.netWmState)),
      transientFor_(requestProperty(connection, client, XCB_ATOM_WM_TRANSIENT_FOR)),
      type_(requestProperty(connection, client, atoms.netWmWindowType)),
      workspace_(requestProperty(connection, client, atoms.netWmDesktop)),
      motif_(requestProperty(connection, client, atoms.motifWmHints)),
      allowed_(requestProperty(connection, client, atoms.netWmAllowedActions)),
      class_(requestProperty(connection, client, XCB_ATOM_WM_CLASS, 256)),
      gtkApplicationId_(requestProperty(connection, client, atoms.gtkApplicationId, 256)),
      title_(requestProperty(connection, client, atoms.netWmName, 256)) {}

WindowProperties PropertiesRequest::receive() {
  WindowProperties properties;
  if (const auto state = propertyItems(receiveProperty(connection_, wmState_)); !state.empty()) {
    properties.wmState = state[0];
  }
  properties.isHidden = contains(propertyItems(receiveProperty(connection_, netWmState_)), atoms_.netWmStateHidden);
  // A window that is transient for none or for the root is so for its whole group.
  properties.isTransient = !propertyItems(receiveProperty(connection_, transientFor_)).empty();
  const auto types = propertyItems(receiveProperty(connection_, type_));
  properties.isNormalType = types.empty() || contains(types, atoms_.netWmWindowTypeNormal);
  properties.isFurniture =
      contains(types, atoms_.netWmWindowTypeDesktop) || contains(types, atoms_.netWmWindowTypeDock);
  if (const auto workspace = propertyItems(receiveProperty(connection_, workspace_)); !workspace.empty()) {
    properties.workspace = workspace[0];
  }
  if (const auto motif = propertyItems(receiveProperty(connection_, motif_)); motif.size() >= 3) {
    if ((motif[0] & motifHasFunctions) != 0) {
      properties.functionsHaveMinimize = motifAllows(motif[1], motifFunctionMinimize);
    }
    if ((motif[0] & motifHasDecorations) != 0) {
      properties.isDecorated = motif[2] != 0;
      // Toolkits draw their own buttons in a window without decoration.
      properties.decorationHasMinimize = motif[2] == 0 || motifAllows(motif[2], motifDecorationMinimize);
    }
  }
  if (const auto allowed = receiveProperty(connection_, allowed_); allowed && allowed->format == 32) {
    const auto actions = propertyItems(allowed);
    properties.minimizeIsAllowed = contains(actions, atoms_.netWmActionMinimize);
    properties.maximizeIsAllowed =
        contains(actions, atoms_.netWmActionMaximizeHorz) && contains(actions, atoms_.netWmActionMaximizeVert);
    properties.closeIsAllowed = contains(actions, atoms_.netWmActionClose);
  }
  const std::string names = propertyText(receiveProperty(connection_, class_));
  const std::size_t end = std::min(names.find('\0'), names.size());
  properties.windowInstance = names.substr(0, end);
  if (end < names.size()) properties.windowClass = names.substr(end + 1, names.find('\0', end + 1) - end - 1);
  properties.gtkApplicationId = propertyText(receiveProperty(connection_, gtkApplicationId_));
  properties.title = propertyText(receiveProperty(connection_, title_));
  return properties;
}

pid_t processOfWindow(const Connection& connection, const Atoms& atoms, xcb_window_t window) {
  const auto claimed = requestProperty(connection, window, atoms.netWmPid);
  const auto known = connection.has(xcb_res_id) ? processKnownToServer(connection, window) : std::nullopt;
  const auto claim = propertyItems(receiveProperty(connection, claimed));
  return known.value_or(claim.empty() ? 0 : static_cast<pid_t>(claim[0]));
}

std::optional<xcb_window_t> rootChildOf(const Connection& connection, xcb_window_t window) {
  constexpr int mostMoves = 100;
  int moves = 0;
  for (xcb_window_t current = window;;) {
    const auto tree = connection.reply(xcb_query_tree_reply, xcb_query_tree(connection.get(), current));
    if (tree && tree->parent == connection.root()) return current;
    if (tree && tree->parent != XCB_WINDOW_NONE) {
      current = tree->parent;
    } else if (current != window && ++moves < mostMoves) {
      current = window;  // a parent that goes between two questions has given the window to another one first
    } else {
      return std::nullopt;
    }
  }
}

xcb_window_t visibleAmong(const Connection& connection, const std::vector<xcb_window_t>& clients) {
  std::vector<xcb_window_t> mapped;
  for (const xcb_window_t client : clients) {
    const auto attributes =
        connection.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(connection.get(), client));
    if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) mapped.push_back(client);
  }
  if (mapped.empty()) return clients.front();
  if (mapped.size() == 1) return mapped.front();
  const auto own = connection.reply(xcb_query_tree_reply, xcb_query_tree(connection.get(), mapped.front()));
  const auto tree =
      own ? connection.reply(xcb_query_tree_reply, xcb_query_tree(connection.get(), own->parent)) : nullptr;
  if (!tree) return mapped.front();
  const std::span children(xcb_query_tree_children(tree.get()),
                           static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
  // The topmost is the last.
  const auto top = std::find_first_of(children.rbegin(), children.rend(), mapped.begin(), mapped.end());
  return top == children.rend() ? mapped.front() : *top;
}

std::vector<xcb_window_t> stackingOrder(const Connection& connection, const Atoms& atoms) {
  return readItems(connection, connection.root(), atoms.netClientListStacking);
}

}  // namespace x11
