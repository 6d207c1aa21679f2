#include "Ostrel/Tab.h"

#include <algorithm>

namespace ostrel {
namespace {

struct Row {
  std::string_view rawValue;
  std::string_view title;
  std::string_view symbolName;
};

constexpr Row row(Tab tab) {
  switch (tab) {
    case Tab::General:
      return {"general", "General", "gearshape"};
    case Tab::Displays:
      return {"displays", "Displays", "display"};
    case Tab::Exclude:
      return {"exclude", "Exclude", "nosign"};
    case Tab::About:
      break;
  }
  return {"about", "About", "info.circle"};
}

}  // namespace

std::string_view rawValue(Tab tab) { return row(tab).rawValue; }

std::optional<Tab> tabWithRawValue(std::string_view text) {
  const auto found = std::ranges::find(allTabs, text, rawValue);
  return found == allTabs.end() ? std::nullopt : std::optional(*found);
}

std::string title(Tab tab) { return std::string(row(tab).title); }
std::string symbolName(Tab tab) { return std::string(row(tab).symbolName); }

}  // namespace ostrel
