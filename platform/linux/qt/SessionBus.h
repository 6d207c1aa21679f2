// The session's message bus.
#pragma once

namespace qt {

/// Whether there is one; asking for the connection without one would start a bus.
bool hasSessionBus();

}  // namespace qt
