// What the window manager can be asked for. Each is sent, not flushed, and answered by events or not at all.
#pragma once

#include <xcb/xcb.h>

#include "platform/linux/x11/Atoms.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Geometry.h"
#include "platform/linux/x11/Window.h"

namespace x11 {

/// Moves and resizes: the decoration's north-west corner and the client's size.
void requestMoveResize(const Connection& connection, const Atoms& atoms, xcb_window_t client, const Rect& request);
/// Takes away every state in which the window manager ignores a move or a resize.
void requestUnconfined(const Connection& connection, const Atoms& atoms, xcb_window_t client,
                       const WindowGeometry& geometry);
void requestIconify(const Connection& connection, const Atoms& atoms, xcb_window_t client);
/// Brings the window back if it is iconified, raises it and gives it the focus.
void requestActivate(const Connection& connection, const Atoms& atoms, xcb_window_t client);

}  // namespace x11
