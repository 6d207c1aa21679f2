#include <gtest/gtest.h>

#include "platform/Application.h"
#include "tests/interface/Person.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  person::sitDown();
  const auto app = ns::Application::sharedApplication();
  return RUN_ALL_TESTS();
}
