// Fluxbox makes a title bar's buttons after the two parts of its label, in the order in which its configuration names
// them, the left side first. The configuration can change while it runs, so it is read at each click on a button.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include "platform/linux/x11/WindowManagers/Fluxbox.h"

namespace x11 {

namespace {

std::string lowered(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The texts of a /proc file in which each one ends with a null character.
std::vector<std::string> textsOf(const std::string& path) {
  std::vector<std::string> texts;
  std::istringstream contents(contentsOf(path));
  for (std::string text; std::getline(contents, text, '\0');) texts.push_back(text);
  return texts;
}

/// The configuration file that the running fluxbox uses.
std::string configurationPath(pid_t pid) {
  const std::string process = "/proc/" + std::to_string(pid);
  const std::vector<std::string> arguments = textsOf(process + "/cmdline");
  for (std::size_t i = 1; i + 1 < arguments.size(); ++i) {
    if (arguments[i] == "-rc" || arguments[i] == "--rc") return arguments[i + 1];
  }
  constexpr std::string_view homeVariable = "HOME=";
  for (const std::string& variable : textsOf(process + "/environ")) {
    if (variable.starts_with(homeVariable)) return variable.substr(homeVariable.size()) + "/.fluxbox/init";
  }
  const char* home = std::getenv("HOME");
  return std::string(home != nullptr ? home : "") + "/.fluxbox/init";
}

class Fluxbox final : public WindowManager {
 public:
  std::size_t depth() const override { return 3; }
  std::optional<ButtonRole> roleOf(const ButtonPath& path) const override {
    constexpr std::size_t labelParts = 2;
    // By age, that is by number: fluxbox raises and lowers the parts of the label.
    std::vector<xcb_window_t> parts = path.siblings;
    std::sort(parts.begin(), parts.end());
    const auto index = static_cast<std::size_t>(std::find(parts.begin(), parts.end(), path.leaf()) - parts.begin());
    if (index < labelParts || index == parts.size()) return std::nullopt;
    const auto buttons = fluxboxTitleButtons(contentsOf(configurationPath(path.windowManagerPid)));
    // Another number of buttons means that the file is newer than the window, or that this is no title bar.
    if (parts.size() != labelParts + buttons.size()) return std::nullopt;
    return buttons[index - labelParts];
  }
};

}  // namespace

std::vector<std::optional<ButtonRole>> fluxboxTitleButtons(const std::string& configuration) {
  std::string left = "stick";
  std::string right = "minimize maximize close";
  std::istringstream lines(configuration);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) continue;
    std::istringstream keyText(lowered(line.substr(0, colon)));
    std::string key;
    keyText >> key;
    if (key == "session.screen0.titlebar.left") left = lowered(line.substr(colon + 1));
    if (key == "session.screen0.titlebar.right") right = lowered(line.substr(colon + 1));
  }
  std::vector<std::optional<ButtonRole>> buttons;
  std::istringstream words(left + ' ' + right);
  for (std::string word; words >> word;) {
    if (word == "minimize") {
      buttons.emplace_back(ButtonRole::Minimize);
    } else if (word == "maximize") {
      buttons.emplace_back(ButtonRole::Zoom);
    } else if (word == "close") {
      buttons.emplace_back(ButtonRole::Close);
    } else {
      buttons.emplace_back(std::nullopt);
    }
  }
  return buttons;
}

const WindowManager& fluxbox() {
  static const Fluxbox instance;
  return instance;
}

}  // namespace x11
