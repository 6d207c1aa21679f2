// Finding views in a window as a person does: by what they say and where they are.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/Controls.h"
#include "platform/View.h"

/// All views of this type at and below `root`, in order.
template <typename Type>
std::vector<Type*> allOf(ns::View& root) {
  std::vector<Type*> found;
  if (auto* const view = dynamic_cast<Type*>(&root)) found.push_back(view);
  for (const auto& subview : root.subviews()) {
    for (Type* const view : allOf<Type>(*subview)) found.push_back(view);
  }
  return found;
}

/// The one label or field that shows this text; null when there is none.
ns::TextField* labelSaying(ns::View& root, const std::string& text);
/// The one push button or link with this title; null when there is none.
ns::Button* buttonSaying(ns::View& root, const std::string& title);

/// The control in the row that has this title.
template <typename Type>
Type* controlInRow(ns::View& root, const std::string& title) {
  ns::View* view = labelSaying(root, title);
  while (view != nullptr && view != &root && allOf<Type>(*view).empty()) view = view->superview();
  if (view == nullptr || allOf<Type>(*view).empty()) {
    ADD_FAILURE() << "no such control in a row called " << title;
    std::abort();
  }
  return allOf<Type>(*view).front();
}

/// In points, for all that is centred or follows from the size of a text: a toolkit may put it on whole pixels.
inline constexpr double rounding = 0.5;

/// Where a view is, from the top-left corner of `root`; as constraints see it.
CGRect placeIn(ns::View& root, ns::View& view);
inline double right(const CGRect& rect) { return rect.origin.x + rect.size.width; }
inline double bottom(const CGRect& rect) { return rect.origin.y + rect.size.height; }

inline bool operator==(CGRect one, CGRect other) { return CGRectEqualToRect(one, other); }
inline void PrintTo(const CGRect& rect, std::ostream* stream) {
  *stream << rect.origin.x << ',' << rect.origin.y << ' ' << rect.size.width << 'x' << rect.size.height;
}
