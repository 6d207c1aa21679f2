// The Core Foundation runtime beneath the C half.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "platform/CFRef.h"
#include "platform/portable/CFObject.h"
#include "platform/simulated/SimulatedDesktop.h"

namespace {

CFRef<CFStringRef> string(const char* text) {
  return CFRef<CFStringRef>::adopt(CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8));
}

TEST(CoreFoundationTest, LastReferenceFreesWhateverThreadHoldsIt) {
  const std::size_t before = cf::liveObjects();
  auto shared = string("shared");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([copy = shared] {
      for (int k = 0; k < 1000; ++k) CFRef<CFStringRef> another = copy;
    });
  }
  shared = {};
  for (std::thread& thread : threads) thread.join();
  threads.clear();
  EXPECT_EQ(cf::liveObjects(), before);
}

TEST(CoreFoundationTest, StringsAreWellFormedOrAbsent) {
  const struct {
    const char* text;
    CFIndex length;  // -1: refused
  } cases[] = {
      {"", 0},
      {"plain", 5},
      {"é\u20AC\U0001F600", 4},
      {"\xC0\x80", -1},
      {"\xED\xA0\x80", -1},
      {"\xE2\x82", -1},
      {"\xF5\x80\x80\x80", -1},
      {"\xF4\x90\x80\x80", -1},
      {"\x80", -1},
      {"\xE0\x80\x80", -1},
  };
  for (const auto& each : cases) {
    const auto made = string(each.text);
    EXPECT_EQ(made ? CFStringGetLength(made.get()) : -1, each.length) << each.text;
    if (!made) continue;
    const std::string expected = each.text;
    std::string buffer(expected.size() + 1, 'x');
    const auto size = static_cast<CFIndex>(buffer.size());
    EXPECT_LE(size - 1, CFStringGetMaximumSizeForEncoding(each.length, kCFStringEncodingUTF8));
    EXPECT_TRUE(CFStringGetCString(made.get(), buffer.data(), size, kCFStringEncodingUTF8));
    EXPECT_EQ(buffer.c_str(), expected);
    EXPECT_FALSE(CFStringGetCString(made.get(), buffer.data(), size - 1, kCFStringEncodingUTF8));
  }
}

TEST(CoreFoundationTest, NumbersTellWhenAConversionLoses) {
  const struct {
    double real;
    std::int64_t nearest;
    bool isExact;
  } cases[] = {
      {1.0, 1, true},
      {1.5, 1, false},
      {1e300, std::numeric_limits<std::int64_t>::max(), false},
      {-9223372036854775808.0, std::numeric_limits<std::int64_t>::min(), true},
      {std::numeric_limits<double>::quiet_NaN(), 0, false},
  };
  for (const auto& each : cases) {
    const auto number = CFRef<CFNumberRef>::adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &each.real));
    std::int64_t integer = -1;
    EXPECT_EQ(CFNumberGetValue(number.get(), kCFNumberSInt64Type, &integer), each.isExact) << each.real;
    EXPECT_EQ(integer, each.nearest) << each.real;
  }
  const std::int64_t large = (std::int64_t{1} << 53) + 1;
  const auto number = CFRef<CFNumberRef>::adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &large));
  double real = 0;
  EXPECT_FALSE(CFNumberGetValue(number.get(), kCFNumberDoubleType, &real));
}

TEST(CoreFoundationTest, AccessibilityRefusesWhatIsNoElement) {
  simulated::SimulatedDesktop desktop;
  const auto text = string("no element");
  const auto* wrong = reinterpret_cast<AXUIElementRef>(text.get());
  AXUIElementRef element = nullptr;
  CFTypeRef value = nullptr;
  pid_t pid = 3;
  EXPECT_EQ(AXUIElementCopyElementAtPosition(wrong, 1, 1, &element), kAXErrorIllegalArgument);
  EXPECT_EQ(AXUIElementCopyAttributeValue(wrong, kAXRoleAttribute, &value), kAXErrorIllegalArgument);
  EXPECT_EQ(AXUIElementSetAttributeValue(wrong, kAXRoleAttribute, kCFBooleanTrue), kAXErrorIllegalArgument);
  EXPECT_EQ(AXUIElementGetPid(wrong, &pid), kAXErrorIllegalArgument);
  EXPECT_EQ(desktop.totalCount(), 0);
  EXPECT_EQ(pid, 3);
}

TEST(CoreFoundationTest, ConsentIsAskedForOnlyWhenWantedAndMissing) {
  simulated::SimulatedDesktop desktop;
  const auto ask = [](CFBooleanRef prompt) {
    const void* keys[] = {kAXTrustedCheckOptionPrompt};
    const void* values[] = {prompt};
    const auto options = CFRef<CFDictionaryRef>::adopt(CFDictionaryCreate(
        kCFAllocatorDefault, keys, values, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    return AXIsProcessTrustedWithOptions(options.get()) != 0;
  };
  EXPECT_TRUE(ask(kCFBooleanTrue));
  desktop.isTrusted = false;
  EXPECT_FALSE(ask(kCFBooleanFalse));
  EXPECT_FALSE(AXIsProcessTrustedWithOptions(nullptr));
  EXPECT_EQ(desktop.promptCount(), 0);
  EXPECT_FALSE(ask(kCFBooleanTrue));
  EXPECT_EQ(desktop.promptCount(), 1);
}

}  // namespace
