#include "tests/desktop/AssistiveTool.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace desktoptest {

bool Control::is(const std::string& state) const { return std::ranges::find(states, state) != states.end(); }

AssistiveTool::AssistiveTool(const DesktopSession& desktop)
    : process_({"/usr/bin/python3", OSTREL_DESKTOP_TESTS "/assistive_tool.py"}, desktop.environment()) {
  answer();
}

std::string AssistiveTool::answer() {
  auto line = process_.readLine(support::patience);
  if (!line) throw std::runtime_error("the assistive tool does not answer");
  return std::move(*line);
}

std::optional<Control> AssistiveTool::control() {
  const std::string line = answer();
  if (line.empty()) return std::nullopt;
  std::istringstream row(line);
  Control control;
  std::getline(row, control.role, '\t');
  std::getline(row, control.name, '\t');
  row >> control.place.x >> control.place.y >> control.place.width >> control.place.height >> std::ws;
  std::string states;
  std::getline(row, states, '\t');
  std::istringstream words(states);
  for (std::string word; std::getline(words, word, ',');) control.states.push_back(word);
  std::getline(row, control.value);
  return control;
}

std::vector<Control> AssistiveTool::controls(const std::string& program) {
  process_.writeLine("list\t" + program);
  std::vector<Control> result;
  while (auto next = control()) result.push_back(std::move(*next));
  return result;
}

std::optional<Control> AssistiveTool::find(const std::string& role, const std::string& name,
                                           const std::string& program) {
  process_.writeLine("find\t" + program + '\t' + role + '\t' + name);
  return control();
}

bool AssistiveTool::press(const std::string& role, const std::string& name) {
  process_.writeLine("press\tostrel\t" + role + '\t' + name);
  return control().has_value();
}

}  // namespace desktoptest
