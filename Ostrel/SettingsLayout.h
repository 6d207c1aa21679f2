// Arrangements that several views of the settings window share.
#pragma once

#include <memory>
#include <string>

#include "platform/Controls.h"
#include "platform/View.h"

namespace ostrel {

/// Puts `view` into `container`, this far from its edges.
void fill(ns::View& container, const std::shared_ptr<ns::View>& view, double horizontal = 0, double vertical = 0);

std::shared_ptr<ns::TextField> makeLabel(const std::string& text, ns::Font font,
                                         ns::Color color = ns::Color::labelColor());
/// Breaks into as many lines as its width needs.
std::shared_ptr<ns::TextField> makeWrappingLabel(const std::string& text, ns::Font font,
                                                 ns::Color color = ns::Color::labelColor());

/// The symbol in front of a row: 14 points, in a view 20 points wide.
std::shared_ptr<ns::ImageView> makeRowIcon(const std::string& symbolName, ns::Color tint);

/// A line across a view or down it, 1 point thin.
std::shared_ptr<ns::View> makeHorizontalLine();
std::shared_ptr<ns::View> makeVerticalLine();

}  // namespace ostrel
