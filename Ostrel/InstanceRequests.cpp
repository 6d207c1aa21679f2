#include "Ostrel/InstanceRequests.h"

#include <algorithm>

#include "Ostrel/Tab.h"
#include "platform/HelperProcess.h"

namespace ostrel {
namespace {

constexpr std::string_view settingsWord = "settings";
constexpr std::string_view forgetWord = "forget";

/// One line of the answer: title, tab stop, value. A name with a line feed in it must not make two lines.
std::string line(std::string title, std::string value) {
  std::replace(value.begin(), value.end(), '\n', ' ');
  std::replace_if(
      title.begin(), title.end(), [](char c) { return c == '\n' || c == '\t'; }, ' ');
  return title + '\t' + value + '\n';
}

std::string titleBarButtons(std::size_t mostLines) {
  std::string text;
  for (const auto& [title, value] : ns::titleBarButtonDiagnostics()) {
    if (mostLines-- == 0) break;
    text += line(title, value);
  }
  return text;
}

std::string tapState(const OstrelController& controller) {
  if (controller.isTapInstalled()) return "installed";
  return "not installed: " + controller.lastError().value_or("not started yet");
}

std::string watchdogState() {
  const auto isRunning = ns::isHelperProcessRunning();
  return isRunning ? line("Watchdog", *isRunning ? "running" : "not running") : "";
}

std::string excludedProcesses(const OstrelController& controller) {
  const std::unordered_set<pid_t> processes = controller.excludedPIDs();
  std::vector<pid_t> sorted(processes.begin(), processes.end());
  std::sort(sorted.begin(), sorted.end());
  std::string text;
  for (const pid_t pid : sorted) text += (text.empty() ? "" : ", ") + std::to_string(pid);
  return text.empty() ? "none" : text;
}

std::string excludedApplications(const OstrelController& controller) {
  std::string text;
  for (const ExcludedApp& app : controller.excludedApps()) text += (text.empty() ? "" : ", ") + app.name;
  return text.empty() ? "none" : text;
}

}  // namespace

bool isTabName(std::string_view name) { return tabWithRawValue(name).has_value(); }

std::string settingsRequest(std::string_view tab) {
  return std::string(settingsWord) + (tab.empty() ? "" : " ") + std::string(tab);
}

std::string forgetRequest(std::string_view painter) {
  return std::string(forgetWord) + (painter.empty() ? "" : " ") + std::string(painter);
}

std::string answerRequest(std::string_view request, const OstrelController& controller,
                          const std::function<void(const std::string& tab)>& openSettings) {
  if (request == statusRequest) {
    return line("Event tap", tapState(controller)) + line("Last error", controller.lastError().value_or("none")) +
           watchdogState() + titleBarButtons(1) + line("Excluded apps", excludedApplications(controller)) +
           line("Excluded processes", excludedProcesses(controller));
  }
  if (request == buttonsRequest) return titleBarButtons(std::string::npos);
  if (request == forgetWord || request.starts_with(std::string(forgetWord) + ' ')) {
    request.remove_prefix(std::min(request.size(), forgetWord.size() + 1));
    const auto count = ns::forgetTitleBarButtons(request);
    return count ? std::to_string(*count) : "";
  }
  if (request.empty()) request = settingsWord;
  if (request.substr(0, settingsWord.size()) == settingsWord) {
    request.remove_prefix(std::min(request.size(), settingsWord.size() + 1));
    if (request.empty() || isTabName(request)) {
      openSettings(std::string(request));
      return "shown";
    }
  }
  return std::string(unknownRequest);
}

std::vector<ns::DiagnosticLine> answeredLines(std::string_view answer) {
  std::vector<ns::DiagnosticLine> lines;
  while (!answer.empty()) {
    const auto end = std::min(answer.find('\n'), answer.size());
    const std::string_view one = answer.substr(0, end);
    const auto separator = std::min(one.find('\t'), one.size());
    const auto value = std::min(separator + 1, one.size());
    lines.push_back({std::string(one.substr(0, separator)), std::string(one.substr(value))});
    answer.remove_prefix(std::min(end + 1, answer.size()));
  }
  return lines;
}

}  // namespace ostrel
