// Two monitors, each with margins of its own.
#include <nlohmann/json.hpp>

#include "tests/desktop/DesktopTest.h"

namespace desktoptest {
namespace {

class Monitors : public EachWindowManager {
 protected:
  Monitors() : EachWindowManager(2400) {}
};

TEST_P(Monitors, EachHasItsMarginsAndItsCentre) {
  desktop.setMonitors({{"LEFT", {0, 0, 1000, 900}}, {"RIGHT", {1000, 0, 1400, 900}}});
  const auto listed = desktop.ostrelCommand({"displays"});
  ASSERT_EQ(listed.status, 0) << listed.output;
  const auto catalogue = nlohmann::json::parse(listed.output);
  ASSERT_EQ(catalogue.at("displays").size(), 2U) << listed.output;

  auto preferences = nlohmann::json::object();
  for (const auto& display : catalogue.at("displays")) {
    const std::string prefix = "margins.configuration." + catalogue.at("key").get<std::string>() + ".display." +
                               display.at("identityKey").get<std::string>() + ".";
    const double margin = display.at("bounds").at("x").get<double>() == 0 ? 10 : 50;
    for (const char* edge : {"top", "left", "right", "bottom"}) preferences[prefix + edge] = margin;
  }
  desktop.writePreferences(preferences.dump());
  const Window window = openEditor();
  desktop.startOstrel();

  desktop.click(window, Button::Minimise);
  EXPECT_TRUE(reaches(window, centred(window, 0, 1000)));
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, {10, 10, 980, 880}));

  desktop.place(window, {1700, 200, 500, 340});
  desktop.click(window, Button::Minimise);
  EXPECT_TRUE(reaches(window, centred(window, 1000, 1400)));
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, {1050, 50, 1300, 800}));
}

INSTANTIATE_TEST_SUITE_P(, Monitors, windowManagers(), parameterName);

}  // namespace
}  // namespace desktoptest
