#include "platform/linux/x11/MonitorSources.h"

#include <xcb/randr.h>
#include <xcb/xinerama.h>

#include <utility>

namespace x11 {
namespace {

std::vector<std::uint8_t> readEdid(Connection& connection, xcb_randr_output_t output) {
  constexpr std::uint32_t words = 32;  // the first block
  const auto reply = connection.reply(
      xcb_randr_get_output_property_reply,
      xcb_randr_get_output_property(connection.get(), output, connection.atom("EDID"), XCB_ATOM_ANY, 0, words, 0, 0));
  if (!reply || reply->format != 8) return {};
  const std::uint8_t* data = xcb_randr_get_output_property_data(reply.get());
  return {data, data + xcb_randr_get_output_property_data_length(reply.get())};
}

/// All members of `place` but the names differ in nothing between the protocols.
template <typename Place>
ListedMonitor placed(const Place& place) {
  return {.connector = {},
          .x = place.x,
          .y = place.y,
          .width = place.width,
          .height = place.height,
          .primary = false,
          .edid = {}};
}

std::vector<ListedMonitor> monitors(Connection& connection) {
  xcb_connection_t* const server = connection.get();
  std::vector<ListedMonitor> listed;
  const auto reply =
      connection.reply(xcb_randr_get_monitors_reply, xcb_randr_get_monitors(server, connection.root(), 1));
  if (!reply) return listed;
  for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0; xcb_randr_monitor_info_next(&it)) {
    ListedMonitor monitor = placed(*it.data);
    monitor.primary = it.data->primary != 0;
    if (const auto name = connection.reply(xcb_get_atom_name_reply, xcb_get_atom_name(server, it.data->name))) {
      monitor.connector.assign(xcb_get_atom_name_name(name.get()),
                               static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())));
    }
    // A monitor of several tiles has several outputs with the same identification.
    const xcb_randr_output_t* outputs = xcb_randr_monitor_info_outputs(it.data);
    for (int i = 0; i < xcb_randr_monitor_info_outputs_length(it.data) && monitor.edid.empty(); ++i) {
      monitor.edid = readEdid(connection, outputs[i]);
    }
    listed.push_back(std::move(monitor));
  }
  return listed;
}

std::vector<ListedMonitor> outputs(Connection& connection) {
  xcb_connection_t* const server = connection.get();
  std::vector<ListedMonitor> listed;
  const auto resources = connection.reply(xcb_randr_get_screen_resources_current_reply,
                                          xcb_randr_get_screen_resources_current(server, connection.root()));
  const auto primary =
      connection.reply(xcb_randr_get_output_primary_reply, xcb_randr_get_output_primary(server, connection.root()));
  if (!resources) return listed;
  const xcb_randr_output_t* all = xcb_randr_get_screen_resources_current_outputs(resources.get());
  for (int i = 0; i < xcb_randr_get_screen_resources_current_outputs_length(resources.get()); ++i) {
    const auto output = connection.reply(xcb_randr_get_output_info_reply,
                                         xcb_randr_get_output_info(server, all[i], resources->config_timestamp));
    if (!output || output->crtc == XCB_NONE) continue;  // nothing is shown there
    const auto crtc = connection.reply(xcb_randr_get_crtc_info_reply,
                                       xcb_randr_get_crtc_info(server, output->crtc, resources->config_timestamp));
    if (!crtc) continue;
    ListedMonitor monitor = placed(*crtc);
    monitor.connector.assign(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(output.get())),
                             static_cast<std::size_t>(xcb_randr_get_output_info_name_length(output.get())));
    monitor.primary = primary && primary->output == all[i];
    monitor.edid = readEdid(connection, all[i]);
    listed.push_back(std::move(monitor));
  }
  return listed;
}

std::vector<ListedMonitor> heads(Connection& connection) {
  std::vector<ListedMonitor> listed;
  const auto reply = connection.reply(xcb_xinerama_query_screens_reply, xcb_xinerama_query_screens(connection.get()));
  if (!reply) return listed;
  for (auto it = xcb_xinerama_query_screens_screen_info_iterator(reply.get()); it.rem > 0;
       xcb_xinerama_screen_info_next(&it)) {
    listed.push_back({.connector = "Display-" + std::to_string(listed.size() + 1),
                      .x = it.data->x_org,
                      .y = it.data->y_org,
                      .width = it.data->width,
                      .height = it.data->height,
                      .primary = listed.empty(),  // they come in that order
                      .edid = {}});
  }
  return listed;
}

std::vector<ListedMonitor> screen(const Connection& connection) {
  const auto reply = connection.reply(xcb_get_geometry_reply, xcb_get_geometry(connection.get(), connection.root()));
  if (!reply) return {};
  ListedMonitor monitor = placed(*reply);
  monitor.connector = "Display";
  monitor.primary = true;
  return {monitor};
}

}  // namespace

MonitorSource bestMonitorSource(const Connection& connection) {
  xcb_connection_t* const server = connection.get();
  if (connection.has(xcb_randr_id)) {
    const auto version = connection.reply(xcb_randr_query_version_reply, xcb_randr_query_version(server, 1, 5));
    const auto isAtLeast = [&](std::uint32_t minor) {
      return version && std::pair(version->major_version, version->minor_version) >= std::pair(1U, minor);
    };
    if (isAtLeast(5)) return MonitorSource::Monitors;
    if (isAtLeast(3)) return MonitorSource::Outputs;
  }
  if (!connection.has(xcb_xinerama_id)) return MonitorSource::Screen;
  const auto active = connection.reply(xcb_xinerama_is_active_reply, xcb_xinerama_is_active(server));
  return active && active->state != 0 ? MonitorSource::Xinerama : MonitorSource::Screen;
}

std::vector<ListedMonitor> listMonitors(Connection& connection, MonitorSource source) {
  switch (source) {
    case MonitorSource::Monitors:
      return monitors(connection);
    case MonitorSource::Outputs:
      return outputs(connection);
    case MonitorSource::Xinerama:
      return heads(connection);
    case MonitorSource::Screen:
      break;
  }
  return screen(connection);
}

}  // namespace x11
