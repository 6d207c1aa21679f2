// The atoms that the X11 backing speaks of.
#pragma once

#include <xcb/xcb.h>

#include "platform/linux/x11/Connection.h"

namespace x11 {

/// Interned once per connection, in one pass; the same numbers hold for every connection to the server.
struct Atoms {
  /// An atom that cannot be interned, because the connection is broken, is 0.
  explicit Atoms(const Connection& connection);

  xcb_atom_t gtkApplicationId = 0;
  xcb_atom_t gtkFrameExtents = 0;
  xcb_atom_t motifWmHints = 0;
  xcb_atom_t netActiveWindow = 0;
  xcb_atom_t netClientList = 0;
  xcb_atom_t netClientListStacking = 0;
  xcb_atom_t netCurrentDesktop = 0;
  xcb_atom_t netFrameExtents = 0;
  xcb_atom_t netMoveresizeWindow = 0;
  xcb_atom_t netSupported = 0;
  xcb_atom_t netSupportingWmCheck = 0;
  xcb_atom_t netWmActionClose = 0;
  xcb_atom_t netWmActionMaximizeHorz = 0;
  xcb_atom_t netWmActionMaximizeVert = 0;
  xcb_atom_t netWmActionMinimize = 0;
  xcb_atom_t netWmAllowedActions = 0;
  xcb_atom_t netWmDesktop = 0;
  xcb_atom_t netWmName = 0;
  xcb_atom_t netWmPid = 0;
  xcb_atom_t netWmState = 0;
  xcb_atom_t netWmStateFullscreen = 0;
  xcb_atom_t netWmStateHidden = 0;
  xcb_atom_t netWmStateMaximizedHorz = 0;
  xcb_atom_t netWmStateMaximizedVert = 0;
  xcb_atom_t netWmStateShaded = 0;
  xcb_atom_t netWmWindowType = 0;
  xcb_atom_t netWmWindowTypeDesktop = 0;
  xcb_atom_t netWmWindowTypeDock = 0;
  xcb_atom_t netWmWindowTypeNormal = 0;
  xcb_atom_t utf8String = 0;
  xcb_atom_t wmChangeState = 0;
  xcb_atom_t wmState = 0;
};

}  // namespace x11
