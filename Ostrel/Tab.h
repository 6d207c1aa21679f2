// The tabs of the settings window.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace ostrel {

enum class Tab { General, Displays, Exclude, About };

inline constexpr std::array allTabs{Tab::General, Tab::Displays, Tab::Exclude, Tab::About};

/// The name by which commands and messages call the tab.
std::string_view rawValue(Tab tab);
/// None for a text that names no tab.
std::optional<Tab> tabWithRawValue(std::string_view rawValue);
/// For people.
std::string title(Tab tab);
std::string symbolName(Tab tab);

}  // namespace ostrel
