// The program as a command: consent, displays, diagnosis, settings of the running instance.
#pragma once

#include <optional>
#include <span>
#include <string>

namespace ostrel {

struct CommandLine {
  enum class Command {
    Run,
    Settings,
    Grant,
    Revoke,
    ConsentStatus,
    Displays,
    Buttons,
    ForgetButtons,
    Doctor,
    Version,
    Help,
    Invalid
  };
  Command command = Command::Run;
  /// The tab of Settings, empty for any; whose title bars ForgetButtons means, empty for all; the message of Invalid.
  std::string argument;
  friend bool operator==(const CommandLine&, const CommandLine&) = default;
};

/// `given` is without the program's name. Arguments that desktops add for their toolkits are ignored.
CommandLine parseCommandLine(std::span<const std::string> given);

/// Carries out what the command line asks. The exit status (0, 1 for what failed or is missing, 2 for a command line
/// that makes no sense), or none when the application is to run in this process: for Run, and for Settings when there
/// is no instance to ask. Main thread only, before the application runs.
std::optional<int> perform(const CommandLine& commandLine);

/// Asks the running instance to show its settings; the exit status for what came of it, none when there is no instance.
std::optional<int> showSettingsOfRunningInstance(const std::string& tab);

/// The current display configuration as JSON, with the margins in effect.
std::string displaysAsJSON();

}  // namespace ostrel
