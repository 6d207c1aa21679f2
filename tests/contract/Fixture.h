// A test with the application on the desktop.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/Backing.h"

namespace contract {

class Test : public testing::Test {
 protected:
  ~Test() override { backing.quit(); }
  void launch() { pid = backing.launch(); }

  Backing& backing = Backing::current();
  pid_t pid = 0;
};

}  // namespace contract
