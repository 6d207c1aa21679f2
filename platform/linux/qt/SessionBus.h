// The session's message bus.
#pragma once

namespace qt {

/// Whether there is one.
bool hasSessionBus();

/// Where there is none, whoever asks for it would start one, which nobody ends: the toolkit itself does. Before that.
void startNoSessionBus();

}  // namespace qt
