// The permission taken back while the application runs. Changes the record of the machine that it runs on, so that it
// is no part of the usual tests; see consent.sh.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#import "tests/macos/Target.h"

namespace {

using desk::waitFor;

/// Longer than the application takes to notice, which looks every two seconds.
constexpr double notice = 15;

class ConsentTest : public testing::Test {
 protected:
  /// Through Launch Services: a program that a shell starts lives by the shell's permission.
  void SetUp() override {
    ASSERT_TRUE(AXIsProcessTrusted()) << "what runs this test needs the permission, too";
    change("grant");
    ASSERT_EQ(std::system("open '" OSTREL_BUNDLE "'"), 0);
    ASSERT_TRUE(waitFor([] { return application() != nil; }));
    ostrel_ = application();
    ASSERT_TRUE(waitFor([this] { return hasTap(); }, notice));
  }
  void TearDown() override { [ostrel_ terminate]; }

  static void change(const std::string& what) {
    ASSERT_EQ(std::system((OSTREL_CONSENT_SCRIPT " " + what + " " OSTREL_BUNDLE_IDENTIFIER).c_str()), 0);
  }
  static NSRunningApplication* application() {
    return [NSRunningApplication runningApplicationsWithBundleIdentifier:@OSTREL_BUNDLE_IDENTIFIER].firstObject;
  }
  bool hasTap() const {
    return std::ranges::any_of(desk::tapsOf(ostrel_.processIdentifier), [](const auto& tap) { return tap.enabled; });
  }
  /// Whether the status item says that the permission is missing.
  bool showsWarning() const {
    const auto item = desk::statusItem(ostrel_.processIdentifier);
    return item && desk::text(item.get(), kAXHelpAttribute) != "Ostrel";
  }

 private:
  NSRunningApplication* ostrel_ = nil;
};

TEST_F(ConsentTest, TakenBackItLeavesEveryClickToTheApplicationUntilItIsGivenAgain) {
  desk::Target target(60, 140, {"keep"});
  const CGRect before = target.frame().value();
  change("withdraw");
  ASSERT_TRUE(waitFor([this] { return showsWarning(); }, notice));
  for (int presses = 1; presses <= 3; ++presses) {
    target.click(kAXMinimizeButtonAttribute);
    EXPECT_TRUE(waitFor([&] { return target.presses() == presses; })) << "the mouse stands still";
  }
  EXPECT_TRUE(desk::isAt(target.frame(), before));
  EXPECT_FALSE(hasTap()) << "it would come on again at each notice";
  change("grant");
  EXPECT_TRUE(waitFor([this] { return hasTap() && !showsWarning(); }, notice));
  target.click(kAXMinimizeButtonAttribute);
  EXPECT_TRUE(waitFor([&] { return desk::isAt(target.frame(), desk::centered(before)); }));
}

}  // namespace
