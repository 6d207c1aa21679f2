#include "platform/linux/x11/DisplayList.h"

#include <xcb/randr.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/linux/x11/Edid.h"
#include "platform/linux/x11/NameHash.h"

namespace x11 {
namespace {

/// "DP-1-2" as "DisplayPort 1-2"; the connectors of built-in panels as what they are.
std::string readableConnector(std::string_view connector) {
  for (const std::string_view builtIn : {"eDP", "LVDS", "DSI"}) {
    if (connector.starts_with(builtIn)) return "Built-in Display";
  }
  std::string name(connector);
  if (name.starts_with("DP-")) name.replace(0, 2, "DisplayPort");
  if (const auto dash = name.find('-'); dash != std::string::npos) name[dash] = ' ';
  return name.empty() ? "Display" : name;
}

bool isSameRectangle(const ListedMonitor& one, const ListedMonitor& other) {
  return one.x == other.x && one.y == other.y && one.width == other.width && one.height == other.height;
}

}  // namespace

std::vector<Monitor> monitorsFromList(std::vector<ListedMonitor> listed) {
  std::erase_if(listed, [](const ListedMonitor& monitor) { return monitor.width == 0 || monitor.height == 0; });
  const auto byPrimary = [](const ListedMonitor& monitor) { return monitor.primary; };
  auto main = std::find_if(listed.begin(), listed.end(), byPrimary);
  if (main == listed.end()) {
    main = std::find_if(listed.begin(), listed.end(),
                        [](const auto& monitor) { return monitor.x == 0 && monitor.y == 0; });
  }
  if (main != listed.end()) std::rotate(listed.begin(), main, std::next(main));

  std::vector<Monitor> monitors;
  for (auto one = listed.begin(); one != listed.end(); ++one) {
    if (std::any_of(listed.begin(), one, [&](const auto& earlier) { return isSameRectangle(earlier, *one); })) continue;
    Monitor monitor;
    monitor.connector = one->connector;
    const Edid edid = parseEdid(one->edid).value_or(Edid{});
    monitor.localizedName = edid.name.empty() ? readableConnector(one->connector) : edid.name;
    monitor.display = {.bounds = CGRectMake(one->x, one->y, one->width, one->height),
                       .isMain = monitors.empty(),
                       .vendor = edid.vendor,
                       .model = edid.model,
                       .serial = edid.serial};
    monitor.identifier = nameHash(one->connector);
    const auto isTaken = [&](const Monitor& other) { return other.identifier == monitor.identifier; };
    while (monitor.identifier == 0 || std::any_of(monitors.begin(), monitors.end(), isTaken)) ++monitor.identifier;
    monitors.push_back(std::move(monitor));
  }
  return monitors;
}

DisplayList::DisplayList(Connection& connection, const Connection& events)
    : connection_(connection), source_(bestMonitorSource(connection)) {
  if (source_ < MonitorSource::Outputs) return;
  xcb_connection_t* const server = events.get();
  firstRandrEvent_ = xcb_get_extension_data(server, &xcb_randr_id)->first_event;
  xcb_randr_select_input(server, connection_.root(),
                         XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                             XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY);
  events.flush();
}

bool DisplayList::handleEvent(const xcb_generic_event_t& event) {
  const int type = event.response_type & 0x7F;
  const bool isRandrs = firstRandrEvent_ && (type == *firstRandrEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                                             type == *firstRandrEvent_ + XCB_RANDR_NOTIFY);
  const bool isRoots = type == XCB_CONFIGURE_NOTIFY &&
                       reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == connection_.root();
  if (isRandrs || isRoots) stale_ = true;
  return isRandrs || isRoots;
}

const std::vector<Monitor>& DisplayList::monitors() {
  if (stale_.exchange(false)) {
    monitors_ = monitorsFromList(listMonitors(connection_, source_));
    if (monitors_.empty()) stale_ = true;
  }
  return monitors_;
}

const Monitor* DisplayList::monitor(CGDirectDisplayID identifier) {
  const std::vector<Monitor>& all = monitors();
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.identifier == identifier; });
  return found == all.end() ? nullptr : &*found;
}

std::vector<CGDirectDisplayID> DisplayList::activeDisplays() {
  std::vector<CGDirectDisplayID> identifiers;
  for (const Monitor& monitor : monitors()) identifiers.push_back(monitor.identifier);
  return identifiers;
}

std::vector<desktop::Screen> DisplayList::screens() {
  std::vector<desktop::Screen> screens;
  for (const Monitor& monitor : monitors()) {
    screens.push_back(
        {.number = ns::PropertyList{std::int64_t{monitor.identifier}}, .localizedName = monitor.localizedName});
  }
  return screens;
}

}  // namespace x11
