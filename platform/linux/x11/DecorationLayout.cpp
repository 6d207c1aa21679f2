#include "platform/linux/x11/DecorationLayout.h"

#include <algorithm>
#include <string>

#include "platform/linux/freedesktop/BaseFolders.h"
#include "platform/linux/freedesktop/Files.h"
#include "platform/linux/x11/XSettings.h"

namespace x11 {

namespace {

/// Whether a file of GTK's settings asks for another layout.
bool asksForAnother(const std::string& file) {
  constexpr std::size_t largestFile = 64 * 1024;
  constexpr std::string_view key = "gtk-decoration-layout";
  constexpr std::string_view blanks = " \t\r";
  const std::string content = freedesktop::readFile(file, largestFile).text;
  for (std::string_view rest = content; !rest.empty();) {
    const auto length = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, length);
    rest.remove_prefix(std::min(length + 1, rest.size()));
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    const auto equals = line.find('=');
    if (!line.starts_with(key) || equals == std::string_view::npos) continue;
    line.remove_prefix(std::min(line.find_first_not_of(blanks, equals + 1), line.size()));
    if (!isUsualLayout(line.substr(0, line.find_last_not_of(blanks) + 1))) return true;
  }
  return false;
}

}  // namespace

bool isUsualLayout(std::string_view layout) {
  const auto colon = layout.find(':');
  if (colon == std::string_view::npos || layout.substr(colon + 1) != "minimize,maximize,close") return false;
  const std::string_view left = layout.substr(0, colon);
  return left.find("mize") == std::string_view::npos && left.find("close") == std::string_view::npos;
}

bool hasUsualDecorationLayout(Connection& connection) {
  if (const auto announced = xsettingsText(readXSettings(connection), "Gtk/DecorationLayout")) {
    return isUsualLayout(*announced);
  }
  auto folders = freedesktop::configFolders();
  folders.insert(folders.end(), {freedesktop::configHome(), "/etc"});
  return std::none_of(folders.begin(), folders.end(), [](const std::string& folder) {
    return asksForAnother(folder + "/gtk-3.0/settings.ini") || asksForAnother(folder + "/gtk-4.0/settings.ini");
  });
}

}  // namespace x11
