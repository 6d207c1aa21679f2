#include "platform/linux/x11/Scale.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/x11/Properties.h"
#include "platform/linux/x11/XSettings.h"

namespace x11 {

namespace {

/// At which a pixel is a point.
constexpr double plainResolution = 96;
/// For settings of any size; more than 64 KiB is nobody's.
constexpr std::uint32_t longestInWords = 16'384;

/// More than 0 and all of the text, or none.
std::optional<double> positiveNumber(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !(number > 0)) return std::nullopt;
  return number;
}

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

std::string readText(Connection& connection, xcb_window_t window, const char* name) {
  return propertyText(
      receiveProperty(connection, requestProperty(connection, window, connection.atom(name), longestInWords)));
}

std::optional<double> announcedResolution(Connection& connection) {
  const auto resolution = xsettingsNumber(readXSettings(connection), "Xft/DPI");
  if (!resolution || *resolution <= 0) return std::nullopt;  // -1 leaves it open
  return *resolution / 1024.0;
}

std::optional<double> resolutionResource(Connection& connection) {
  constexpr std::string_view name = "Xft.dpi:";
  constexpr std::string_view blanks = " \t";
  const std::string resources = readText(connection, connection.root(), "RESOURCE_MANAGER");
  for (std::string_view rest = resources; !rest.empty();) {
    const auto length = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, length);
    rest.remove_prefix(std::min(length + 1, rest.size()));
    if (!line.starts_with(name)) continue;
    line.remove_prefix(std::min(line.find_first_not_of(blanks, name.size()), line.size()));
    return positiveNumber(line.substr(0, line.find_last_not_of(blanks) + 1));
  }
  return std::nullopt;
}

double resolution(Connection& connection) {
  if (environment("QT_ENABLE_HIGHDPI_SCALING") == "0") return plainResolution;
  if (const auto forced = positiveNumber(environment("QT_FONT_DPI"))) return *forced;
  if (const auto announced = announcedResolution(connection)) return *announced;
  return resolutionResource(connection).value_or(plainResolution);
}

}  // namespace

double scaleOf(Connection& connection) {
  const double factor = positiveNumber(environment("QT_SCALE_FACTOR")).value_or(1);
  const double scale = resolution(connection) / plainResolution * factor;
  return scale >= 0.5 && scale <= 8 ? scale : 1;
}

double scaleOfThisProcess() {
  static const double scale = [] {
    const auto connection = Connection::open();
    return connection ? scaleOf(*connection) : 1;
  }();
  return scale;
}

}  // namespace x11
