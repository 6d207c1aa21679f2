// What one sees, measured in pictures of the window; these tests run in the light and in the dark scheme.
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QTextDocumentFragment>
#include <QWidget>
#include <algorithm>
#include <cmath>

#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/LayerPainter.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"
#include "tests/interface/Fixture.h"

using ostrel::Tab;

namespace {

double luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// From 1 to 21, as the Web Content Accessibility Guidelines reckon it.
double contrast(const QColor& one, const QColor& other) {
  const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

QColor over(const QColor& color, const QColor& ground) {
  const auto mixed = [share = color.alphaF()](float top, float below) { return share * top + (1 - share) * below; };
  return QColor::fromRgbF(mixed(color.redF(), ground.redF()), mixed(color.greenF(), ground.greenF()),
                          mixed(color.blueF(), ground.blueF()));
}

class LooksTest : public SettingsTest {
 protected:
  void show(Tab tab) {
    present(tab);
    picture_ = root().native().widget->grab().toImage();
  }
  QColor at(double x, double y) const { return picture_.pixelColor(static_cast<int>(x), static_cast<int>(y)); }
  CGRect place(ns::View& view) { return placeIn(root(), view); }
  /// The card that the view is in; null outside cards.
  static ns::View* cardOf(ns::View& view) {
    ns::View* above = view.superview();
    while (above != nullptr && above->layer().borderWidth == 0) above = above->superview();
    return above;
  }

 private:
  QImage picture_;
};

TEST_F(LooksTest, TextsCanBeReadOnWhatIsBehindThem) {
  desktop.isTrusted = false;
  for (const Tab tab : ostrel::allTabs) {
    show(tab);
    const double seen = bottom(place(this->tab()));
    for (auto* const label : allOf<ns::TextField>(root())) {
      const CGRect frame = place(*label);
      if (label->stringValue().empty() || bottom(frame) > std::max(seen, frame.origin.y)) continue;
      const QColor ground = at(frame.origin.x - 2, frame.origin.y + frame.size.height / 2);
      EXPECT_GE(contrast(over(qt::color(label->textColor()), ground), ground), 4.5) << label->stringValue();
    }
  }
  // The link, in the About tab.
  const CGRect link = place(*allOf<ns::Button>(document()).at(0));
  EXPECT_GE(contrast(qt::color(ns::Color::controlAccentColor()), at(link.origin.x - 2, link.origin.y + 5)), 4.5);
}

TEST_F(LooksTest, SwitchThatIsOffStandsOutFromItsCard) {
  show(Tab::General);
  auto* const toggle = controlInRow<ns::Switch>(root(), "Red button hides the app");
  ASSERT_FALSE(toggle->isOn());
  const CGRect frame = place(*toggle);
  const double x = frame.origin.x + frame.size.width * 0.65;  // beside the knob
  const QColor card = at(x, frame.origin.y - 3);
  double best = 1;
  for (int y = 0; y < 3; ++y) best = std::max(best, contrast(at(x, frame.origin.y + y), card));
  EXPECT_GE(best, 3);
}

TEST_F(LooksTest, LinesInACardEndAtItsBorderAndAreNoStrongerThanIt) {
  show(Tab::General);
  int count = 0;
  for (auto* const line : allOf<ns::SeparatorBox>(document())) {
    ns::View* const card = cardOf(*line);
    ASSERT_NE(card, nullptr);
    const CGRect frame = place(*card);
    const double y = place(*line).origin.y;
    const QColor ground = at(frame.origin.x + 60, y + 4);
    for (const double x : {frame.origin.x, right(frame) - 1}) {
      EXPECT_EQ(at(x, y), at(x, y + 4)) << "the border goes on";
      EXPECT_LE(contrast(at(frame.origin.x + 60, y), ground), contrast(at(x, y), ground));
    }
    EXPECT_NE(at(frame.origin.x + 60, y), ground);
    ++count;
  }
  EXPECT_GE(count, 4);
}

TEST_F(LooksTest, ShadowFadesWithoutSteps) {
  constexpr int scale = 4;
  constexpr int side = 44;
  constexpr int room = 20;
  ns::Layer layer;
  layer.cornerRadius = 10;
  layer.shadow = ns::Shadow{ns::Color::blackColor().colorWithAlphaComponent(0.18), {0, -2}, 4, 1};
  QImage image(QSize(side + 2 * room, side + 2 * room) * scale, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  qt::paintLayer(painter, layer, QRectF(room, room, side, side));
  painter.end();
  const int middle = image.width() / 2;
  int before = qAlpha(image.pixel(middle, middle));
  EXPECT_NEAR(before, 0.18 * 255, 1);
  for (int y = middle; y < image.height(); ++y) {
    const int now = qAlpha(image.pixel(middle, y));
    EXPECT_LE(now, before);
    EXPECT_LE(before - now, 2) << "at " << static_cast<double>(y) / scale - room - side << " points from the edge";
    before = now;
  }
  EXPECT_EQ(before, 0);
  // Below the corner of the square it has to be rounder than the square.
  const int corner = (room + side) * scale;
  EXPECT_LT(qAlpha(image.pixel(corner, corner)), qAlpha(image.pixel(middle, corner)) * 2 / 3);
}

TEST_F(LooksTest, TabThatIsLongerThanTheWindowShowsItsScroller) {
  const auto scrollerShows = [this] {
    const CGRect frame = place(tab());
    const double x = right(frame) - 6;
    for (double y = frame.origin.y; y < bottom(frame); ++y) {
      if (at(x, y) != at(x, bottom(frame) - 1)) return true;
    }
    return false;
  };
  show(Tab::General);
  EXPECT_FALSE(scrollerShows());
  show(Tab::About);
  EXPECT_TRUE(scrollerShows());
}

TEST_F(LooksTest, TextThatIsCutOffIsInAToolTip) {
  const std::string name = "Left <b>monitor</b> & right monitor with quite a long name of its own";
  const auto label = ns::TextField::labelWithString(name);
  label->setLineBreakMode(ns::LineBreakMode::TruncatingTail);
  label->setContentCompressionResistancePriority(ns::LayoutPriorityDefaultLow, ns::LayoutOrientation::Horizontal);
  const auto holder = std::make_shared<ns::View>(CGRectMake(0, 0, 200, 50));
  holder->addSubview(label);
  ns::activate({label->leading() == holder->leading(), label->trailing() <= holder->trailing()});
  const auto toolTip = [&] {
    holder->layoutSubtreeIfNeeded();
    return QTextDocumentFragment::fromHtml(label->native().widget->toolTip()).toPlainText().toStdString();
  };
  EXPECT_EQ(toolTip(), name);
  label->setStringValue("Short");
  EXPECT_EQ(toolTip(), "");
}

TEST_F(LooksTest, KeyboardIsAtNoOtherTabThanTheChosenOne) {
  const auto tabs = [this] { return allOf<ostrel::SidebarButton>(root()); };
  const auto current = [&] {
    std::vector<Tab> found;
    for (auto* const button : tabs()) {
      if (settings->window()->isFirstResponder(*button)) found.push_back(button->tab());
    }
    return found;
  };
  present(Tab::General);
  EXPECT_EQ(current(), std::vector<Tab>{}) << "nothing is lit at first";
  settings->window()->makeFirstResponder(*tabs()[1]);
  tabs()[2]->mouseDown({});
  EXPECT_EQ(current(), std::vector{Tab::Exclude});
  settings->window()->close();
  present(Tab::General);
  for (const Tab tab : current()) EXPECT_EQ(tab, Tab::General);
}

}  // namespace
