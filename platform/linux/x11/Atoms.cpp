#include "platform/linux/x11/Atoms.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace x11 {

namespace {

constexpr std::pair<xcb_atom_t Atoms::*, std::string_view> names[] = {
    {&Atoms::gtkApplicationId, "_GTK_APPLICATION_ID"},
    {&Atoms::gtkFrameExtents, "_GTK_FRAME_EXTENTS"},
    {&Atoms::motifWmHints, "_MOTIF_WM_HINTS"},
    {&Atoms::netActiveWindow, "_NET_ACTIVE_WINDOW"},
    {&Atoms::netClientList, "_NET_CLIENT_LIST"},
    {&Atoms::netClientListStacking, "_NET_CLIENT_LIST_STACKING"},
    {&Atoms::netCurrentDesktop, "_NET_CURRENT_DESKTOP"},
    {&Atoms::netFrameExtents, "_NET_FRAME_EXTENTS"},
    {&Atoms::netMoveresizeWindow, "_NET_MOVERESIZE_WINDOW"},
    {&Atoms::netSupported, "_NET_SUPPORTED"},
    {&Atoms::netSupportingWmCheck, "_NET_SUPPORTING_WM_CHECK"},
    {&Atoms::netWmActionClose, "_NET_WM_ACTION_CLOSE"},
    {&Atoms::netWmActionMaximizeHorz, "_NET_WM_ACTION_MAXIMIZE_HORZ"},
    {&Atoms::netWmActionMaximizeVert, "_NET_WM_ACTION_MAXIMIZE_VERT"},
    {&Atoms::netWmActionMinimize, "_NET_WM_ACTION_MINIMIZE"},
    {&Atoms::netWmAllowedActions, "_NET_WM_ALLOWED_ACTIONS"},
    {&Atoms::netWmDesktop, "_NET_WM_DESKTOP"},
    {&Atoms::netWmName, "_NET_WM_NAME"},
    {&Atoms::netWmPid, "_NET_WM_PID"},
    {&Atoms::netWmState, "_NET_WM_STATE"},
    {&Atoms::netWmStateFullscreen, "_NET_WM_STATE_FULLSCREEN"},
    {&Atoms::netWmStateHidden, "_NET_WM_STATE_HIDDEN"},
    {&Atoms::netWmStateMaximizedHorz, "_NET_WM_STATE_MAXIMIZED_HORZ"},
    {&Atoms::netWmStateMaximizedVert, "_NET_WM_STATE_MAXIMIZED_VERT"},
    {&Atoms::netWmStateShaded, "_NET_WM_STATE_SHADED"},
    {&Atoms::netWmWindowType, "_NET_WM_WINDOW_TYPE"},
    {&Atoms::netWmWindowTypeDesktop, "_NET_WM_WINDOW_TYPE_DESKTOP"},
    {&Atoms::netWmWindowTypeDock, "_NET_WM_WINDOW_TYPE_DOCK"},
    {&Atoms::netWmWindowTypeNormal, "_NET_WM_WINDOW_TYPE_NORMAL"},
    {&Atoms::utf8String, "UTF8_STRING"},
    {&Atoms::wmChangeState, "WM_CHANGE_STATE"},
    {&Atoms::wmState, "WM_STATE"},
};

}  // namespace

Atoms::Atoms(const Connection& connection) {
  std::array<xcb_intern_atom_cookie_t, std::size(names)> cookies{};
  for (std::size_t i = 0; i < cookies.size(); ++i) {
    const std::string_view name = names[i].second;
    cookies[i] = xcb_intern_atom(connection.get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
  }
  for (std::size_t i = 0; i < cookies.size(); ++i) {
    const auto reply = connection.reply(xcb_intern_atom_reply, cookies[i]);
    if (reply) this->*names[i].first = reply->atom;
  }
}

}  // namespace x11
