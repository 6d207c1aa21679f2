// Title bars that are known beforehand, because programs that are everywhere draw them alike on every desktop.
#pragma once

#include <vector>

#include "platform/linux/x11/TitleBars/ButtonEvidence.h"

namespace x11 {

struct ShippedTitleBar {
  TitleBarKind kind;
  /// As if they had been seen.
  std::vector<Observation> presses;
};

/// What is known beforehand once a window of that kind has been seen: about the kind itself and about the same window
/// maximised. Empty for nearly all kinds. It holds where the buttons are in the usual order (hasUsualDecorationLayout).
std::vector<ShippedTitleBar> shippedWith(const TitleBarKind& kind);

}  // namespace x11
