#include "Ostrel/CommandLine.h"

#include <algorithm>
#include <iomanip>
#include <iostream>

#include "Ostrel/Commit.h"
#include "Ostrel/DisplayCatalogue.h"
#include "Ostrel/InstanceRequests.h"
#include "Ostrel/JSONText.h"
#include "Ostrel/MarginStore.h"
#include "platform/Bundle.h"
#include "platform/Consent.h"
#include "platform/SingleInstance.h"
#include "platform/Text.h"

namespace ostrel {
namespace {

using Command = CommandLine::Command;

constexpr std::string_view usage = R"(Usage: ostrel [command]

Without a command Ostrel starts; if it runs already, its settings open.

  settings [general|displays|exclude|about]   open the settings
  accessibility grant|revoke|status           allow Ostrel to handle clicks, or not
  displays                                    the displays and their margins, as JSON
  buttons                                     what is known of each window's buttons, and where from
  buttons forget [NAME]                       forget what clicks taught about NAME's title bars, or all
  doctor                                      what Ostrel sees of this desktop, and what is missing
  --version                                   the version, and the commit when it is not a release
  --help                                      this text
)";

/// What the controller calls it when the system refuses the event tap.
constexpr std::string_view tapRefused = "event tap could not start";

std::string versionText() {
  const auto version = ns::Bundle::mainBundle()->objectForInfoDictionaryKey("CFBundleShortVersionString");
  const std::string* text = version ? version->as<std::string>() : nullptr;
  const std::string commit = builtFromCommit;
  return "Ostrel " + (text == nullptr ? "?" : *text) + (commit.empty() ? "" : " (" + commit + ")");
}

int fail(const std::string& message) {
  std::cerr << "ostrel: " << message << '\n';
  return 1;
}

int changeConsent(bool granted) {
  if (const auto problem = ns::setAccessibilityGranted(granted)) return fail(*problem);
  std::cout << (granted ? "Granted: Ostrel handles clicks on title-bar buttons.\n"
                        : "Revoked: Ostrel leaves every click alone.\n");
  return 0;
}

int showConsent() {
  const bool granted = ns::isAccessibilityGranted();
  std::cout << (granted ? "granted" : "missing") << '\n';
  return granted ? 0 : 1;
}

int showDisplays() {
  if (const auto reason = ns::desktopUnavailableReason()) return fail(*reason);
  std::cout << displaysAsJSON();
  return 0;
}

std::vector<ns::DiagnosticLine> displayLines() {
  std::vector<ns::DiagnosticLine> lines;
  for (const DisplayInfo& display : activeDisplays()) {
    const auto number = [](CGFloat value) { return jsonNumber(value); };
    lines.push_back({lines.empty() ? "Displays" : "",
                     display.name + ", " + number(display.bounds.size.width) + " × " +
                         number(display.bounds.size.height) + " at (" + number(display.bounds.origin.x) + ", " +
                         number(display.bounds.origin.y) + "), scale " + number(displayScale(display.id))});
  }
  if (lines.empty()) lines.push_back({"Displays", "none"});
  return lines;
}

/// A name that is no name but instructs the terminal must not reach it.
std::string withoutControls(std::string_view text) {
  std::u32string scalars = ns::unicodeScalars(text);
  std::ranges::replace_if(
      scalars, [](char32_t c) { return c < U' ' || (c >= 0x7F && c < 0xA0); }, U' ');
  return ns::utf8(scalars);
}

void print(const std::vector<ns::DiagnosticLine>& lines) {
  for (const auto& [title, value] : lines)
    std::cout << std::left << std::setw(20) << withoutControls(title) << withoutControls(value) << '\n';
}

int failOfAnotherVersion() { return fail("the Ostrel that is running is of another version; start it anew"); }

int showButtons() {
  const ns::InstanceReply reply = ns::askRunningInstance(buttonsRequest);
  switch (reply.status) {
    case ns::InstanceReply::Status::NotRunning:
      return fail("Ostrel is not running, so nobody knows the windows' buttons");
    case ns::InstanceReply::Status::Silent:
      return fail("Ostrel is running, but it does not answer");
    case ns::InstanceReply::Status::Answered:
      break;
  }
  if (reply.text == unknownRequest) return failOfAnotherVersion();
  print(answeredLines(reply.text));
  return 0;
}

/// The running instance forgets, or this process on its behalf: what was learned lies on the disk.
int forgetButtons(const std::string& painter) {
  const ns::InstanceReply reply = ns::askRunningInstance(forgetRequest(painter));
  std::string count = reply.text;
  if (reply.status == ns::InstanceReply::Status::Silent) return fail("Ostrel is running, but it does not answer");
  if (reply.status == ns::InstanceReply::Status::NotRunning) {
    if (const auto reason = ns::desktopUnavailableReason()) return fail(*reason);
    const auto forgotten = ns::forgetTitleBarButtons(painter);
    count = forgotten ? std::to_string(*forgotten) : "";
  }
  if (count == unknownRequest) return failOfAnotherVersion();
  if (count.empty()) return fail("nothing has to be learned on this system");
  if (count == "0" && !painter.empty()) return fail("nothing was learned about title bars of \"" + painter + "\"");
  std::cout << "Forgotten: " << count << (count == "1" ? " kind" : " kinds") << " of title bars.\n";
  return 0;
}

int diagnose() {
  std::vector<ns::DiagnosticLine> lines = ns::desktopDiagnostics();
  const auto append = [&](const std::vector<ns::DiagnosticLine>& more) {
    lines.insert(lines.end(), more.begin(), more.end());
  };
  std::vector<ns::DiagnosticLine> lacks;
  const bool isGranted = ns::isAccessibilityGranted();
  append({{"Consent", isGranted ? "granted" : "missing"}});
  if (!isGranted) {
    lacks.push_back({"Ostrel may not handle clicks",
                     "allow it with \"ostrel accessibility grant\" or \"Grant access…\" in the settings"});
  }
  const ns::InstanceReply reply = ns::askRunningInstance(statusRequest);
  switch (reply.status) {
    case ns::InstanceReply::Status::NotRunning:
      append({{"Ostrel", "not running"}});
      lacks.push_back({"Ostrel is not running", "start it from the menu or with \"ostrel\""});
      break;
    case ns::InstanceReply::Status::Silent:
      append({{"Ostrel", "running, but it does not answer"}});
      lacks.push_back({"Ostrel does not answer", "end its process and start it anew"});
      break;
    case ns::InstanceReply::Status::Answered:
      append({{"Ostrel", "running"}});
      append(answeredLines(reply.text));
      if (isGranted && reply.text.find(tapRefused) != std::string::npos) {
        lacks.push_back({"another program takes all presses of the mouse button for itself",
                         "quit that program; Ostrel tries again every two seconds"});
      } else if (isGranted && reply.text.find("not installed") != std::string::npos) {
        lacks.push_back({"Ostrel does not handle clicks yet", "it begins within two seconds of your consent"});
      }
      break;
  }
  const auto reason = ns::desktopUnavailableReason();
  if (!reason) {
    append(displayLines());
  }
  std::cout << versionText() << "\n\n";
  print(lines);
  const auto more = ns::desktopLacks();
  lacks.insert(lacks.end(), more.begin(), more.end());
  std::cout << '\n';
  for (const auto& [lack, remedy] : lacks) std::cout << "Missing: " << withoutControls(lack) << ": " << remedy << ".\n";
  if (reason) return fail(*reason);
  if (lacks.empty()) std::cout << "Nothing is missing.\n";
  return lacks.empty() ? 0 : 1;
}

/// Leaves out what desktops, session managers and debuggers add to the command line of any program that they start: it
/// is for the toolkit, and no reason not to run.
std::vector<std::string> withoutForeign(std::span<const std::string> arguments) {
  std::vector<std::string> own;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument.starts_with("-psn_")) continue;
    const bool isSetting = argument.starts_with("-NS") || argument.starts_with("-Apple") || argument == "-session";
    if (!isSetting) {
      own.push_back(argument);
    } else if (i + 1 < arguments.size() && !arguments[i + 1].starts_with('-')) {
      ++i;  // its value
    }
  }
  return own;
}

}  // namespace

CommandLine parseCommandLine(std::span<const std::string> given) {
  const std::vector<std::string> arguments = withoutForeign(given);
  const auto invalid = [](std::string message) { return CommandLine{Command::Invalid, std::move(message)}; };
  if (arguments.empty()) return {};
  const std::string& command = arguments[0];
  const std::string argument = arguments.size() > 1 ? arguments[1] : std::string();
  std::size_t expected = 1;
  CommandLine result;
  if (command == "--version") {
    result.command = Command::Version;
  } else if (command == "--help" || command == "-h") {
    result.command = Command::Help;
  } else if (command == "displays") {
    result.command = Command::Displays;
  } else if (command == "doctor") {
    result.command = Command::Doctor;
  } else if (command == "buttons") {
    result.command = arguments.size() > 1 ? Command::ForgetButtons : Command::Buttons;
    if (arguments.size() > 1 && argument != "forget") return invalid("buttons takes forget, or nothing");
    if (arguments.size() > 2) {
      if (arguments[2].empty()) return invalid("buttons forget takes a name, or nothing for all");
      result.argument = arguments[2];
    }
    expected = 3;
  } else if (command == "settings") {
    if (arguments.size() > 1 && !isTabName(argument)) return invalid("there is no settings tab \"" + argument + "\"");
    result = {Command::Settings, argument};
    expected = 2;
  } else if (command == "accessibility") {
    expected = 2;
    if (argument == "grant") {
      result.command = Command::Grant;
    } else if (argument == "revoke") {
      result.command = Command::Revoke;
    } else if (argument == "status") {
      result.command = Command::ConsentStatus;
    } else {
      return invalid("accessibility takes grant, revoke or status");
    }
  } else {
    return invalid("unknown command \"" + command + "\"");
  }
  if (arguments.size() > expected) return invalid("unexpected argument \"" + arguments[expected] + "\"");
  return result;
}

std::optional<int> showSettingsOfRunningInstance(const std::string& tab) {
  switch (ns::askRunningInstance(settingsRequest(tab)).status) {
    case ns::InstanceReply::Status::Answered:
      return 0;
    case ns::InstanceReply::Status::Silent:
      return fail("Ostrel is running, but it does not answer");
    case ns::InstanceReply::Status::NotRunning:
      break;
  }
  return std::nullopt;
}

std::optional<int> perform(const CommandLine& commandLine) {
  switch (commandLine.command) {
    case Command::Run:
    case Command::Settings:
      if (const auto reason = ns::desktopUnavailableReason()) return fail(*reason);
      return showSettingsOfRunningInstance(commandLine.argument);
    case Command::Grant:
      return changeConsent(true);
    case Command::Revoke:
      return changeConsent(false);
    case Command::ConsentStatus:
      return showConsent();
    case Command::Displays:
      return showDisplays();
    case Command::Buttons:
      return showButtons();
    case Command::ForgetButtons:
      return forgetButtons(commandLine.argument);
    case Command::Doctor:
      return diagnose();
    case Command::Version:
      std::cout << versionText() << '\n';
      return 0;
    case Command::Help:
      std::cout << usage;
      return 0;
    case Command::Invalid:
      break;
  }
  std::cerr << "ostrel: " << commandLine.argument << "\n\n" << usage;
  return 2;
}

std::string displaysAsJSON() {
  const DisplayConfigurationInfo configuration = currentDisplayConfiguration();
  const auto defaults = ns::UserDefaults::standardUserDefaults();
  std::string displays;
  for (const DisplayInfo& display : configuration.displays) {
    const WindowMargins margins = loadMargins(display, configuration, *defaults);
    const CGRect& bounds = display.bounds;
    displays += displays.empty() ? "\n" : ",\n";
    displays +=
        "    {\n      \"id\": " + std::to_string(display.id) + ",\n      \"name\": " + jsonText(display.name) +
        ",\n      \"identityKey\": " + jsonText(display.identityKey) +
        ",\n      \"bounds\": { \"x\": " + jsonNumber(bounds.origin.x) + ", \"y\": " + jsonNumber(bounds.origin.y) +
        ", \"width\": " + jsonNumber(bounds.size.width) + ", \"height\": " + jsonNumber(bounds.size.height) +
        " },\n      \"scale\": " + jsonNumber(displayScale(display.id)) +
        ",\n      \"margins\": { \"top\": " + jsonNumber(margins.top) + ", \"left\": " + jsonNumber(margins.left) +
        ", \"right\": " + jsonNumber(margins.right) + ", \"bottom\": " + jsonNumber(margins.bottom) + " }\n    }";
  }
  if (!displays.empty()) displays += "\n  ";
  return "{\n  \"key\": " + jsonText(configuration.key) + ",\n  \"label\": " + jsonText(configuration.label) +
         ",\n  \"displays\": [" + displays + "]\n}\n";
}

}  // namespace ostrel
