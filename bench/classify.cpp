// What it costs to classify one click on the simulated desktop: Accessibility calls, and our own time, which is the
// time of the classification less that of putting the same questions to the desktop directly.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "Ostrel/OstrelController.h"
#include "platform/simulated/SimulatedDesktop.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int rounds = 200;
constexpr int clicksPerRound = 500;

/// Microseconds for one call: the median of several rounds.
double microseconds(const std::function<void()>& call) {
  std::vector<double> times;
  for (int round = 0; round < rounds; ++round) {
    const auto start = Clock::now();
    for (int i = 0; i < clicksPerRound; ++i) call();
    times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count() / clicksPerRound);
  }
  std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
  return times[rounds / 2];
}

/// Puts the questions of a journal to the desktop again.
std::function<void()> replay(simulated::SimulatedDesktop& desktop, CGPoint location) {
  struct Question {
    desktop::Element element;
    std::string attribute;  // empty: its process
  };
  std::vector<Question> questions;
  for (const std::string& entry : desktop.journal()) {
    const std::size_t nameStart = entry.find(' ') + 1;
    const std::size_t nameEnd = entry.find(' ', nameStart);
    if (entry.starts_with("hit")) continue;
    const std::string name = entry.substr(nameStart, nameEnd - nameStart);
    const auto& node = desktop.elements().named(name);
    questions.push_back({{simulated::treeElementKind, node.identifier},
                         nameEnd == std::string::npos ? std::string() : entry.substr(nameEnd + 1)});
  }
  return [&desktop, location, questions] {
    desktop::Element element;
    desktop::Value value;
    pid_t pid = 0;
    desktop.elementAtPosition(location, element);
    for (const Question& question : questions) {
      if (question.attribute.empty()) {
        desktop.processIdentifier(question.element, pid);
      } else {
        desktop.attribute(question.element, question.attribute, value);
      }
    }
  };
}

void measure(const char* what, simulated::SimulatedDesktop& desktop, const ostrel::OstrelController& controller,
             CGPoint location) {
  const auto classify = [&] { return controller.actionForClick(kCGEventLeftMouseDown, location); };
  desktop.clearJournal();
  desktop.resetCounts();
  desktop.keepsJournal = true;
  const bool isOurs = classify().has_value();
  const int calls = desktop.totalCount();
  desktop.keepsJournal = false;
  const double whole = microseconds([&] { classify(); });
  const double answers = microseconds(replay(desktop, location));
  std::printf("%-44s %-7s %3d calls %7.3f us, of it ours %7.3f us\n", what, isOurs ? "action" : "passed", calls, whole,
              whole - answers);
}

}  // namespace

int main() {
  simulated::SimulatedDesktop desktop;
  desktop.launch({501, "org.example.editor", "Editor"}, R"(
AXWindow #window 100,80 640x480
  AXButton/AXCloseButton #red 10,5 14x14
  AXButton/AXMinimizeButton #yellow 30,5 14x14
  AXButton/AXZoomButton #green 50,5 14x14
  AXTextArea #content 0,30 640x450
AXWindow #deep 900,700 200x100
  AXGroup #g1
    AXGroup #g2
      AXGroup #g3
        AXGroup #g4
          AXGroup #g5
            AXGroup #g6
              AXGroup #g7
                AXGroup #g8
                  AXGroup #g9
                    AXGroup #g10
                      AXButton/AXZoomButton #deepButton
                        AXImage #i1
                          AXImage #i2
                            AXImage #i3
                              AXImage #i4
                                AXImage #i5
)");
  desktop.defaults()->user["behavior.redButtonHidesWindow"].value = true;
  const auto controller = ostrel::OstrelController::create();
  const auto all = [&](const char* title) {
    std::printf("%s\n", title);
    measure("  bare desktop", desktop, *controller, {1400, 10});
    measure("  content", desktop, *controller, {300, 300});
    measure("  minimise button", desktop, *controller, {135, 90});
    measure("  zoom button", desktop, *controller, {155, 90});
    measure("  close button", desktop, *controller, {115, 90});
    measure("  zoom button at both limits of the walks", desktop, *controller, {950, 750});
  };
  all("nobody excluded");
  controller->addExcludedApp({"org.example.editor", "Editor"});
  all("application excluded");
  return 0;
}
