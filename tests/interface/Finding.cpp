#include "tests/interface/Finding.h"

#include "tests/interface/Person.h"

ns::TextField* labelSaying(ns::View& root, const std::string& text) {
  for (auto* const label : allOf<ns::TextField>(root)) {
    if (label->stringValue() == text) return label;
  }
  return nullptr;
}

ns::Button* buttonSaying(ns::View& root, const std::string& title) {
  for (auto* const button : allOf<ns::Button>(root)) {
    if (button->title() == title) return button;
  }
  return nullptr;
}

CGRect placeIn(ns::View& root, ns::View& view) {
  CGRect place = view.bounds();
  for (ns::View* step = &view; step != &root; step = step->superview()) {
    const CGRect frame = step == &view ? person::edgesOf(view) : step->frame();
    if (step == &view) place.size = frame.size;
    ns::View& parent = *step->superview();
    const double top = parent.isFlipped() ? frame.origin.y : parent.bounds().size.height - bottom(frame);
    place.origin.x += frame.origin.x;
    place.origin.y += top;
  }
  return place;
}
