// What a person does with a window, on whichever toolkit draws it.
#pragma once

#include <cstddef>
#include <string>

#include "platform/Controls.h"

namespace person {

/// Before anything else: has the toolkit look as it does everywhere, whatever this machine is set to.
void sitDown();

/// Puts the keyboard into the field.
void visit(ns::TextField& field);
/// Types over all that the field shows, and stays in it.
void type(ns::TextField& field, const std::string& text);
/// Types and presses Return. What is refused then is given up.
void enter(ns::TextField& field, const std::string& text);
/// Takes the keyboard elsewhere.
void leave(ns::TextField& field);
/// From the menu that a press on the button opens.
void choose(ns::PopUpButton& button, std::size_t index);

/// The part of a view's frame that constraints hold. A Mac's controls draw beyond it.
CGRect edgesOf(const ns::View& view);

}  // namespace person
