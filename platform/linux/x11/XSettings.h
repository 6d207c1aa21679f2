// The settings that a desktop announces to every toolkit, as its settings manager writes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/x11/Connection.h"

namespace x11 {

/// The number of that name in the contents of a _XSETTINGS_SETTINGS property. None when there is no such number, and
/// where the contents end too early or hold what nobody knows.
std::optional<std::int32_t> xsettingsNumber(std::string_view contents, std::string_view name);

/// As xsettingsNumber, of a text.
std::optional<std::string> xsettingsText(std::string_view contents, std::string_view name);

/// The contents as the desktop's settings manager announces them now; empty when there is none. Waits for the server.
std::string readXSettings(Connection& connection);

}  // namespace x11
