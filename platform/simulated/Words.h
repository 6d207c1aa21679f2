// Reads the lines in which desktops are written down.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ApplicationServices.h"

namespace simulated {

/// One line, cut at spaces; "quoted words" keep theirs.
struct Line {
  std::size_t indentation = 0;
  std::vector<std::string> words;
};

/// The lines that hold any word.
std::vector<Line> linesOf(std::string_view text);

/// "-10,20" as (-10, 20), and so for every separator; none for anything else.
std::optional<CGPoint> pairOf(std::string_view word, char separator);
/// Throws std::invalid_argument naming the word.
[[noreturn]] void refuse(std::string_view word, std::string_view where);

}  // namespace simulated
