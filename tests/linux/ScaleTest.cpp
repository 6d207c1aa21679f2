// How many pixels make a point, and that nothing is lost on the way between the two.
#include "platform/linux/x11/Scale.h"

#include <cmath>
#include <random>

#include "platform/linux/x11/X11Desktop.h"
#include "platform/linux/x11/XSettings.h"
#include "tests/linux/Desk.h"

namespace {

using support::Desk;
using support::ManagedWindow;
using x11::Rect;

/// The settings of a desktop as their manager writes them: a text, a colour, and the resolution in 1024ths.
std::string settings(bool mostSignificantFirst, std::int32_t resolution) {
  std::string contents;
  const auto number = [&](std::size_t size, std::uint32_t value) {
    for (std::size_t i = 0; i < size; ++i) {
      contents += static_cast<char>(value >> 8 * (mostSignificantFirst ? size - 1 - i : i));
    }
  };
  const auto text = [&](std::string value) { contents += value.append((4 - value.size() % 4) % 4, '\0'); };
  const auto head = [&](std::uint32_t type, const std::string& name) {
    number(1, type);
    number(1, 0);
    number(2, static_cast<std::uint32_t>(name.size()));
    text(name);
    number(4, 7);
  };
  number(4, mostSignificantFirst ? 0x01000000 : 0);
  number(4, 9);
  number(4, 3);
  head(1, "Gtk/FontName");
  number(4, 5);
  text("Sans\n");
  head(2, "Some/Color");
  number(4, 0);
  number(4, 0);
  head(0, "Xft/DPI");
  number(4, static_cast<std::uint32_t>(resolution));
  return contents;
}

TEST(XSettingsTest, HoldNumbersAndTextsInEitherByteOrderAndMayBeAnyBytes) {
  for (const bool mostSignificantFirst : {false, true}) {
    const std::string whole = settings(mostSignificantFirst, 147'456);
    EXPECT_EQ(x11::xsettingsNumber(whole, "Xft/DPI"), 147'456);
    EXPECT_EQ(x11::xsettingsNumber(whole, "Xft/DP"), std::nullopt);
    EXPECT_EQ(x11::xsettingsNumber(whole, "Gtk/FontName"), std::nullopt) << "a text is no number";
    EXPECT_EQ(x11::xsettingsText(whole, "Gtk/FontName"), "Sans\n");
    EXPECT_EQ(x11::xsettingsText(whole, "Xft/DPI"), std::nullopt);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      EXPECT_EQ(x11::xsettingsNumber(whole.substr(0, size), "Xft/DPI"), std::nullopt) << size;
    }
    std::mt19937 random(1);
    for (int round = 0; round < 10'000; ++round) {
      std::string damaged = whole;
      for (int i = 0; i < 4; ++i) damaged[random() % damaged.size()] = static_cast<char>(random());
      x11::xsettingsNumber(damaged, "Xft/DPI");
    }
  }
}

class ScaleTest : public testing::Test {
 protected:
  ~ScaleTest() override {
    for (const char* name : {"QT_SCALE_FACTOR", "QT_FONT_DPI", "QT_ENABLE_HIGHDPI_SCALING"}) unsetenv(name);
  }
  double scale() { return x11::scaleOf(connection()); }
  void setResources(const std::string& text) { write(connection().root(), "RESOURCE_MANAGER", text); }
  void announce(const std::string& contents) {
    write(manager.window(), "_XSETTINGS_SETTINGS", contents);
    xcb_set_selection_owner(connection().get(), manager.window(), connection().atom("_XSETTINGS_S0"), XCB_CURRENT_TIME);
    connection().synchronise();
  }

  support::XvfbSession session;
  ManagedWindow manager{0, 0, 1, 1};

 private:
  x11::Connection& connection() { return manager.connection(); }
  void write(xcb_window_t window, const char* property, const std::string& text) {
    xcb_change_property(connection().get(), XCB_PROP_MODE_REPLACE, window, connection().atom(property), XCB_ATOM_STRING,
                        8, static_cast<std::uint32_t>(text.size()), text.data());
    connection().synchronise();
  }
};

TEST_F(ScaleTest, IsWhatTheDesktopSays) {
  EXPECT_EQ(scale(), 1);
  const std::pair<const char*, double> resources[] = {{"Xft.dpi:\t192\n", 2},
                                                      {"Xcursor.size:\t48\nXft.dpi: 120", 1.25},
                                                      {"Xft.dpi:144 \n*color: red\n", 1.5},
                                                      {"Xft.dpix:\t192\n", 1},
                                                      {"Xft.dpi:\n", 1},
                                                      {"Xft.dpi:\tmany\n", 1},
                                                      {"Xft.dpi:\t-192\n", 1},
                                                      {"Xft.dpi:\t1e9\n", 1},
                                                      {"Xft.dpi:\tnan\n", 1},
                                                      {"*.Xft.dpi:\t192\n", 1},
                                                      {"", 1}};
  for (const auto& [text, expected] : resources) {
    setResources(text);
    EXPECT_EQ(scale(), expected) << text;
  }

  setResources("Xft.dpi:\t192\n");
  announce(settings(false, 120 * 1024));
  EXPECT_EQ(scale(), 1.25) << "what the desktop announces comes first";
  announce(settings(false, -1));
  EXPECT_EQ(scale(), 2);

  setenv("QT_SCALE_FACTOR", "1.5", 1);
  EXPECT_EQ(scale(), 3);
  setenv("QT_FONT_DPI", "96", 1);
  EXPECT_EQ(scale(), 1.5);
  unsetenv("QT_FONT_DPI");
  setenv("QT_ENABLE_HIGHDPI_SCALING", "0", 1);
  EXPECT_EQ(scale(), 1.5);
}

/// What the window manager has been asked for so far.
class RequestCounter {
 public:
  RequestCounter() {
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_->get(), connection_->root(), XCB_CW_EVENT_MASK, &mask);
    connection_->synchronise();
  }
  int count() {
    while (const x11::Event event = connection_->pollEvent()) {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
      const bool isMessage = (event->response_type & 0x7f) == XCB_CLIENT_MESSAGE;
      if (isMessage && message.type == connection_->atom("_NET_MOVERESIZE_WINDOW")) ++count_;
    }
    return count_;
  }

 private:
  std::unique_ptr<x11::Connection> connection_ = x11::Connection::open();
  int count_ = 0;
};

class Points : public testing::TestWithParam<double> {
 protected:
  CGPoint position() { return std::get<CGPoint>(value("AXPosition")); }
  CGSize size() { return std::get<CGSize>(value("AXSize")); }
  desktop::Value value(const char* name) {
    desktop::Value value;
    EXPECT_EQ(x11desktop.attribute(element, name, value), kAXErrorSuccess);
    return value;
  }
  void set(const char* name, const desktop::Value& value) {
    EXPECT_EQ(x11desktop.setAttribute(element, name, value), kAXErrorSuccess);
  }
  testing::AssertionResult reaches(const Rect& wanted) {
    if (desk.waitFor([&] { return desk.frameOf(window.window()) == wanted; })) return testing::AssertionSuccess();
    const Rect frame = desk.frameOf(window.window());
    return testing::AssertionFailure() << frame.x << ',' << frame.y << ' ' << frame.width << 'x' << frame.height;
  }

  Desk desk{"openbox"};
  ManagedWindow window{300, 200, 401, 301};
  const desktop::Element element = x11::Elements::window(window.window());
  x11::X11Desktop x11desktop{
      {x11::Connection::open(), x11::Connection::open(), x11::Connection::open()}, GetParam(), [] {}};
};

TEST_P(Points, ComeBackAsThePixelsTheyWere) {
  const double scale = GetParam();
  const Rect frame = desk.manage(window).geometry.frame();
  desktop::Value read;
  ASSERT_TRUE(desk.waitFor([&] {
    const bool isKnown = x11desktop.attribute(element, "AXPosition", read) == kAXErrorSuccess;
    return isKnown && std::lround(std::get<CGPoint>(read).y * scale) == frame.y &&
           std::lround(size().height * scale) == frame.height;
  }));

  std::vector<CGDirectDisplayID> displays;
  ASSERT_EQ(x11desktop.activeDisplays(displays), kCGErrorSuccess);
  const CGRect bounds = x11desktop.display(displays.at(0)).value().bounds;
  EXPECT_DOUBLE_EQ(bounds.size.width * scale, 1440);
  EXPECT_EQ(x11desktop.screens().at(0).scale, scale);
  EXPECT_DOUBLE_EQ(position().x * scale, frame.x);
  EXPECT_DOUBLE_EQ(size().width * scale, frame.width);

  // A press on a pixel is looked up at that pixel, in single precision as it is: along the title bar, edges and all.
  const double row = frame.y + desk.windowOf(window.window()).geometry.decoration.top / 2;
  for (int column = frame.x; column < frame.x + frame.width; ++column) {
    desktop::Element here, there;
    ASSERT_EQ(desk.elements().atPosition(CGPointMake(column, row), here), kAXErrorSuccess);
    const volatile auto x = static_cast<float>(column / scale);  // volatile, or the compiler keeps the double
    const volatile auto y = static_cast<float>(row / scale);
    x11desktop.elementAtPosition({x, y}, there);
    ASSERT_EQ(here, there) << column;
  }

  // Where a window stands already it is not sent again; only the last of these is a request.
  RequestCounter requests;
  set("AXPosition", position());
  set("AXSize", size());
  QCoreApplication::processEvents();
  const CGPoint centred{(bounds.size.width - size().width) / 2, position().y};
  set("AXPosition", centred);
  const int middle = static_cast<int>(std::lround(centred.x * scale));
  ASSERT_TRUE(reaches({middle, frame.y, frame.width, frame.height}));
  EXPECT_LE(std::abs(2 * middle + frame.width - 1440), 1);
  EXPECT_EQ(requests.count(), 1);
  // Equal margins are equal pixels, or as near as whole pixels come.
  const double margin = 33.3;
  set("AXPosition", CGPointMake(margin, margin));
  set("AXSize", CGSizeMake(bounds.size.width - 2 * margin, bounds.size.height - 2 * margin));
  const auto edge = [&](double points) { return static_cast<int>(std::lround(points * scale)); };
  const int near = edge(margin);
  ASSERT_TRUE(reaches({near, near, edge(bounds.size.width - margin) - near, edge(bounds.size.height - margin) - near}));
  EXPECT_EQ(requests.count(), 2);
}

INSTANTIATE_TEST_SUITE_P(, Points, testing::Values(1, 1.25, 4 / 3.0, 1.5, 1.75, 2, 110 / 96.0));

}  // namespace
