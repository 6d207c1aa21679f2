// Names and keys of displays and of sets of them.
#include <string>
#include <vector>

#include "Fixture.h"

namespace {

using ostrel::activeDisplays;
using ostrel::currentDisplayConfiguration;
using simulated::Call;
using DisplayCatalogueTest = DesktopTest;

constexpr const char* builtIn = "1 \"Built-in Display\" 0,0 1440x900 main 610/160/0\n";
constexpr const char* monitor = "2 \"Monitor 27\" 1440,0 2560x1440 286/123/456\n";
constexpr const char* bothKeys =
    "Built-in-Display-main-display-vendor610-model160-serial0--Monitor-27-vendor286-model123-serial456";

TEST_F(DisplayCatalogueTest, OneKeyForASetInWhateverOrder) {
  for (const std::string& displays : {std::string(builtIn) + monitor, std::string(monitor) + builtIn}) {
    desktop.setDisplays(displays);
    const auto configuration = currentDisplayConfiguration();
    EXPECT_EQ(configuration.key, bothKeys);
    EXPECT_EQ(configuration.label, "Built-in Display (main display) + Monitor 27");
    EXPECT_EQ(configuration.displays.at(1).bounds, CGRectMake(1440, 0, 2560, 1440));
    EXPECT_EQ(activeDisplays().front().id, displays.front() == '1' ? 1U : 2U) << "the system's order is kept";
  }
  desktop.setDisplays("1 \"Built-in Display\" 0,0 1440x900 610/160/0\n2 \"Monitor 27\" 0,0 9x9 main 286/123/456");
  EXPECT_NE(currentDisplayConfiguration().key, bothKeys) << "another main display is another configuration";
}

TEST_F(DisplayCatalogueTest, ListsThatFailOrShrink) {
  const struct {
    simulated::Fault fault;
    std::size_t count;
  } cases[] = {
      {{.call = Call::ActiveDisplays, .nth = 1, .error = kCGErrorFailure}, 0},
      {{.call = Call::ActiveDisplays, .nth = 2, .error = kCGErrorFailure}, 0},
      {{.call = Call::ActiveDisplays, .nth = 2, .meanwhile = [this] { desktop.setDisplays(builtIn); }}, 1},
      {{.call = Call::ActiveDisplays,
        .nth = 2,
        .meanwhile = [this] { desktop.setDisplays(std::string(builtIn) + monitor + "3 \"New\" 0,0 9x9"); }},
       2},
  };
  for (const auto& each : cases) {
    desktop.setDisplays(std::string(builtIn) + monitor);
    desktop.clearFaults();
    desktop.inject(each.fault);
    EXPECT_EQ(activeDisplays().size(), each.count);
  }
  desktop.setDisplays("");
  const auto nothing = currentDisplayConfiguration();
  EXPECT_EQ(nothing.key, "no-displays");
  EXPECT_EQ(nothing.label, "No displays");
}

TEST_F(DisplayCatalogueTest, DisplayThatNoScreenDescribes) {
  desktop.setDisplays("5 \"Hidden\" 0,0 100x100\n");
  for (const auto& number : {std::optional<ns::PropertyList>(), std::optional(ns::PropertyList{std::string("5")}),
                             std::optional(ns::PropertyList{std::int64_t{6}}), std::optional(ns::PropertyList{-1.0})}) {
    desktop.screenList = {{number, "Hidden"}};
    EXPECT_EQ(activeDisplays().front().name, "Display 5");
    EXPECT_EQ(activeDisplays().front().identityKey, "Display-5-vendor0-model0-serial0");
  }
  desktop.screenList = {{std::nullopt, "Other"}, {ns::PropertyList{5.0}, "First"}, {ns::PropertyList{5.0}, "Second"}};
  EXPECT_EQ(activeDisplays().front().name, "First");

  desktop.setDisplays("5 \"Hidden\" 0,0 100x100 main 7/8/9");
  desktop.screenList.clear();
  EXPECT_EQ(activeDisplays().front().name, "Display 5 (main display)");
  EXPECT_EQ(activeDisplays().front().identityKey, "Display-5-main-display-vendor7-model8-serial9");
}

TEST_F(DisplayCatalogueTest, EqualMonitorsStandByIdentifier) {
  desktop.setDisplays("9 \"Twin\" 0,0 9x9 1/2/3\n4 \"Twin\" 9,0 9x9 1/2/3\n");
  const auto configuration = currentDisplayConfiguration();
  EXPECT_EQ(configuration.key, "Twin-vendor1-model2-serial3--Twin-vendor1-model2-serial3");
  EXPECT_EQ(configuration.displays.front().id, 4U);
}

TEST_F(DisplayCatalogueTest, KeysSortByScalarsOfTheirComposedForm) {
  // Each pair in its right order; names chosen so that bytes unnormalised, or UTF-16 units, would reverse it.
  const std::pair<const char*, const char*> pairs[] = {
      {"A-1", "A1"},      {"A1", "AA"}, {"Z", "a"}, {"Z", "E\u0301"}, {"E", "E9"}, {"\uFF21", "\U0001D400"},
      {"AB", "AB\u00DF"},
  };
  for (const auto& [first, second] : pairs) {
    ostrel::DisplayInfo one{1, first, first, {}};
    ostrel::DisplayInfo other{0, second, second, {}};
    EXPECT_EQ(ostrel::displayConfiguration({other, one}).displays.front(), one) << first << " before " << second;
  }
}

TEST_F(DisplayCatalogueTest, SanitizedKeys) {
  const std::pair<const char*, const char*> cases[] = {
      {"  Hello,  World!  ", "Hello-World"},
      {"a--b", "a-b"},
      {"Monitor  (27 inch)", "Monitor-27-inch"},
      {"Écran intégré", "Écran-intégré"},
      {"E\u0301cran", "E\u0301cran"},  // combining marks stay as they are
      {"LG № ٣ 显示器", "LG-٣-显示器"},
      {"½ inch", "½-inch"},
      {"...--!!", ""},
      {"", ""},
  };
  for (const auto& [text, key] : cases) EXPECT_EQ(ostrel::sanitizedKey(text), key);
}

}  // namespace
