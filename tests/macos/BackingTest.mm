// What the bridge to the frameworks promises beyond what they do by themselves.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/SingleInstance.h"
#import "platform/macos/Bridge.h"
#import "platform/macos/Reopening.h"
#import "platform/macos/ViewNative.h"
#import "tests/macos/Desk.h"

namespace {

CGFloat opacity(NSColor* color, NSAppearanceName look) {
  __block CGFloat opacity = -1;
  [[NSAppearance appearanceNamed:look] performAsCurrentDrawingAppearance:^{
    opacity = [color colorUsingColorSpace:NSColorSpace.sRGBColorSpace].alphaComponent;
  }];
  return opacity;
}

TEST(ColorTest, OpacityIsMultipliedWithTheNamedColoursOwn) {
  NSColor* half = ns::toNSColor(ns::Color::separatorColor().colorWithAlphaComponent(0.5));
  for (NSAppearanceName look in @[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]) {
    const CGFloat own = opacity(NSColor.separatorColor, look);
    ASSERT_LT(own, 1) << "the test needs a translucent colour";
    EXPECT_NEAR(opacity(half, look), own / 2, 0.01);
  }
}

TEST(TargetTest, AControlMayBeReleasedByItsOwnAction) {
  __weak NSButton* seen = nil;
  @autoreleasepool {
    NSButton* button = [NSButton buttonWithTitle:@"Remove" target:nil action:nil];
    OstrelTarget* target = nil;
    target = [[OstrelTarget alloc] initWithAction:[&] {
      button = nil;
      target = nil;
    }];
    seen = button;
    button.target = target;
    button.action = OstrelTarget.action;
    __unsafe_unretained OstrelTarget* const called = target;
    [called callClosure:button];
    EXPECT_TRUE(button == nil);
    EXPECT_TRUE(seen != nil) << "the press that it is in the middle of would go on in something gone";
  }
  EXPECT_TRUE(desk::waitFor([&] { return seen == nil; })) << "kept for good";
}

TEST(SingleInstanceTest, AnswersLaterStartsAndReopenings) {
  EXPECT_EQ(ns::askRunningInstance("status").status, ns::InstanceReply::Status::NotRunning);
  std::vector<std::string> requests;
  auto claim = ns::SingleInstance::claim([&](const std::string& request) {
    requests.push_back(request);
    return "answer to " + request;
  });
  ASSERT_NE(claim, nullptr);
  // Another thread stands in for the other process: this one answers.
  ns::InstanceReply reply;
  std::atomic<bool> isDone = false;
  std::thread asking([&] {
    reply = ns::askRunningInstance("settings Überblick");
    isDone = true;
  });
  EXPECT_TRUE(desk::waitFor([&] { return isDone.load(); }));
  asking.join();
  EXPECT_EQ(reply.status, ns::InstanceReply::Status::Answered);
  EXPECT_EQ(reply.text, "answer to settings Überblick");
  ns::reopen();
  EXPECT_EQ(requests, (std::vector<std::string>{"settings Überblick", ""}));
  claim.reset();
  ns::reopen();
  EXPECT_EQ(requests.size(), 2U);
  EXPECT_EQ(ns::askRunningInstance("status").status, ns::InstanceReply::Status::NotRunning);
}

}  // namespace
