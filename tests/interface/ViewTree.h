// The fixture of the tests that lay views out.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "platform/View.h"
#include "tests/interface/Finding.h"

class ViewTree : public testing::Test {
 protected:
  static std::shared_ptr<ns::View> box(double width, double height) {
    auto view = std::make_shared<ns::View>();
    ns::activate({view->width() == width, view->height() == height});
    return view;
  }
  /// Where the view is in the root once all is laid out.
  CGRect laidOut(ns::View& view) {
    root->layoutSubtreeIfNeeded();
    return placeIn(*root, view);
  }
  template <typename Type>
  std::shared_ptr<Type> adopt(std::shared_ptr<Type> view) {
    root->addSubview(view);
    return view;
  }

  std::shared_ptr<ns::View> root = std::make_shared<ns::View>(CGRectMake(0, 0, 300, 200));
};
