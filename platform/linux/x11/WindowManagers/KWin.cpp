// kwin's decorations are plugins. Breeze, its own, sizes its buttons by the font of the titles; kwin tells which plugin
// and which layout it has and what comes of the font.
#include <algorithm>
#include <charconv>
#include <set>

#include "platform/linux/freedesktop/BaseFolders.h"
#include "platform/linux/x11/WindowManagers/Decoration.h"

namespace x11 {

namespace {

/// The value of "name<separator>value" among the lines that follow `heading` up to an empty line or another heading.
std::optional<std::string_view> valueIn(std::string_view text, std::string_view heading, std::string_view name,
                                        char separator) {
  bool isWithin = false;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.front() == '[') isWithin = false;
    if (line == heading) isWithin = true;
    const std::size_t place = line.find(separator);
    if (!isWithin || place == std::string_view::npos || line.substr(0, place) != name) continue;
    const std::string_view value = line.substr(place + 1);
    return value.substr(std::min(value.find_first_not_of(' '), value.size()));
  }
  return std::nullopt;
}

/// What the running kwin says of its decoration.
std::string_view told(std::string_view information, std::string_view name) {
  return valueIn(information, "Decoration", name, ':').value_or("");
}

std::optional<int> numberIn(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  constexpr int most = 200;
  const bool isNumber = error == std::errc() && end == text.data() + text.size();
  return isNumber && number > 0 && number <= most ? std::optional(number) : std::nullopt;
}

/// The numbers in which kwin tells the buttons, as the letters that its configuration has for them.
std::string lettersOf(std::string_view numbers) {
  constexpr std::string_view letters = "MNSIAXHLBF";
  std::string text;
  while (!numbers.empty()) {
    const std::size_t end = std::min(numbers.find(','), numbers.size());
    const std::string_view word = numbers.substr(0, end);
    numbers.remove_prefix(std::min(end + 1, numbers.size()));
    numbers.remove_prefix(std::min(numbers.find_first_not_of(' '), numbers.size()));
    const bool isDigit = word.size() == 1 && word[0] >= '0' && word[0] <= '9';
    text += isDigit ? letters[static_cast<std::size_t>(word[0] - '0')] : '?';
  }
  return text;
}

const Setting running{Setting::Source::KWin, "", ""};
Setting configuration() { return {Setting::Source::File, freedesktop::configHome() + "/kwinrc", ""}; }
Setting breezeConfiguration() { return {Setting::Source::File, freedesktop::configHome() + "/breezerc", ""}; }

std::vector<Setting> settings() { return {running, configuration(), breezeConfiguration()}; }

/// As of kwin's letters, from left to right. Which of the buttons that Ostrel has nothing to do with are shown depends
/// on the window.
std::optional<std::vector<Slot>> slotsOf(std::string_view letters, std::set<Slot>& seen) {
  std::vector<Slot> slots;
  for (const char letter : letters) {
    const Slot slot = letter == 'I'   ? Slot::Minimize
                      : letter == 'A' ? Slot::Zoom
                      : letter == 'X' ? Slot::Close
                                      : Slot::Unknown;
    if (slot != Slot::Unknown && !seen.insert(slot).second) return std::nullopt;
    slots.push_back(slot);
  }
  return slots;
}

std::optional<Decoration> read(const SettingValues& values) {
  const std::string information = valueOf(values, running);
  const std::string file = valueOf(values, configuration());
  const std::string left = lettersOf(told(information, "decorationButtonsLeft"));
  const std::string right = lettersOf(told(information, "decorationButtonsRight"));
  // What has been written there without kwin's knowledge it may take up at any time.
  constexpr std::string_view group = "[org.kde.kdecoration2]";
  if (valueIn(file, group, "ButtonsOnLeft", '=').value_or(left) != left ||
      valueIn(file, group, "ButtonsOnRight", '=').value_or(right) != right) {
    return std::nullopt;
  }
  std::set<Slot> seen;
  const auto leftSlots = slotsOf(left, seen);
  auto rightSlots = slotsOf(right, seen);
  const auto unit = numberIn(told(information, "gridUnit"));
  const auto spacing = numberIn(told(information, "smallSpacing"));
  const std::string_view plugin = told(information, "Plugin");
  const std::string breeze = valueOf(values, breezeConfiguration());
  const std::string_view size = valueIn(breeze, "[Windeco]", "ButtonSize", '=').value_or("ButtonDefault");
  if (plugin != "org.kde.breeze" || size != "ButtonDefault" || !leftSlots || !rightSlots || !unit || !spacing) {
    return std::nullopt;
  }
  std::reverse(rightSlots->begin(), rightSlots->end());

  const int side = 2 * *unit;
  const int gap = 2 * *spacing;
  const Extents extents{0, 0, side + 2 * gap + 1, 0};
  Decoration decoration{"Breeze " + left + ':' + right, {*leftSlots, *rightSlots}, {}};
  for (const auto state : {TitleBarState::Normal, TitleBarState::HalfMaximized}) {
    decoration.strips.push_back({state, extents, gap, gap, gap, side, side, side + gap, ButtonStrip::anyScale});
  }
  // At the edge of the screen they reach up to it.
  decoration.strips.push_back(
      {TitleBarState::Maximized, extents, gap, gap, 0, side, gap + side, side + gap, ButtonStrip::anyScale});
  return decoration;
}

}  // namespace

const DrawnDecoration& kwin() {
  static constexpr DrawnDecoration instance{settings, read};
  return instance;
}

}  // namespace x11
