// Where things are, in points from the top-left corner of the window's content.
#include <algorithm>
#include <cmath>

#include "Ostrel/GradientIconView.h"
#include "tests/interface/Fixture.h"

using ostrel::Tab;

namespace {

struct WindowSize {
  const char* name;
  double width;
  double height;
};
void PrintTo(const WindowSize& size, std::ostream* out) { *out << size.name; }

class GeometryTest : public SettingsTest, public testing::WithParamInterface<WindowSize> {
 protected:
  double width() { return root().bounds().size.width; }
  double height() { return root().bounds().size.height; }
  void presentAtSize(Tab tab) {
    settings->present(tab);
    settings->window()->setContentSize({GetParam().width, GetParam().height});
    root().layoutSubtreeIfNeeded();
    ASSERT_EQ(width(), GetParam().width);
    // A title bar lower than usual leaves more to the content of the least window.
    ASSERT_GE(height(), GetParam().height);
    ASSERT_LE(height(), GetParam().height + 28);
  }
  CGRect place(ns::View& view) { return placeIn(root(), view); }
  CGRect placeOfText(const std::string& text) {
    auto* const label = labelSaying(root(), text);
    EXPECT_NE(label, nullptr) << text;
    return label == nullptr ? CGRect{} : place(*label);
  }

  /// The sections of the tab on screen, top to bottom.
  std::vector<std::shared_ptr<ns::View>> sections() {
    return allOf<ns::StackView>(document()).at(0)->arrangedSubviews();
  }
  /// The padded rows and lines of a section's card.
  static const std::vector<std::shared_ptr<ns::View>>& rows(ns::View& section) {
    return allOf<ns::StackView>(section).at(0)->arrangedSubviews();
  }
  static bool isLine(const std::shared_ptr<ns::View>& view) {
    return dynamic_cast<ns::SeparatorBox*>(view.get()) != nullptr;
  }

  void expectColumn();
  void expectSection(ns::View& section);
  /// Nothing sticks out of what it is in, and nothing lies on what stands beside it.
  void expectTidy(ns::View& view);
};

void GeometryTest::expectColumn() {
  const double left = 251;
  EXPECT_EQ(place(tab()), (CGRect{{left, 77}, {width() - left, height() - 77 - 39}}));
  EXPECT_EQ(place(document()).size.width, width() - left);
  double top = 77 + 16;
  for (const auto& section : sections()) {
    const CGRect frame = place(*section);
    EXPECT_EQ(frame.origin.x, left + 20);
    EXPECT_EQ(frame.origin.y, top);
    EXPECT_EQ(frame.size.width, width() - left - 40);
    top = bottom(frame) + 20;
  }
  EXPECT_EQ(bottom(place(document())), top - 20 + 16);
}

void GeometryTest::expectSection(ns::View& section) {
  const CGRect frame = place(section);
  const CGRect title = place(*section.subviews().at(0));
  const CGRect card = place(*section.subviews().at(1));
  EXPECT_EQ(title.origin.x, frame.origin.x + 4);
  EXPECT_EQ(title.origin.y, frame.origin.y);
  EXPECT_EQ(card.origin.y, bottom(title) + 10);
  EXPECT_EQ(card.origin.x, frame.origin.x);
  EXPECT_EQ(card.size.width, frame.size.width);
  EXPECT_EQ(bottom(card), bottom(frame));
  double top = card.origin.y;
  const auto& list = rows(section);
  for (std::size_t index = 0; index < list.size(); ++index) {
    const CGRect row = place(*list[index]);
    EXPECT_EQ(row.origin.x, card.origin.x);
    EXPECT_EQ(row.origin.y, top);
    EXPECT_EQ(row.size.width, card.size.width);
    EXPECT_EQ(isLine(list[index]), index % 2 == 1);
    if (isLine(list[index])) {
      EXPECT_EQ(row.size.height, 1);
    } else {
      const CGRect inner = place(*list[index]->subviews().at(0));
      EXPECT_EQ(inner, (CGRect{{row.origin.x + 16, row.origin.y + 11}, {row.size.width - 32, row.size.height - 22}}));
      EXPECT_GT(inner.size.height, 10);
    }
    top = bottom(row);
  }
  EXPECT_EQ(top, bottom(card));
  EXPECT_FALSE(isLine(list.back()));
}

void GeometryTest::expectTidy(ns::View& view) {
  const CGRect own = place(view);
  const auto& inner = view.subviews();
  for (std::size_t index = 0; index < inner.size(); ++index) {
    if (inner[index]->isHidden()) continue;
    const CGRect one = place(*inner[index]);
    EXPECT_GE(one.origin.x, own.origin.x - rounding);
    // An icon on a line of text may be a little higher than that line.
    EXPECT_GE(one.origin.y, own.origin.y - 1);
    EXPECT_LE(right(one), right(own) + rounding);
    EXPECT_LE(bottom(one), bottom(own) + rounding);
    for (std::size_t next = index + 1; next < inner.size(); ++next) {
      const CGRect other = place(*inner[next]);
      const bool overlap = one.origin.x < right(other) - rounding && other.origin.x < right(one) - rounding &&
                           one.origin.y < bottom(other) - rounding && other.origin.y < bottom(one) - rounding;
      EXPECT_FALSE(overlap) << testing::PrintToString(one) << " and " << testing::PrintToString(other);
    }
    expectTidy(*inner[index]);
  }
}

TEST_P(GeometryTest, FrameOfTheWindow) {
  presentAtSize(Tab::General);
  const double h = height();
  const auto icons = allOf<ostrel::GradientIconView>(root());
  EXPECT_EQ(place(*icons.at(0)), (CGRect{{24, 16}, {44, 44}}));
  EXPECT_EQ(icons.at(0)->gradientLayer().frame, (CGRect{{0, 0}, {44, 44}}));
  const CGRect title = placeOfText("Ostrel Settings");
  const CGRect subtitle = placeOfText("Manage margins and window-button behavior");
  EXPECT_EQ(title.origin.x, 84);
  EXPECT_EQ(subtitle.origin.x, 84);
  EXPECT_EQ(subtitle.origin.y, bottom(title) + 2);
  EXPECT_NEAR((title.origin.y + bottom(subtitle)) / 2, 38, rounding);
  const CGRect version = placeOfText("v?");
  EXPECT_EQ(version.origin.y, 16);
  EXPECT_EQ(right(version), width() - 24);
  const CGRect footnote = placeOfText("Changes are saved automatically");
  EXPECT_EQ(right(footnote), width() - 24);
  EXPECT_NEAR(footnote.origin.y + footnote.size.height / 2, h - 19, rounding);

  const auto buttons = allOf<ostrel::SidebarButton>(root());
  ASSERT_EQ(buttons.size(), 4u);
  EXPECT_EQ(place(*buttons[0]->superview()->superview()), (CGRect{{0, 77}, {250, h - 116}}));
  for (int index = 0; index < 3; ++index) {
    EXPECT_EQ(place(*buttons[static_cast<std::size_t>(index)]), (CGRect{{16, 93.0 + 34 * index}, {218, 32}}));
  }
  EXPECT_EQ(place(*buttons[3]), (CGRect{{16, h - 39 - 16 - 32}, {218, 32}}));
  const CGRect buttonTitle = place(*labelSaying(*buttons[0], "General"));
  EXPECT_EQ(buttonTitle.origin.x, 16 + 12 + 20 + 12);
  EXPECT_NEAR(buttonTitle.origin.y + buttonTitle.size.height / 2, 93 + 16, rounding);

  std::vector<CGRect> lines;
  for (auto* const line : allOf<ns::SeparatorBox>(root())) {
    if (right(place(*line)) <= 251 || place(*line).size.width == width()) lines.push_back(place(*line));
  }
  for (const CGRect& wanted : {CGRect{{0, 76}, {width(), 1}}, CGRect{{0, h - 39}, {width(), 1}},
                               CGRect{{250, 77}, {1, h - 116}}, CGRect{{16, h - 39 - 16 - 32 - 9}, {218, 1}}}) {
    EXPECT_NE(std::find(lines.begin(), lines.end(), wanted), lines.end()) << testing::PrintToString(wanted);
  }
}

TEST_P(GeometryTest, EveryTabIsAColumnOfTidySections) {
  desktop.isTrusted = false;
  for (int index = 0; index < 30; ++index) {
    controller->addExcludedApp({"org.example." + std::to_string(index),
                                index == 7 ? "Eine Anwendung mit einem ganz besonders langen Namen für dieses Fenster"
                                           : "Application " + std::to_string(index)});
  }
  for (const Tab tab : ostrel::allTabs) {
    SCOPED_TRACE(rawValue(tab));
    presentAtSize(tab);
    expectColumn();
    expectTidy(document());
    // The first block of the About tab is a card without a title.
    const auto blocks = sections();
    for (std::size_t index = tab == Tab::About ? 1 : 0; index < blocks.size(); ++index) expectSection(*blocks[index]);
  }
}

TEST_P(GeometryTest, RowsOfTheGeneralTab) {
  desktop.isTrusted = false;
  presentAtSize(Tab::General);
  for (auto* const control : allOf<ns::Control>(document())) {
    if (dynamic_cast<ns::TextField*>(control) != nullptr) continue;
    ns::View& row = *control->superview();
    const CGRect rowFrame = place(row);
    const CGRect icon = place(*allOf<ns::ImageView>(row).at(0));
    const CGRect texts = place(*allOf<ns::StackView>(row).at(0));
    const CGRect button = place(*control);
    EXPECT_EQ(icon.origin.x, rowFrame.origin.x);
    EXPECT_EQ(icon.size.width, 20);
    EXPECT_NEAR(icon.origin.y + icon.size.height / 2, rowFrame.origin.y + rowFrame.size.height / 2, rounding);
    EXPECT_EQ(texts.origin.x, right(icon) + 10);
    EXPECT_LE(right(texts), button.origin.x - 12);
    EXPECT_EQ(right(button), right(rowFrame));
    EXPECT_NEAR(button.origin.y + button.size.height / 2, rowFrame.origin.y + rowFrame.size.height / 2, rounding);
    EXPECT_EQ(rowFrame.size.height, std::max(28.0, texts.size.height));
    // The long subtitles break rather than push the switch out.
    EXPECT_GT(allOf<ns::TextField>(row).at(1)->frame().size.height, 12);
  }
}

TEST_P(GeometryTest, RowsOfTheDisplaysTab) {
  desktop.setDisplays(R"(
1 "A display whose maker could not stop adding words to the name of it" 0,0 1440x900 main 1/1/1
2 "Another display with rather more than the usual number of words" 1440,0 800x600 1/2/1
)");
  presentAtSize(Tab::Displays);
  const double trailing = width() - 20 - 16;
  for (const char* const edge : {"Top", "Left", "Right", "Bottom"}) {
    const CGRect title = placeOfText(edge);
    auto& stepper = *controlInRow<ns::Stepper>(document(), edge);
    auto& field = *allOf<ns::TextField>(*stepper.superview()).at(0);
    EXPECT_EQ(title.origin.x, 251 + 20 + 16 + 30);
    EXPECT_EQ(place(field).size.width, 70);
    EXPECT_EQ(place(stepper).origin.x, right(place(field)) + 4);
    EXPECT_EQ(right(place(stepper)), trailing);
    EXPECT_GE(stepper.superview()->superview()->frame().size.height, 24);
  }
  // The long profile gives way; its title does not.
  const CGRect title = placeOfText("Current profile");
  const CGRect profile = placeOfText(ostrel::currentDisplayConfiguration().label);
  EXPECT_EQ(right(profile), trailing);
  EXPECT_GE(profile.origin.x, right(title) + 12);
  EXPECT_GE(title.size.width, 80);
  EXPECT_EQ(right(place(*buttonSaying(document(), "Reset margins for this display"))), trailing);
  const CGRect popUp = place(*allOf<ns::PopUpButton>(document()).at(0));
  EXPECT_GE(popUp.origin.x, right(placeOfText("Choose display")) + 12);
  EXPECT_EQ(right(popUp), trailing);
}

TEST_P(GeometryTest, InformationBox) {
  presentAtSize(Tab::Displays);
  auto& text = *labelSaying(document(), "Margins are remembered per display and per profile.");
  ns::View& box = *text.superview();
  const CGRect frame = place(box);
  const CGRect icon = place(*allOf<ns::ImageView>(box).at(0));
  EXPECT_EQ(icon, (CGRect{{frame.origin.x + 10, frame.origin.y + 10}, {16, 16}}));
  EXPECT_EQ(place(text).origin.x, right(icon) + 8);
  EXPECT_EQ(right(place(text)), right(frame) - 10);
  EXPECT_EQ(place(text).origin.y, frame.origin.y + 9);
  EXPECT_EQ(bottom(place(text)), bottom(frame) - 10);
}

TEST_P(GeometryTest, RowsOfTheExcludeTab) {
  controller->setExcludedApps({{"a", "Atlas"}, {"b", std::string(200, 'w')}});
  presentAtSize(Tab::Exclude);
  const double leading = 251 + 20 + 16;
  double buttonWidth = 0;
  for (const auto& app : controller->excludedApps()) {
    auto& name = *labelSaying(document(), app.name);
    auto& remove = *controlInRow<ns::Button>(document(), app.name);
    const CGRect icon = place(*controlInRow<ns::ImageView>(document(), app.name));
    EXPECT_EQ(icon.size.width, 22);
    EXPECT_EQ(icon.size.height, 22);
    EXPECT_EQ(icon.origin.x, leading);
    EXPECT_EQ(place(name).origin.x, leading + 32);
    EXPECT_LE(right(place(name)), place(remove).origin.x - 12);
    EXPECT_EQ(right(place(remove)), width() - 36);
    EXPECT_EQ(remove.superview()->frame().size.height, 28);
    if (buttonWidth == 0) buttonWidth = place(remove).size.width;
    EXPECT_EQ(place(remove).size.width, buttonWidth);
  }
  EXPECT_EQ(place(*buttonSaying(document(), "Add app…")).origin.x, leading);
}

TEST_P(GeometryTest, AboutCardAndFeatures) {
  presentAtSize(Tab::About);
  const CGRect card = place(*sections().at(0));
  EXPECT_EQ(place(*allOf<ostrel::GradientIconView>(document()).at(0)),
            (CGRect{{card.origin.x + 16, card.origin.y + 16}, {44, 44}}));
  auto& texts = *allOf<ns::StackView>(*sections().at(0)).at(0);
  EXPECT_EQ(place(texts),
            (CGRect{{card.origin.x + 74, card.origin.y + 16}, {card.size.width - 90, card.size.height - 32}}));
  const auto& items = texts.arrangedSubviews();
  ASSERT_EQ(items.size(), 4u);
  for (std::size_t index = 1; index < items.size(); ++index) {
    EXPECT_EQ(place(*items[index]).origin.y, bottom(place(*items[index - 1])) + 3);
  }
  const auto& features = rows(*sections().at(1));
  EXPECT_EQ(features.size(), 13u);
  for (std::size_t index = 0; index < features.size(); index += 2) {
    ns::View& row = *features[index]->subviews().at(0);
    const CGRect icon = place(*allOf<ns::ImageView>(row).at(0));
    const CGRect title = place(*allOf<ns::TextField>(row).at(0));
    const CGRect description = place(*allOf<ns::TextField>(row).at(1));
    EXPECT_EQ(icon.size.width, 20);
    EXPECT_NEAR(icon.origin.y + icon.size.height / 2, title.origin.y + title.size.height / 2, rounding);
    EXPECT_EQ(title.origin.x, right(icon) + 10);
    EXPECT_EQ(description.origin.y, bottom(title) + 2);
    EXPECT_EQ(bottom(description), bottom(place(row)));
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, GeometryTest,
                         testing::Values(WindowSize{"first", 700, 750}, WindowSize{"least", 650, 700},
                                         WindowSize{"large", 1000, 780}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
