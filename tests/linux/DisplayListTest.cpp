#include "platform/linux/x11/DisplayList.h"

#include <gtest/gtest.h>
#include <xcb/randr.h>

#include <cstdlib>
#include <random>

#include "platform/linux/x11/Edid.h"
#include "tests/support/XvfbSession.h"

namespace x11 {
namespace {

/// An EDID block of maker 0x1234, model 0x0102, numeric serial number `serial`, with two textual descriptors.
std::vector<std::uint8_t> edidBlock(std::uint32_t serial, const std::string& name, const std::string& serialText = {}) {
  std::vector<std::uint8_t> block{0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x12, 0x34, 0x02, 0x01};
  for (int shift = 0; shift < 32; shift += 8) block.push_back(static_cast<std::uint8_t>(serial >> shift));
  block.resize(128, 0x01);
  const auto describe = [&](std::size_t start, std::uint8_t tag, std::string text) {
    text = (text + "\n            ").substr(0, 13);
    const std::uint8_t head[] = {0, 0, 0, tag, 0};
    std::copy(std::begin(head), std::end(head), block.begin() + static_cast<std::ptrdiff_t>(start));
    std::copy(text.begin(), text.end(), block.begin() + static_cast<std::ptrdiff_t>(start) + 5);
  };
  if (!name.empty()) describe(72, 0xFC, name);
  if (!serialText.empty()) describe(108, 0xFF, serialText);
  return block;
}

TEST(EdidTest, ReadsNumbersAndName) {
  const auto edid = parseEdid(edidBlock(0x89ABCDEF, "  Monitor 27\x01 ", "text"));
  ASSERT_TRUE(edid);
  EXPECT_EQ(edid->vendor, 0x1234U);
  EXPECT_EQ(edid->model, 0x0102U);
  EXPECT_EQ(edid->serial, 0x89ABCDEFU);
  EXPECT_EQ(edid->name, "Monitor 27");
  EXPECT_EQ(parseEdid(edidBlock(1, "ThirteenChars"))->name, "ThirteenChars");  // no line feed behind it
}

TEST(EdidTest, TwoMonitorsWithTextualSerialNumbersDiffer) {
  const auto one = parseEdid(edidBlock(0, "M", "A1"));
  const auto other = parseEdid(edidBlock(0, "M", "A2"));
  ASSERT_TRUE(one && other);
  EXPECT_NE(one->serial, other->serial);
  EXPECT_NE(one->serial, 0U);
  EXPECT_EQ(parseEdid(edidBlock(0, "M"))->serial, 0U);
}

TEST(EdidTest, SurvivesAnyBytes) {
  auto block = edidBlock(1, "Monitor", "1");
  for (std::size_t size = 0; size < block.size(); ++size) EXPECT_FALSE(parseEdid({block.data(), size}));
  std::mt19937 random(1);
  for (int round = 0; round < 20'000; ++round) {
    auto bytes = std::vector<std::uint8_t>(block.begin(), block.end());
    for (int i = 0; i < 8; ++i) bytes[8 + random() % 120] = static_cast<std::uint8_t>(random());
    const auto edid = parseEdid(bytes);
    ASSERT_TRUE(edid);
    for (const char c : edid->name) ASSERT_TRUE(c >= 0x20 && c < 0x7F);
  }
  block[0] = 1;
  EXPECT_FALSE(parseEdid(block));
}

ListedMonitor listed(const std::string& connector, int x, int y, bool primary = false, int width = 1200) {
  return {.connector = connector,
          .x = static_cast<std::int16_t>(x),
          .y = static_cast<std::int16_t>(y),
          .width = static_cast<std::uint16_t>(width),
          .height = 900,
          .primary = primary,
          .edid = {}};
}

std::string order(const std::vector<Monitor>& monitors) {
  std::string text;
  for (const Monitor& monitor : monitors) text += monitor.connector + (monitor.display.isMain ? "* " : " ");
  return text;
}

TEST(DisplayListTest, ExactlyOneDisplayIsMainAndFirst) {
  const auto primaryOnTheLeft = {listed("A", 0, 0), listed("B", 1200, 0), listed("C", -1200, -100, true)};
  EXPECT_EQ(order(monitorsFromList(primaryOnTheLeft)), "C* A B ");
  EXPECT_EQ(order(monitorsFromList({listed("A", 1200, 0), listed("B", 0, 0)})), "B* A ");
  EXPECT_EQ(order(monitorsFromList({listed("A", 10, 0), listed("B", 1210, 0)})), "A* B ");
  EXPECT_EQ(order(monitorsFromList({listed("A", 0, 0, true), listed("B", 1200, 0, true)})), "A* B ");
  EXPECT_EQ(order(monitorsFromList({})), "");
}

TEST(DisplayListTest, MirrorsAndMonitorsWithoutAreaAreNoDisplays) {
  EXPECT_EQ(order(monitorsFromList({listed("A", 0, 0), listed("B", 0, 0, true), listed("C", 0, 0, false, 1100),
                                    listed("D", 1200, 0, false, 0)})),
            "B* C ");
}

TEST(DisplayListTest, IdentifiersFollowTheConnectorWhateverElseChanges) {
  const auto before = monitorsFromList({listed("DP-1", 0, 0, true), listed("HDMI-1", 1200, 0)});
  const auto after =
      monitorsFromList({listed("eDP-1", 0, 0), listed("HDMI-1", -1200, 0, true), listed("DP-1", 1200, 0)});
  EXPECT_EQ(before[0].identifier, after[2].identifier);
  EXPECT_EQ(before[1].identifier, after[0].identifier);
  const auto same = monitorsFromList({listed("X", 0, 0), listed("X", 1200, 0), listed("", 2400, 0)});
  EXPECT_NE(same[0].identifier, same[1].identifier);
  for (const Monitor& monitor : same) EXPECT_NE(monitor.identifier, 0U);
}

TEST(DisplayListTest, NamesAreTheMonitorsOwnOrReadableConnectors) {
  auto named = listed("DP-1", 0, 0);
  named.edid = edidBlock(7, "Monitor 27");
  auto nameless = listed("eDP-1", 1200, 0);
  nameless.edid = edidBlock(8, "");
  const auto monitors = monitorsFromList(
      {named, nameless, listed("DP-1-2", 2400, 0), listed("HDMI-A-0", 3600, 0), listed("LEFT", 4800, 0)});
  std::vector<std::string> names;
  for (const Monitor& monitor : monitors) names.push_back(monitor.localizedName);
  EXPECT_EQ(names, (std::vector<std::string>{"Monitor 27", "Built-in Display", "DisplayPort 1-2", "HDMI A-0", "LEFT"}));
  EXPECT_EQ(monitors[1].display.serial, 8U);
}

class LiveDisplayListTest : public testing::Test {
 protected:
  LiveDisplayListTest() {
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection->get(), connection->root(), XCB_CW_EVENT_MASK, &mask);
    connection->synchronise();
  }
  static void xrandr(const std::string& arguments) {
    ASSERT_EQ(std::system(("timeout 10 xrandr " + arguments + " </dev/null >/dev/null 2>&1").c_str()), 0) << arguments;
  }
  /// Waits for an event that tells of a change.
  bool isToldOfAChange() {
    other->synchronise();
    const auto deadline = std::chrono::steady_clock::now() + support::patience;
    while (true) {
      while (const Event event = connection->pollEvent()) {
        if (displays.handleEvent(*event)) return true;
      }
      if (!support::waitReadable(connection->fileDescriptor(), deadline)) return false;
    }
  }

  const support::XvfbSession session{"2400x900x24"};
  const std::unique_ptr<Connection> connection = Connection::open();
  const std::unique_ptr<Connection> other = Connection::open();
  DisplayList displays{*other, *connection};
};

TEST_F(LiveDisplayListTest, FollowsMonitorsAndTheirIdentification) {
  ASSERT_EQ(displays.monitors().size(), 1U);
  EXPECT_TRUE(CGRectEqualToRect(displays.monitors()[0].display.bounds, CGRectMake(0, 0, 2400, 900)));
  const CGDirectDisplayID whole = displays.monitors()[0].identifier;

  const auto resources = other->reply(xcb_randr_get_screen_resources_current_reply,
                                      xcb_randr_get_screen_resources_current(other->get(), other->root()));
  ASSERT_TRUE(resources && resources->num_outputs > 0);
  const xcb_randr_output_t output = xcb_randr_get_screen_resources_current_outputs(resources.get())[0];
  xrandr("--setmonitor LEFT 1000/300x900/240+0+0 screen --setmonitor '*RIGHT' 1400/300x900/240+1000+0 none");
  ASSERT_TRUE(isToldOfAChange());
  EXPECT_EQ(order(displays.monitors()), "RIGHT* LEFT ");
  EXPECT_EQ(displays.monitor(whole), nullptr);
  EXPECT_EQ(displays.screens()[1].localizedName, "LEFT");

  const auto edid = edidBlock(5, "Monitor 27");
  xcb_randr_change_output_property(other->get(), output, other->atom("EDID"), XCB_ATOM_INTEGER, 8,
                                   XCB_PROP_MODE_REPLACE, static_cast<std::uint32_t>(edid.size()), edid.data());
  ASSERT_TRUE(isToldOfAChange());
  EXPECT_EQ(displays.screens()[1].localizedName, "Monitor 27");
  EXPECT_EQ(displays.monitors()[1].display.serial, 5U);

  // An older server has outputs, which know nothing of declared monitors, or Xinerama, which does not know their names.
  const auto outputs = listMonitors(*other, MonitorSource::Outputs);
  ASSERT_EQ(outputs.size(), 1U);
  EXPECT_EQ(outputs[0].connector, "screen");
  EXPECT_EQ(outputs[0].width, 2400);
  EXPECT_EQ(outputs[0].edid.size(), edid.size());
  const auto heads = monitorsFromList(listMonitors(*other, MonitorSource::Xinerama));
  ASSERT_EQ(heads.size(), 2U);
  EXPECT_TRUE(CGRectEqualToRect(heads[0].display.bounds, displays.monitors()[0].display.bounds));
  EXPECT_TRUE(CGRectEqualToRect(heads[1].display.bounds, displays.monitors()[1].display.bounds));

  xrandr("--delmonitor RIGHT --delmonitor LEFT");
  ASSERT_TRUE(isToldOfAChange());
  ASSERT_NE(displays.monitor(whole), nullptr);
}

}  // namespace
}  // namespace x11
