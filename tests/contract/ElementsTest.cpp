// The C half: elements of another application's window, their values, event taps and displays.
#include <algorithm>
#include <utility>
#include <vector>

#include "platform/CFRef.h"
#include "platform/Screen.h"
#include "platform/Workspace.h"
#include "tests/contract/Fixture.h"

namespace {

using Element = CFRef<AXUIElementRef>;

const Element& systemWide() {
  static const auto element = Element::adopt(AXUIElementCreateSystemWide());
  return element;
}

/// Null when there is no such value.
CFRef<CFTypeRef> valueOf(const Element& element, CFStringRef attribute) {
  CFTypeRef value = nullptr;
  const AXError error = AXUIElementCopyAttributeValue(element.get(), attribute, &value);
  EXPECT_EQ(error == kAXErrorSuccess, value != nullptr);
  return CFRef<CFTypeRef>::adopt(value);
}

Element elementIn(const Element& element, CFStringRef attribute) {
  const auto value = valueOf(element, attribute);
  if (!value || CFGetTypeID(value.get()) != AXUIElementGetTypeID()) return {};
  return Element::retain(static_cast<AXUIElementRef>(value.get()));
}

bool is(const Element& element, CFStringRef attribute, CFTypeRef wanted) {
  const auto value = valueOf(element, attribute);
  return value && CFEqual(value.get(), wanted);
}

CGRect frameOf(const Element& window) {
  CGRect frame{};
  const auto position = valueOf(window, kAXPositionAttribute);
  const auto size = valueOf(window, kAXSizeAttribute);
  EXPECT_TRUE(position && CFGetTypeID(position.get()) == AXValueGetTypeID() &&
              AXValueGetValue(static_cast<AXValueRef>(position.get()), kAXValueTypeCGPoint, &frame.origin));
  EXPECT_TRUE(size && CFGetTypeID(size.get()) == AXValueGetTypeID() &&
              AXValueGetValue(static_cast<AXValueRef>(size.get()), kAXValueTypeCGSize, &frame.size));
  return frame;
}

AXError set(const Element& element, CFStringRef attribute, CFTypeRef value) {
  return AXUIElementSetAttributeValue(element.get(), attribute, value);
}
AXError set(const Element& element, CFStringRef attribute, CGPoint point) {
  return set(element, attribute, CFRef<AXValueRef>::adopt(AXValueCreate(kAXValueTypeCGPoint, &point)).get());
}
AXError set(const Element& element, CFStringRef attribute, CGSize size) {
  return set(element, attribute, CFRef<AXValueRef>::adopt(AXValueCreate(kAXValueTypeCGSize, &size)).get());
}

class ElementsTest : public contract::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(AXIsProcessTrusted()) << "what runs this test needs the permission";
    launch();
  }

  static Element elementAt(CGPoint place) {
    AXUIElementRef element = nullptr;
    const AXError error = AXUIElementCopyElementAtPosition(systemWide().get(), static_cast<float>(place.x),
                                                           static_cast<float>(place.y), &element);
    EXPECT_EQ(error == kAXErrorSuccess, element != nullptr);
    return Element::adopt(element);
  }
  /// Where the window's title bar says that this button is.
  CGPoint placeOf(CFStringRef subrole) {
    const CGRect frame = backing.frame();
    const double y = frame.origin.y + backing.buttonHeight();
    for (double x = frame.origin.x + 3; x < CGRectGetMaxX(frame); x += 3) {
      const Element element = elementAt({x, y});
      if (element && is(element, kAXSubroleAttribute, subrole)) return {x, y};
    }
    ADD_FAILURE() << "no such button in the title bar";
    return {};
  }
  Element buttonOf(CFStringRef subrole) { return elementAt(placeOf(subrole)); }
  static Element windowAbove(Element element) {
    for (int level = 0; element && level < 12 && !is(element, kAXRoleAttribute, CFSTR("AXWindow")); ++level) {
      element = elementIn(element, kAXParentAttribute);
    }
    return element;
  }
  Element window() { return windowAbove(buttonOf(CFSTR("AXZoomButton"))); }
  Element applicationElement() const { return Element::adopt(AXUIElementCreateApplication(pid)); }
};

TEST_F(ElementsTest, ButtonsSayWhatTheyAreAndWhose) {
  const Element window = this->window();
  ASSERT_TRUE(window);
  for (CFStringRef subrole : {CFSTR("AXCloseButton"), CFSTR("AXMinimizeButton"), CFSTR("AXZoomButton")}) {
    const Element button = buttonOf(subrole);
    const auto role = valueOf(button, kAXRoleAttribute);
    EXPECT_EQ(CFGetTypeID(role.get()), CFStringGetTypeID());
    EXPECT_TRUE(CFEqual(role.get(), CFSTR("AXButton")));
    EXPECT_EQ(CFGetTypeID(valueOf(button, kAXEnabledAttribute).get()), CFBooleanGetTypeID());
    EXPECT_TRUE(is(button, kAXEnabledAttribute, kCFBooleanTrue));
    EXPECT_TRUE(CFEqual(windowAbove(button).get(), window.get())) << "equal by value, whoever asks";
    pid_t owner = 0;
    EXPECT_EQ(AXUIElementGetPid(button.get(), &owner), kAXErrorSuccess);
    EXPECT_EQ(owner, pid);
    if (CFEqual(subrole, CFSTR("AXMinimizeButton"))) {
      EXPECT_TRUE(CFEqual(elementIn(window, kAXMinimizeButtonAttribute).get(), button.get()));
    }
  }
  // The content of a window belongs to it, or is the window itself where nobody looks inside, as on X11.
  const CGRect frame = backing.frame();
  const Element content = elementAt({CGRectGetMinX(frame) + CGRectGetWidth(frame) / 2, CGRectGetMaxY(frame) - 40});
  EXPECT_FALSE(is(content, kAXRoleAttribute, CFSTR("AXButton")));
  EXPECT_TRUE(CFEqual(windowAbove(content).get(), window.get()));
}

TEST_F(ElementsTest, WhatCannotBeAnsweredIsAnErrorAndChangesNothing) {
  const Element window = this->window();
  const CGRect before = backing.frame();
  AXUIElementRef none = nullptr;
  CFStringRef unnamed = nullptr;
  AXUIElementRef element = nullptr;
  CFTypeRef value = nullptr;
  pid_t owner = 3;
  EXPECT_EQ(AXUIElementCopyElementAtPosition(none, 1, 1, &element), kAXErrorIllegalArgument);
  EXPECT_EQ(AXUIElementCopyAttributeValue(none, kAXRoleAttribute, &value), kAXErrorIllegalArgument);
  EXPECT_EQ(AXUIElementCopyAttributeValue(window.get(), unnamed, &value), kAXErrorIllegalArgument);
  EXPECT_EQ(AXUIElementSetAttributeValue(none, kAXPositionAttribute, kCFBooleanTrue), kAXErrorIllegalArgument);
  EXPECT_EQ(AXUIElementGetPid(none, &owner), kAXErrorIllegalArgument);
  EXPECT_EQ(owner, 3);
  // The simulated desktop does not know what a kind of element could have.
  EXPECT_THAT(AXUIElementCopyAttributeValue(window.get(), CFSTR("AXNonsense"), &value),
              testing::AnyOf(kAXErrorAttributeUnsupported, kAXErrorNoValue));
  EXPECT_EQ(element, nullptr);
  EXPECT_EQ(value, nullptr);
  EXPECT_EQ(set(window, CFSTR("AXNonsense"), kCFBooleanTrue), kAXErrorAttributeUnsupported);
  // On a Mac it is the application that has to make something of the wrong type.
  for (CFStringRef attribute : {kAXPositionAttribute, kAXSizeAttribute}) {
    EXPECT_THAT(set(window, attribute, kCFBooleanTrue), testing::AnyOf(kAXErrorIllegalArgument, kAXErrorFailure));
  }
  EXPECT_TRUE(CGRectEqualToRect(backing.frame(), before));
}

TEST_F(ElementsTest, AWindowThatIsGoneAnswersNothing) {
  const Element window = this->window();
  const Element button = buttonOf(CFSTR("AXMinimizeButton"));
  backing.quit();
  // Until the desktop has noticed, there may still be an answer. On a Mac nobody is left to give one.
  CFTypeRef value = nullptr;
  EXPECT_TRUE(backing.waitFor([&] {
    const AXError error = AXUIElementCopyAttributeValue(window.get(), kAXPositionAttribute, &value);
    if (error == kAXErrorSuccess) CFRelease(std::exchange(value, nullptr));
    return error == kAXErrorInvalidUIElement || error == kAXErrorCannotComplete;
  }));
  EXPECT_EQ(value, nullptr);
  EXPECT_FALSE(valueOf(button, kAXRoleAttribute));
  EXPECT_THAT(set(window, kAXPositionAttribute, CGPointMake(1, 1)),
              testing::AnyOf(kAXErrorInvalidUIElement, kAXErrorCannotComplete));
}

TEST_F(ElementsTest, FramesGoWhereTheyAreWanted) {
  const Element window = this->window();
  const auto isAt = [](CGRect one, CGRect other) { return CGRectEqualToRect(one, other); };
  EXPECT_TRUE(isAt(frameOf(window), backing.frame()));
  for (const CGRect& wanted : {CGRectMake(132, 156, 700, 500), CGRectMake(40, 200, 520, 410)}) {
    EXPECT_EQ(set(window, kAXPositionAttribute, wanted.origin), kAXErrorSuccess);
    EXPECT_EQ(set(window, kAXSizeAttribute, wanted.size), kAXErrorSuccess);
    EXPECT_TRUE(isAt(frameOf(window), wanted)) << "whoever reads at once reckons with the outcome";
    EXPECT_TRUE(backing.waitFor([&] { return isAt(backing.frame(), wanted); }));
    EXPECT_TRUE(isAt(frameOf(window), wanted));
  }
}

TEST_F(ElementsTest, WindowsAreMinimizedAndApplicationsHidden) {
  const Element window = this->window();
  for (CFBooleanRef state : {kCFBooleanTrue, kCFBooleanFalse}) {
    EXPECT_EQ(set(window, kAXMinimizedAttribute, state), kAXErrorSuccess);
    EXPECT_TRUE(backing.waitFor([&] { return is(window, kAXMinimizedAttribute, state); }));
  }
  const Element application = applicationElement();
  // What is asked counts at once; the windows follow.
  const auto becomesHidden = [&](CFBooleanRef state) {
    const CFBooleanRef isMinimized = backing.minimizesToHide() ? state : kCFBooleanFalse;
    return backing.waitFor(
        [&] { return is(application, kAXHiddenAttribute, state) && is(window, kAXMinimizedAttribute, isMinimized); });
  };
  EXPECT_TRUE(becomesHidden(kCFBooleanFalse));
  const auto running = ns::RunningApplication::runningApplicationWithProcessIdentifier(pid);
  ASSERT_NE(running, nullptr);
  EXPECT_TRUE(running->hide());
  EXPECT_TRUE(becomesHidden(kCFBooleanTrue));
  for (CFBooleanRef state : {kCFBooleanFalse, kCFBooleanTrue}) {
    EXPECT_EQ(set(application, kAXHiddenAttribute, state), kAXErrorSuccess);
    EXPECT_TRUE(becomesHidden(state));
  }
}

TEST_F(ElementsTest, CreateAndCopyGiveOneReference) {
  CGPoint point{3, 4};
  const auto box = CFRef<AXValueRef>::adopt(AXValueCreate(kAXValueTypeCGPoint, &point));
  EXPECT_EQ(CFGetRetainCount(box.get()), 1);
  CGSize size{9, 9};
  EXPECT_FALSE(AXValueGetValue(box.get(), kAXValueTypeCGSize, &size));
  EXPECT_EQ(size.width, 9) << "untouched";
  EXPECT_EQ(AXValueGetType(box.get()), kAXValueTypeCGPoint);
  const auto key =
      CFRef<CFStringRef>::adopt(CFStringCreateWithCString(kCFAllocatorDefault, "key", kCFStringEncodingUTF8));
  const void* keys[] = {key.get()};
  const void* values[] = {box.get()};
  auto dictionary = CFRef<CFDictionaryRef>::adopt(CFDictionaryCreate(
      kCFAllocatorDefault, keys, values, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  EXPECT_EQ(CFGetRetainCount(box.get()), 2);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("key")), box.get());
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), kCFBooleanTrue), nullptr);
  EXPECT_EQ(CFGetRetainCount(box.get()), 2) << "what is got is lent";
  dictionary = {};
  EXPECT_EQ(CFGetRetainCount(box.get()), 1);
  const Element window = this->window();
  EXPECT_EQ(CFGetRetainCount(valueOf(window, kAXSizeAttribute).get()), 1);
  EXPECT_EQ(CFGetRetainCount(applicationElement().get()), 1);
}

/// What a tap has told. It swallows everything.
struct Told {
  std::vector<CGPoint> places;
  static CGEventRef hear(CGEventTapProxy, CGEventType type, CGEventRef event, void* told) {
    EXPECT_EQ(type, kCGEventLeftMouseDown);
    EXPECT_EQ(CGEventGetFlags(event) & (kCGEventFlagMaskShift | kCGEventFlagMaskCommand), 0U);
    static_cast<Told*>(told)->places.push_back(CGEventGetLocation(event));
    return nullptr;
  }
};

// The clicks are on a button: on X11 a tap is not told of any that cannot be on one.
TEST_F(ElementsTest, ATapHearsOfClicksAndSwallowsThem) {
  const Element window = this->window();
  const CGPoint zoom = placeOf(CFSTR("AXZoomButton"));
  const CGPoint minimize = placeOf(CFSTR("AXMinimizeButton"));
  Told told;
  const auto tap =
      CFRef<CFMachPortRef>::adopt(CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault,
                                                   CGEventMaskBit(kCGEventLeftMouseDown), Told::hear, &told));
  ASSERT_TRUE(tap);
  const auto source =
      CFRef<CFRunLoopSourceRef>::adopt(CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap.get(), 0));
  ASSERT_TRUE(source);
  CFRunLoopAddSource(CFRunLoopGetMain(), source.get(), kCFRunLoopCommonModes);
  for (const bool enable : {true, false, true}) {
    CGEventTapEnable(tap.get(), enable);
    EXPECT_EQ(static_cast<bool>(CGEventTapIsEnabled(tap.get())), enable);
  }
  backing.click(minimize);
  ASSERT_TRUE(backing.waitFor([&] { return told.places.size() == 1; }));
  EXPECT_NEAR(told.places[0].x, minimize.x, 1);
  EXPECT_NEAR(told.places[0].y, minimize.y, 1);
  backing.click(zoom);
  ASSERT_TRUE(backing.waitFor([&] { return told.places.size() == 2; }));
  EXPECT_NEAR(told.places[1].x, zoom.x, 1);
  EXPECT_TRUE(is(window, kAXMinimizedAttribute, kCFBooleanFalse)) << "the click was swallowed";

  for (int time = 0; time < 2; ++time) {
    CFMachPortInvalidate(tap.get());
    EXPECT_FALSE(CFMachPortIsValid(tap.get()));
  }
  EXPECT_FALSE(CFRef<CFRunLoopSourceRef>::adopt(CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap.get(), 0)));
}

TEST(DisplaysTest, AgreeWithTheScreens) {
  contract::Backing::current();
  std::uint32_t count = 0;
  ASSERT_EQ(CGGetActiveDisplayList(0, nullptr, &count), kCGErrorSuccess);
  ASSERT_GT(count, 0U);
  std::vector<CGDirectDisplayID> displays(count + 1);
  ASSERT_EQ(CGGetActiveDisplayList(count + 1, displays.data(), &count), kCGErrorSuccess);
  displays.resize(count);
  std::uint32_t none = 0;
  EXPECT_EQ(CGGetActiveDisplayList(1, displays.data(), &none), kCGErrorSuccess);
  EXPECT_EQ(none, 1U) << "no more than there is room for";
  EXPECT_EQ(std::ranges::count_if(displays, [](auto each) { return CGDisplayIsMain(each) != 0; }), 1);
  const auto screens = ns::Screen::screens();
  EXPECT_EQ(screens.size(), displays.size());
  for (const auto& screen : screens) {
    const auto& number = screen.deviceDescription.at("NSScreenNumber");
    ASSERT_NE(number.as<std::int64_t>(), nullptr);
    const auto display = static_cast<CGDirectDisplayID>(*number.as<std::int64_t>());
    EXPECT_NE(std::ranges::find(displays, display), displays.end());
    EXPECT_FALSE(screen.localizedName.empty());
    EXPECT_GT(CGDisplayBounds(display).size.width * CGDisplayBounds(display).size.height, 0);
    if (CGDisplayIsMain(display)) {
      EXPECT_EQ(CGDisplayBounds(display).origin.x, 0);
      EXPECT_EQ(CGDisplayBounds(display).origin.y, 0);
    }
  }
}

}  // namespace
