// Margins, level by level.
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "Fixture.h"
#include "Ostrel/MarginStore.h"

namespace {

using ostrel::WindowMargins;
using MarginStoreTest = DesktopTest;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST_F(MarginStoreTest, BelongToTheDisplayInItsConfiguration) {
  const WindowMargins own{1, 2, 3.5, 4};
  controller->updateMargins(own, 1);
  EXPECT_EQ(controller->margins(1), own);
  const std::string key = "Built-in-Display-main-display-vendor610-model160-serial0";
  EXPECT_EQ(desktop.defaults()->doubleForKey("margins.configuration." + key + ".display." + key + ".right"), 3.5);
}

TEST_F(MarginStoreTest, AnotherConfigurationStartsFromTheOlderLevels) {
  constexpr const char* alone = "1 \"A\" 0,0 1440x900 main 610/160/0";
  constexpr const char* together = "1 \"A\" 0,0 1440x900 main 610/160/0\n2 \"B\" 1440,0 800x600 1/2/3";
  constexpr const char* otherMain = "1 \"A\" 0,0 1440x900 610/160/0\n2 \"B\" 1440,0 800x600 main 1/2/3";
  const WindowMargins own{1, 2, 3, 4};
  for (const auto& [before, after] : {std::pair(alone, together), std::pair(together, otherMain)}) {
    SCOPED_TRACE(after);
    desktop.defaults()->user.clear();
    store("margins.display.1.left", {20.0});
    store("margins.left", {10.0});
    store("margins.right", {11.0});
    desktop.setDisplays(before);
    controller->updateMargins(own, 1);

    desktop.setDisplays(after);
    EXPECT_EQ(controller->margins(1), (WindowMargins{56, 20, 11, 32}));
    controller->updateMargins({9, 9, 9, 9}, 1);
    desktop.setDisplays(before);
    EXPECT_EQ(controller->margins(1), own);
  }
}

TEST_F(MarginStoreTest, InactiveDisplaysHaveTheirOwnOlderKeys) {
  controller->updateMargins({1, 2, 3, 4}, 77);
  EXPECT_EQ(desktop.defaults()->user.size(), 4U);
  EXPECT_EQ(desktop.defaults()->doubleForKey("margins.display.77.bottom"), 4);
  EXPECT_EQ(controller->margins(77), (WindowMargins{1, 2, 3, 4}));

  // A list that fails to come makes every display inactive.
  desktop.inject({.call = simulated::Call::ActiveDisplays, .error = kCGErrorFailure});
  controller->updateMargins({5, 6, 7, 8}, 1);
  EXPECT_EQ(controller->margins(1), (WindowMargins{5, 6, 7, 8}));
  desktop.clearFaults();
  EXPECT_EQ(controller->margins(1), (WindowMargins{5, 6, 7, 8})) << "the older keys still stand behind the new ones";
}

TEST_F(MarginStoreTest, ValuesAreClampedOnTheirWayInAndOut) {
  controller->updateMargins({-5, 2000, 1000, notANumber}, 1);
  for (const auto& [key, value] : desktop.defaults()->user) {
    const double stored = *value.as<double>();
    EXPECT_TRUE(stored >= 0 && stored <= 1000) << key;
  }
  EXPECT_EQ(controller->margins(1), (WindowMargins{0, 1000, 1000, 0}));
}

TEST_F(MarginStoreTest, EachEdgeComesFromTheMostSpecificLevelThatHasIt) {
  SCOPED_TRACE(testing::Message() << "OSTREL_TEST_SEED=" << testSeed());
  // What can be stored, with what it means.
  const std::vector<std::pair<ns::PropertyList, double>> values{
      {{12.5}, 12.5},
      {{std::int64_t{7}}, 7},
      {{std::int64_t{-7}}, 0},
      {{1500.0}, 1000},
      {{1000.0}, 1000},
      {{std::numeric_limits<double>::infinity()}, 1000},
      {{notANumber}, 0},
      {{true}, 1},
      {{std::string("12.5")}, 12.5},
      {{std::string(" +3e1 points")}, 30},
      {{std::string("1e999")}, 1000},
      {{std::string("-4")}, 0},
      {{std::string("0x10")}, 0},
      {{std::string("inf")}, 0},
      {{std::string("wide")}, 0},
      {{ns::Array{}}, 0},
      {{ns::Dictionary{}}, 0},
  };
  constexpr std::array<const char*, 4> words{"top", "left", "right", "bottom"};
  constexpr std::array<double WindowMargins::*, 4> edges{&WindowMargins::top, &WindowMargins::left,
                                                         &WindowMargins::right, &WindowMargins::bottom};
  const std::string key = ostrel::currentDisplayConfiguration().key;
  const std::vector<std::string> levels{"margins.configuration." + key + ".display." + key + ".", "margins.display.1.",
                                        "margins."};
  std::mt19937 engine(testSeed());
  auto& defaults = *desktop.defaults();
  for (int round = 0; round < 1000; ++round) {
    defaults.user.clear();
    defaults.system.clear();
    WindowMargins expected{56, 32, 32, 32};
    for (std::size_t edge = 0; edge < words.size(); ++edge) {
      bool isFound = false;
      for (const std::string& level : levels) {
        if (engine() % 2 == 0) continue;
        const auto& [value, meaning] = values[engine() % values.size()];
        (engine() % 2 == 0 ? defaults.user : defaults.system)[level + words[edge]] = value;
        if (!isFound) expected.*edges[edge] = meaning;
        isFound = true;
      }
    }
    const auto sizes = std::pair(defaults.user.size(), defaults.system.size());
    ASSERT_EQ(controller->margins(1), expected) << "round " << round;
    ASSERT_EQ(std::pair(defaults.user.size(), defaults.system.size()), sizes) << "reading wrote";
  }
}

}  // namespace
