// All drawings, as the build embeds them.
#pragma once

#include <span>
#include <string_view>

#include "platform/linux/qt/Symbols.h"

namespace qt {

/// Any thread.
std::span<const Symbol> symbolTable();

/// The application's icon, as SVG. Any thread.
std::string_view applicationDrawing();

}  // namespace qt
