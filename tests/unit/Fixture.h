// A desktop with one ordinary window on it, and a controller that watches it.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <string>

#include "Ostrel/OstrelController.h"
#include "platform/simulated/RunLoop.h"
#include "platform/simulated/SimulatedDesktop.h"

inline constexpr pid_t editorPID = 501;
inline constexpr const char* editorWindow = R"(
AXWindow #window 100,80 640x480
  AXButton/AXCloseButton #red 10,5 14x14
  AXButton/AXMinimizeButton #yellow 30,5 14x14
  AXButton/AXZoomButton #green 50,5 14x14
  AXTextArea #content 0,30 640x450
)";

class DesktopTest : public testing::Test {
 protected:
  DesktopTest() { desktop.launch({editorPID, "org.example.editor", "Editor"}, editorWindow); }
  ~DesktopTest() override {
    controller.reset();
    simulated::RunLoop::runPending();
  }

  /// Clicks, lets what was queued run and tells whether the click was passed on.
  bool click(std::string_view element, CGEventFlags flags = 0, CGEventType type = kCGEventLeftMouseDown) {
    const bool passed = desktop.click(element, flags, type);
    simulated::RunLoop::runPending();
    return passed;
  }
  void store(const std::string& key, ns::PropertyList value) { desktop.defaults()->user[key] = std::move(value); }

  simulated::SimulatedDesktop desktop;
  std::shared_ptr<ostrel::OstrelController> controller = ostrel::OstrelController::create();
};

/// A test whose controller has its tap.
class RunningTest : public DesktopTest {
 protected:
  RunningTest() { controller->startIfPossible(); }
};

inline bool operator==(CGPoint one, CGPoint other) { return one.x == other.x && one.y == other.y; }
inline bool operator==(CGRect one, CGRect other) { return CGRectEqualToRect(one, other); }
inline void PrintTo(const CGRect& rect, std::ostream* stream) {
  *stream << rect.origin.x << ',' << rect.origin.y << ' ' << rect.size.width << 'x' << rect.size.height;
}

/// The seed of this run's random tests: OSTREL_TEST_SEED, or a new one each time. Every failure shows it.
inline unsigned testSeed() {
  static const unsigned seed = [] {
    const char* given = std::getenv("OSTREL_TEST_SEED");
    return given != nullptr ? static_cast<unsigned>(std::stoul(given)) : std::random_device{}();
  }();
  return seed;
}
