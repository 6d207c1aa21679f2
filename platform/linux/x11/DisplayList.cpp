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

DisplayList::DisplayList(Connection& connection) : connection_(connection) {
  xcb_connection_t* const server = connection_.get();
  const xcb_query_extension_reply_t* randr = xcb_get_extension_data(server, &xcb_randr_id);
  if (randr == nullptr || randr->present == 0) return;
  const auto version = connection_.reply(xcb_randr_query_version_reply, xcb_randr_query_version(server, 1, 5));
  if (!version || std::pair(version->major_version, version->minor_version) < std::pair(1U, 5U)) return;
  firstRandrEvent_ = randr->first_event;
  xcb_randr_select_input(server, connection_.root(),
                         XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                             XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY);
  connection_.flush();
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
  if (stale_) {
    monitors_ = monitorsFromList(readList());
    stale_ = monitors_.empty();
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

std::vector<ListedMonitor> DisplayList::readList() const {
  xcb_connection_t* const server = connection_.get();
  const xcb_window_t root = connection_.root();
  std::vector<ListedMonitor> listed;
  if (!firstRandrEvent_) {
    if (const auto size = connection_.reply(xcb_get_geometry_reply, xcb_get_geometry(server, root))) {
      listed.push_back(
          {.connector = "Display", .width = size->width, .height = size->height, .primary = true, .edid = {}});
    }
    return listed;
  }
  const auto reply = connection_.reply(xcb_randr_get_monitors_reply, xcb_randr_get_monitors(server, root, 1));
  if (!reply) return listed;
  for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0; xcb_randr_monitor_info_next(&it)) {
    ListedMonitor monitor{.connector = {},
                          .x = it.data->x,
                          .y = it.data->y,
                          .width = it.data->width,
                          .height = it.data->height,
                          .primary = it.data->primary != 0,
                          .edid = {}};
    if (const auto name = connection_.reply(xcb_get_atom_name_reply, xcb_get_atom_name(server, it.data->name))) {
      monitor.connector.assign(xcb_get_atom_name_name(name.get()),
                               static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())));
    }
    // A monitor of several tiles has several outputs with the same identification.
    const xcb_randr_output_t* outputs = xcb_randr_monitor_info_outputs(it.data);
    for (int i = 0; i < xcb_randr_monitor_info_outputs_length(it.data) && monitor.edid.empty(); ++i) {
      monitor.edid = readEdid(outputs[i]);
    }
    listed.push_back(std::move(monitor));
  }
  return listed;
}

std::vector<std::uint8_t> DisplayList::readEdid(std::uint32_t output) const {
  constexpr std::uint32_t words = 32;  // the first block
  const auto reply = connection_.reply(
      xcb_randr_get_output_property_reply,
      xcb_randr_get_output_property(connection_.get(), output, connection_.atom("EDID"), XCB_ATOM_ANY, 0, words, 0, 0));
  if (!reply || reply->format != 8) return {};
  const std::uint8_t* data = xcb_randr_get_output_property_data(reply.get());
  return {data, data + xcb_randr_get_output_property_data_length(reply.get())};
}

}  // namespace x11
