// Desktops that draw everything larger: a margin is as long as it says on the person's own ruler.
#include <nlohmann/json.hpp>

#include "tests/desktop/DesktopTest.h"

namespace desktoptest {
namespace {

/// Wide enough for a menu bar in large letters.
constexpr Frame largeFrame{100, 120, 1200, 801};
/// A window that is put back to exactly where it was before the click is taken for one that has not moved yet.
constexpr Frame otherFrame{60, 90, 1200, 801};
constexpr Frame oddFrame{100, 120, 1201, 801};

class ScaledDesktop : public EachWindowManager {
 protected:
  ScaledDesktop() : EachWindowManager(2880, 1801) {}

  nlohmann::json display() {
    const auto listed = desktop.ostrelCommand({"displays"});
    EXPECT_EQ(listed.status, 0) << listed.output;
    return nlohmann::json::parse(listed.output).at("displays").at(0);
  }

  Frame sizeOfSettings() {
    const auto before = x.clients();
    EXPECT_EQ(desktop.ostrelCommand({"settings"}).status, 0);
    EXPECT_TRUE(happens([&] { return x.clients().size() > before.size(); }));
    const Frame place = x.rectangle(x.clients().back()).value_or(Frame{});
    return {0, 0, place.width, place.height};
  }
};

TEST_P(ScaledDesktop, TwoPixelsAPoint) {
  const auto before = display();
  x.setResources("Xft.dpi:\t192\n");
  const auto scaled = display();
  EXPECT_EQ(scaled.at("scale"), 2);
  EXPECT_EQ(scaled.at("bounds"), nlohmann::json({{"x", 0}, {"y", 0}, {"width", 1440}, {"height", 900.5}}));
  EXPECT_EQ(scaled.at("identityKey"), before.at("identityKey")) << "what was stored for the display still counts";

  const Window terminal = openTerminal(largeFrame);
  const Window editor = openEditor(largeFrame);
  desktop.startOstrel();
  for (const Window window : {terminal, editor}) {
    x.activate(window);
    desktop.click(window, Button::Zoom);
    EXPECT_TRUE(reaches(window, {64, 112, 2752, 1625}));
    desktop.place(window, otherFrame);
    desktop.click(window, Button::Minimise);
    EXPECT_TRUE(reaches(window, centred(window, 0, 2880)));
  }
  EXPECT_EQ(sizeOfSettings(), (Frame{0, 0, 1400, 1500}));
}

TEST_P(ScaledDesktop, AFractionOfAPixelIsNoPlaceForAWindow) {
  x.setResources("Xft.dpi:\t144\n");
  EXPECT_EQ(display().at("scale"), 1.5);
  const Window window = openEditor(oddFrame);
  desktop.startOstrel();
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, {48, 84, 2784, 1669}));
  desktop.place(window, oddFrame);
  desktop.click(window, Button::Minimise);
  EXPECT_TRUE(happens([&] { return x.frame(window).value_or(Frame{}).x > 800; }));
  const Frame middle = x.frame(window).value_or(Frame{});
  EXPECT_LE(std::abs(2 * middle.x + middle.width - 2880), 1);
  desktop.click(window, Button::Minimise);
  desktop.settle();
  EXPECT_EQ(x.frame(window), middle) << "it stays where it is centred already";
  EXPECT_NEAR(sizeOfSettings().width, 1050, 3) << "the toolkit rounds on its own";
}

INSTANTIATE_TEST_SUITE_P(, ScaledDesktop, windowManagers(), parameterName);

}  // namespace
}  // namespace desktoptest
