// What the desktop layer can tell about itself, for a person who wonders why nothing happens.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ns {

struct DiagnosticLine {
  std::string title;
  std::string value;
};

/// The desktop, the window manager and how buttons are found, one line each, in an order to show them in. Works without
/// a desktop too, and then says so. Main thread only.
std::vector<DiagnosticLine> desktopDiagnostics();

/// What is known of the title-bar buttons of the windows on the screen, and where from: first a summary in one line,
/// then for each window a line with whose title bar it is and its title, followed by those of its buttons, which begin
/// with a blank. From memory. Only of use in the process that handles clicks, which has had time to learn. Main thread
/// only.
std::vector<DiagnosticLine> titleBarButtonDiagnostics();

/// Forgets, on disk too, what clicks have taught about the title bars of one painter, as titleBarButtonDiagnostics
/// names it, or of all when `painter` is empty. How many kinds of title bars it was; none where nothing has to be
/// learned. Needs a desktop. Main thread only.
std::optional<std::size_t> forgetTitleBarButtons(std::string_view painter);

/// What this session lacks for the program to work in all of it: each with its remedy as the value, in words for the
/// person. Without a desktop nothing, for then desktopUnavailableReason tells it all. May wait a second for the
/// session's other programs. Main thread only.
std::vector<DiagnosticLine> desktopLacks();

/// Why the program cannot work in this session, in words for the person; none when it can. To be asked before
/// anything else of the desktop is used. Main thread only.
std::optional<std::string> desktopUnavailableReason();

}  // namespace ns
