// The four edges of a display's margins.
#pragma once

#include <array>
#include <string>

#include "Ostrel/WindowMargins.h"

namespace ostrel {

enum class MarginKey { Top, Left, Right, Bottom };

inline constexpr std::array allMarginKeys{MarginKey::Top, MarginKey::Left, MarginKey::Right, MarginKey::Bottom};

/// For people.
std::string title(MarginKey key);
std::string symbolName(MarginKey key);
double& edge(WindowMargins& margins, MarginKey key);

}  // namespace ostrel
