// All drawings, as the build embeds them.
#pragma once

#include <span>

#include "platform/linux/qt/Symbols.h"

namespace qt {

/// Any thread.
std::span<const Symbol> symbolTable();

}  // namespace qt
