// What the desktop layer can tell about itself, for a person who wonders why nothing happens.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ns {

struct DiagnosticLine {
  std::string title;
  std::string value;
};

/// The desktop, the window manager and how buttons are found, one line each, in an order to show them in. Works without
/// a desktop too, and then says so. Main thread only.
std::vector<DiagnosticLine> desktopDiagnostics();

/// Why the program cannot work in this session, in words for the person; none when it can. To be asked before
/// anything else of the desktop is used. Main thread only.
std::optional<std::string> desktopUnavailableReason();

}  // namespace ns
