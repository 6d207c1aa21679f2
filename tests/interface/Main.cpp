#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/Application.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  const auto app = ns::Application::sharedApplication();
  return RUN_ALL_TESTS();
}
