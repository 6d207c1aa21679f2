// What a screen reader or a magnifier knows of the programs on a desktop: which controls there are, what they say, and
// where they are.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/desktop/DesktopSession.h"

namespace desktoptest {

/// A control that is on the screen.
struct Control {
  std::string role;
  std::string name;
  Frame place;
  std::vector<std::string> states;
  /// A text, a number or the description.
  std::string value;

  bool is(const std::string& state) const;
};

/// Listens from its construction on; programs that start later know that and speak. Throws std::runtime_error when it
/// gets no answer.
class AssistiveTool {
 public:
  explicit AssistiveTool(const DesktopSession& desktop);

  /// All of a program, window by window, an open menu last.
  std::vector<Control> controls(const std::string& program = "ostrel");
  std::optional<Control> find(const std::string& role, const std::string& name, const std::string& program = "ostrel");
  /// Has Ostrel do what a click on the control does. False when there is no such control.
  bool press(const std::string& role, const std::string& name);

 private:
  std::string answer();
  std::optional<Control> control();

  support::ChildProcess process_;
};

}  // namespace desktoptest
