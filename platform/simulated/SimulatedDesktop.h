// A desktop in memory: tests build it, break it, click on it and read what was asked of it.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/portable/Desktop.h"
#include "platform/simulated/ElementTree.h"
#include "platform/simulated/Fault.h"
#include "platform/simulated/UserDefaults.h"
#include "platform/simulated/Workspace.h"

namespace simulated {

class SimulatedTap;

/// The desktop of the process while it exists. Everything that uses it must be gone before it. Main thread only.
class SimulatedDesktop final : public desktop::Desktop {
 public:
  /// With one display of 1440 by 900 points, a trusted process and no application.
  SimulatedDesktop();
  ~SimulatedDesktop() override;
  SimulatedDesktop(const SimulatedDesktop&) = delete;
  SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;
  static SimulatedDesktop& installed();

  // --- Building it ---

  /// One display a line, in the system's order: its identifier, "its name", its place, "main", and vendor/model/serial:
  ///   1 "Built-in Display" 0,0 1440x900 main 610/160/0
  void setDisplays(std::string_view text);
  /// Starts an application with the windows of an element text, in front of all others.
  void launch(const desktop::Application& application, std::string_view elements = {});
  void quit(pid_t pid);
  ElementTree& elements() { return elements_; }
  /// Takes the named element and all below it away.
  void close(std::string_view name) { elements_.remove(elements_.named(name).identifier); }

  const std::shared_ptr<UserDefaults>& defaults() const { return defaults_; }
  const std::shared_ptr<Workspace>& workspace() const { return workspace_; }

  bool isTrusted = true;
  bool refusesTap = false;
  bool refusesRunLoopSource = false;
  bool refusesHiding = false;
  /// What the user-interface side says of the displays; setDisplays makes it agree with them.
  std::vector<desktop::Screen> screenList;

  /// What is known of title bars; forgetting a painter takes its lines away.
  std::vector<ns::DiagnosticLine> titleBarLines;

  // --- Breaking it ---

  void inject(Fault fault) { faults_.emplace_back(std::move(fault), 0); }
  void clearFaults() { faults_.clear(); }

  // --- Using it ---

  /// A mouse-down, handed to the enabled taps as the window server does. True when it reaches what is under it. A tap
  /// that takes longer than 50 ms is disabled and told so, and the click passes.
  bool click(CGPoint location, CGEventFlags flags = 0, CGEventType type = kCGEventLeftMouseDown);
  /// In the middle of the named element.
  bool click(std::string_view name, CGEventFlags flags = 0, CGEventType type = kCGEventLeftMouseDown);
  /// Disables every tap and tells it why: kCGEventTapDisabledByTimeout or -ByUserInput. True when the notice was passed
  /// on by all.
  bool disableTaps(CGEventType notice);
  /// Disables every tap without a notice.
  void silenceTaps();
  /// Drops every tap for good, without a notice either.
  void dropTaps();

  // --- Reading it ---

  CGRect frame(std::string_view name) { return elements_.frame(elements_.named(name)); }
  bool isHidden(pid_t pid) const;
  std::size_t tapCount() const { return taps_.size(); }
  std::size_t enabledTapCount() const;
  /// The kinds of events that the taps ask for, together.
  CGEventMask tapMask() const;
  int promptCount() const { return promptCount_; }
  /// How often a call was made, faults included.
  int count(Call call) const;
  int totalCount() const;
  void resetCounts() { counts_.clear(); }
  /// What was asked and written, in order, such as "hit 10,20", "get yellow AXRole", "set window AXPosition 32,56",
  /// "pid window", "hide 501". Kept only when wanted, for speed.
  const std::vector<std::string>& journal() const { return journal_; }
  std::vector<std::string> writes() const;
  void clearJournal() { journal_.clear(); }
  bool keepsJournal = true;

  // --- desktop::Desktop ---

  bool isProcessTrusted() override { return isTrusted; }
  void promptForTrust() override { ++promptCount_; }
  desktop::Element systemWideElement() override;
  desktop::Element applicationElement(pid_t pid) override;
  AXError elementAtPosition(CGPoint position, desktop::Element& element) override;
  AXError attribute(const desktop::Element& element, std::string_view name, desktop::Value& value) override;
  AXError setAttribute(const desktop::Element& element, std::string_view name, const desktop::Value& value) override;
  AXError processIdentifier(const desktop::Element& element, pid_t& pid) override;
  std::unique_ptr<desktop::EventTap> createEventTap(CGEventMask mask, desktop::EventTapHandler handler) override;
  bool allowsRunLoopSource() override { return !refusesRunLoopSource; }
  CGError activeDisplays(std::vector<CGDirectDisplayID>& displays) override;
  std::optional<desktop::Display> display(CGDirectDisplayID identifier) override;
  std::vector<desktop::Screen> screens() override { return screenList; }
  std::vector<ns::DiagnosticLine> titleBarButtons() override { return titleBarLines; }
  std::size_t forgetTitleBarButtons(std::string_view painter) override;
  std::vector<desktop::Application> runningApplications() override;
  bool isApplicationRunning(pid_t pid) override;
  bool hideApplication(pid_t pid) override;
  void observeApplications(std::function<void(desktop::ApplicationChange, pid_t)> observer) override;

 private:
  friend class SimulatedTap;

  /// Counts a call and lets the faults have their way with it. The returned fault, if any, holds the answer.
  std::optional<Fault> meet(Call call, std::string_view element, std::string_view attribute);
  std::string nameOf(const desktop::Element& element);
  void note(const std::string& entry);

  SimulatedDesktop* const previous_;
  ElementTree elements_;
  std::vector<std::pair<CGDirectDisplayID, desktop::Display>> displays_;
  std::vector<desktop::Application> applications_;
  std::map<pid_t, std::map<std::string, desktop::Value, std::less<>>> applicationAttributes_;
  std::vector<std::function<void(desktop::ApplicationChange, pid_t)>> observers_;
  std::vector<SimulatedTap*> taps_;
  std::vector<std::pair<Fault, int>> faults_;  // with how often each has matched
  std::map<Call, int> counts_;
  std::vector<std::string> journal_;
  int promptCount_ = 0;
  const std::shared_ptr<UserDefaults> defaults_ = std::make_shared<UserDefaults>();
  std::shared_ptr<Workspace> workspace_;
};

}  // namespace simulated
