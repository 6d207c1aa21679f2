// What only AppKit can tell of the window, in both looks of the desktop, and the menu that is made for it.
#import "platform/macos/Bridge.h"
#import "platform/macos/MenuBridge.h"
#import "platform/macos/ViewNative.h"
#include "tests/interface/Fixture.h"

using ostrel::Tab;

namespace {

class AppKitTest : public SettingsTest, public testing::WithParamInterface<const char*> {
 protected:
  AppKitTest() { NSApp.appearance = [NSAppearance appearanceNamed:@(GetParam())]; }
  ~AppKitTest() override { NSApp.appearance = nil; }

  NSView* rootView() { return root().native().view; }
  /// From 0, black, to 1.
  double lightnessAt(CGFloat x, CGFloat y) {
    NSBitmapImageRep* picture = [rootView() bitmapImageRepForCachingDisplayInRect:rootView().bounds];
    [rootView() cacheDisplayInRect:rootView().bounds toBitmapImageRep:picture];
    const double scale = static_cast<double>(picture.pixelsWide) / rootView().bounds.size.width;
    NSColor* color = [picture colorAtX:static_cast<NSInteger>(x * scale) y:static_cast<NSInteger>(y * scale)];
    return [color colorUsingColorSpace:NSColorSpace.genericGamma22GrayColorSpace].whiteComponent;
  }
};

void expectDetermined(NSView* view) {
  EXPECT_FALSE(view.hasAmbiguousLayout) << view.description.UTF8String;
  for (NSView* subview in view.subviews) {
    // What the framework's own controls are made of is theirs.
    if (![view isKindOfClass:NSControl.class]) expectDetermined(subview);
  }
}

TEST_P(AppKitTest, ConstraintsAreCompleteAndAgree) {
  desktop.isTrusted = false;
  controller->setExcludedApps({{"a", "Atlas"}, {"b", std::string(200, 'w')}});
  testing::internal::CaptureStderr();
  for (const Tab tab : ostrel::allTabs) {
    SCOPED_TRACE(rawValue(tab));
    present(tab);
    for (const CGSize size : {CGSizeMake(650, 700), CGSizeMake(1000, 780), CGSizeMake(700, 750)}) {
      settings->window()->setContentSize(size);
      root().layoutSubtreeIfNeeded();
      expectDetermined(rootView());
    }
  }
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_EQ(said.find("onstraint"), std::string::npos) << said;
}

TEST_P(AppKitTest, NoTextIsCutOff) {
  desktop.isTrusted = false;
  for (const Tab tab : ostrel::allTabs) {
    present(tab);
    for (auto* const label : allOf<ns::TextField>(root())) {
      auto* field = static_cast<NSTextField*>(label->native().view);
      const NSSize wanted = [field.cell cellSizeForBounds:NSMakeRect(0, 0, field.bounds.size.width, 10000)];
      EXPECT_LE(wanted.height, field.bounds.size.height + rounding) << label->stringValue();
      if (field.lineBreakMode != NSLineBreakByTruncatingTail) {
        EXPECT_LE(wanted.width, field.bounds.size.width + rounding) << label->stringValue();
      }
    }
    for (auto* const button : allOf<ns::Button>(root())) {
      EXPECT_GE(button->frame().size.width + rounding, button->native().view.fittingSize.width) << button->title();
    }
  }
}

TEST_P(AppKitTest, FollowsTheLookOfTheDesktop) {
  const bool isDark = GetParam() == std::string("NSAppearanceNameDarkAqua");
  for (const Tab tab : ostrel::allTabs) {
    present(tab);
    const CGFloat middle = rootView().bounds.size.width / 2;
    for (const double lightness : {lightnessAt(middle, 20), lightnessAt(middle, rootView().bounds.size.height - 20)}) {
      EXPECT_EQ(lightness < 0.5, isDark) << rawValue(tab) << ' ' << lightness;
    }
  }
  NSApp.appearance = [NSAppearance appearanceNamed:isDark ? NSAppearanceNameAqua : NSAppearanceNameDarkAqua];
  [rootView() displayIfNeeded];
  EXPECT_EQ(lightnessAt(350, 20) < 0.5, !isDark) << "while it is open, too";
}

TEST_P(AppKitTest, PressesOnAnEntrysLabelAndIconAreTheEntrys) {
  present(Tab::General);
  for (auto* const button : allOf<ostrel::SidebarButton>(root())) {
    NSView* entry = button->native().view;
    for (NSView* part in entry.subviews) {
      const NSPoint middle = NSMakePoint(NSMidX(part.frame), NSMidY(part.frame));
      EXPECT_EQ([entry hitTest:[entry.superview convertPoint:middle fromView:entry]], entry);
    }
    EXPECT_TRUE([entry accessibilityPerformPress]);
    EXPECT_EQ(settings->selectedTab(), button->tab());
    EXPECT_TRUE([entry.accessibilityRole isEqualToString:NSAccessibilityButtonRole]);
    EXPECT_TRUE(entry.accessibilitySelected);
  }
}

INSTANTIATE_TEST_SUITE_P(Looks, AppKitTest, testing::Values("NSAppearanceNameAqua", "NSAppearanceNameDarkAqua"),
                         [](const auto& look) { return look.index == 0 ? "light" : "dark"; });

struct MenuSource final : ns::MenuDelegate, std::enable_shared_from_this<MenuSource> {
  void menuNeedsUpdate(ns::Menu& menu) override {
    menu.removeAllItems();
    const auto item = std::make_shared<ns::MenuItem>("Number " + std::to_string(++updates), "k");
    item->setTarget<MenuSource>(weak_from_this(), &MenuSource::choose);
    item->setImage(ns::Image::imageWithSystemSymbolName("gear"));
    menu.addItem(item);
    menu.addItem(ns::MenuItem::separatorItem());
    menu.addItem(std::make_shared<ns::MenuItem>("Nobody's"));
  }
  void choose() { ++choices; }
  int updates = 0;
  int choices = 0;
};

TEST(MenuBridgeTest, ShowsTheMenuAsItIsAtEachOpening) {
  const auto source = std::make_shared<MenuSource>();
  const auto menu = std::make_shared<ns::Menu>();
  menu->setDelegate(source);
  OstrelMenuBridge* bridge = [[OstrelMenuBridge alloc] initWithMenu:menu];
  NSMenu* native = bridge.nativeMenu;
  for (int opening = 1; opening <= 2; ++opening) {
    [native.delegate menuNeedsUpdate:native];
    ASSERT_EQ(native.numberOfItems, 3);
    NSMenuItem* item = [native itemAtIndex:0];
    EXPECT_EQ(ns::fromNSString(item.title), "Number " + std::to_string(opening));
    EXPECT_EQ(ns::fromNSString(item.keyEquivalent), "k");
    EXPECT_EQ(item.keyEquivalentModifierMask, NSEventModifierFlagCommand);
    EXPECT_TRUE(item.enabled);
    EXPECT_NE(item.image, nil);
    EXPECT_TRUE([native itemAtIndex:1].separatorItem);
    EXPECT_FALSE([native itemAtIndex:2].enabled);
    [native performActionForItemAtIndex:0];
    EXPECT_EQ(source->choices, opening);
  }
}

}  // namespace
