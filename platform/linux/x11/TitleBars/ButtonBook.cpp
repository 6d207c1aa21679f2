#include "platform/linux/x11/TitleBars/ButtonBook.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/linux/freedesktop/BaseFolders.h"

namespace x11 {

namespace {

using Json = nlohmann::ordered_json;

constexpr int version = 1;
constexpr std::size_t largestText = 4 * 1024 * 1024;
constexpr std::size_t longestName = 256;
constexpr int farthest = 4096;
constexpr int mostPressesOfAKind = 64;

constexpr std::pair<ButtonRole, const char*> roleNames[] = {
    {ButtonRole::Minimize, "minimize"}, {ButtonRole::Zoom, "zoom"}, {ButtonRole::Close, "close"}};
constexpr std::pair<TitleBarState, const char*> stateNames[] = {{TitleBarState::Normal, "normal"},
                                                                {TitleBarState::Maximized, "maximized"},
                                                                {TitleBarState::HalfMaximized, "half-maximized"}};
constexpr std::pair<Corner, const char*> cornerNames[] = {{Corner::Left, "left"}, {Corner::Right, "right"}};

template <typename T, std::size_t N>
std::string nameOf(T value, const std::pair<T, const char*> (&names)[N]) {
  return std::find_if(names, names + N, [value](const auto& entry) { return entry.first == value; })->second;
}

template <typename T, std::size_t N>
std::optional<T> named(const Json& object, const char* key, const std::pair<T, const char*> (&names)[N]) {
  const auto text = object.find(key);
  if (text == object.end() || !text->is_string()) return std::nullopt;
  const auto* found = std::find_if(names, names + N, [&](const auto& entry) { return *text == entry.second; });
  return found == names + N ? std::nullopt : std::optional(found->first);
}

std::optional<int> number(const Json& object, const char* key) {
  const auto value = object.find(key);
  if (value == object.end() || !value->is_number_integer()) return std::nullopt;
  const auto wide = value->get<std::int64_t>();
  return wide < 0 || wide > farthest ? std::nullopt : std::optional(static_cast<int>(wide));
}

std::optional<TitleBarKind> kindFrom(const Json& json) {
  const auto painter = json.find("painter");
  const auto extents = json.find("extents");
  const auto state = named(json, "state", stateNames);
  const auto scale = number(json, "scale");
  if (painter == json.end() || !painter->is_string() || extents == json.end() || !extents->is_object()) return {};
  const auto left = number(*extents, "left");
  const auto right = number(*extents, "right");
  const auto top = number(*extents, "top");
  const auto bottom = number(*extents, "bottom");
  if (!state || !scale || *scale == 0 || !left || !right || !top || !bottom) return std::nullopt;
  const auto isTrue = [&json](const char* key) { return json.value(key, Json()) == true; };
  const Json look = json.value("look", Json(""));
  if (!look.is_string() || look.get_ref<const std::string&>().size() > longestName) return std::nullopt;
  TitleBarKind kind{painter->get<std::string>(),
                    {*left, *right, *top, *bottom},
                    *state,
                    isTrue("minimizes"),
                    isTrue("maximizes"),
                    isTrue("isDialog"),
                    *scale,
                    look.get<std::string>()};
  return kind.painter.empty() || kind.painter.size() > longestName ? std::nullopt : std::optional(kind);
}

std::optional<Observation> observationFrom(const Json& json) {
  if (!json.is_object()) return std::nullopt;
  const auto corner = named(json, "corner", cornerNames);
  const auto across = number(json, "across");
  const auto down = number(json, "down");
  const auto role = named(json, "did", roleNames);
  if (!corner || !across || !down || (!role && json.value("did", Json()) != "nothing")) return std::nullopt;
  return Observation{role, {*corner, *across, *down}};
}

}  // namespace

std::string ButtonBook::userFile() { return freedesktop::stateHome() + "/ostrel/title-bars.json"; }

std::optional<ButtonBook> ButtonBook::parse(std::string_view text) {
  if (text.size() > largestText) return std::nullopt;
  const Json json = Json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (!json.is_object() || json.value("version", Json()) != version) return std::nullopt;
  const auto titleBars = json.find("titleBars");
  if (titleBars == json.end() || !titleBars->is_array()) return std::nullopt;
  ButtonBook book;
  for (const Json& entry : *titleBars) {
    const auto presses = entry.is_object() ? entry.find("presses") : entry.end();
    if (presses == entry.end() || !presses->is_array() || presses->size() > mostPressesOfAKind) continue;
    const auto kind = kindFrom(entry);
    if (!kind) continue;
    for (const Json& press : *presses) {
      if (const auto observation = observationFrom(press)) book.add(*kind, *observation);
    }
    if (entry.value("wasShipped", Json()) == true) book.page(*kind).wasShipped = true;
  }
  return book;
}

std::string ButtonBook::text() const {
  std::vector<const std::pair<const TitleBarKind, Page>*> byAge;
  for (const auto& page : pages_) {
    if (page.second.isLearned()) byAge.push_back(&page);
  }
  std::sort(byAge.begin(), byAge.end(),
            [](const auto* one, const auto* other) { return one->second.lastNews < other->second.lastNews; });
  Json titleBars = Json::array();
  for (const auto* page : byAge) {
    const TitleBarKind& kind = page->first;
    Json presses = Json::array();
    for (const Observation& one : page->second.evidence.observations()) {
      presses.push_back({{"did", one.role ? nameOf(*one.role, roleNames) : "nothing"},
                         {"corner", nameOf(one.spot.corner, cornerNames)},
                         {"across", one.spot.across},
                         {"down", one.spot.down}});
    }
    titleBars.push_back({{"painter", kind.painter},
                         {"extents",
                          {{"left", kind.extents.left},
                           {"right", kind.extents.right},
                           {"top", kind.extents.top},
                           {"bottom", kind.extents.bottom}}},
                         {"state", nameOf(kind.state, stateNames)},
                         {"minimizes", kind.minimizes},
                         {"maximizes", kind.maximizes},
                         {"isDialog", kind.isDialog},
                         {"scale", kind.scale},
                         {"look", kind.look},
                         {"wasShipped", page->second.wasShipped},
                         {"presses", presses}});
  }
  // Class names come from applications and need not be proper text.
  return Json{{"version", version}, {"titleBars", titleBars}}.dump(2, ' ', false, Json::error_handler_t::replace) +
         '\n';
}

const ButtonEvidence* ButtonBook::evidence(const TitleBarKind& kind) const {
  const auto found = pages_.find(kind);
  return found == pages_.end() ? nullptr : &found->second.evidence;
}

ButtonBook::Page& ButtonBook::page(const TitleBarKind& kind) {
  auto found = pages_.find(kind);
  if (found == pages_.end()) {
    if (pages_.size() >= mostKinds) {
      pages_.erase(std::min_element(pages_.begin(), pages_.end(), [](const auto& one, const auto& other) {
        return one.second.lastNews < other.second.lastNews;
      }));
    }
    found = pages_.emplace(kind, Page{ButtonEvidence(kind.scale), 0}).first;
  }
  return found->second;
}

bool ButtonBook::add(const TitleBarKind& kind, const Observation& observation) {
  Page& found = page(kind);
  found.lastNews = ++news_;
  return found.evidence.add(observation);
}

void ButtonBook::ship(const TitleBarKind& kind, const std::vector<Observation>& presses) {
  Page& found = page(kind);
  const bool isNew = !found.wasShipped && found.evidence.observations().empty();
  if (isNew) {
    found.wasShipped = true;
    for (const Observation& press : presses) add(kind, press);
  }
  if (found.wasShipped) found.shipped = presses;
}

bool ButtonBook::hasShipped(const TitleBarKind& kind) const {
  const auto found = pages_.find(kind);
  return found != pages_.end() && !found->second.shipped.empty();
}

bool ButtonBook::isShipped(const TitleBarKind& kind, ButtonRole role) const {
  const auto found = pages_.find(kind);
  if (found == pages_.end() || !found->second.evidence.has(role)) return false;
  const auto& shipped = found->second.shipped;
  const auto& observations = found->second.evidence.observations();
  return std::all_of(observations.begin(), observations.end(), [&](const Observation& one) {
    return one.role != role || std::find(shipped.begin(), shipped.end(), one) != shipped.end();
  });
}

std::set<std::string> ButtonBook::painters() const {
  std::set<std::string> names;
  for (const auto& [kind, page] : pages_) {
    if (page.isLearned()) names.insert(kind.painter);
  }
  return names;
}

std::size_t ButtonBook::forget(std::string_view painter) {
  std::size_t count = 0;
  std::erase_if(pages_, [&](const auto& page) {
    if (!painter.empty() && page.first.painter != painter) return false;
    count += page.second.isLearned() ? 1 : 0;
    return true;
  });
  return count;
}

}  // namespace x11
