#include "platform/simulated/SimulatedDesktop.h"

#include <algorithm>
#include <cassert>
#include <sstream>

#include "platform/simulated/Clock.h"
#include "platform/simulated/SimulatedTap.h"
#include "platform/simulated/Words.h"

namespace simulated {

namespace {

constexpr std::uint32_t systemWideKind = 1;
constexpr std::uint32_t applicationKind = 2;
constexpr double tapDeadline = 0.05;

SimulatedDesktop* installedDesktop = nullptr;

std::string written(CGPoint point) {
  std::ostringstream text;
  text << point.x << ',' << point.y;
  return text.str();
}

std::string written(const desktop::Value& value) {
  if (const auto* point = std::get_if<CGPoint>(&value)) return written(*point);
  if (const auto* size = std::get_if<CGSize>(&value)) {
    std::ostringstream text;
    text << size->width << 'x' << size->height;
    return text.str();
  }
  if (const auto* boolean = std::get_if<bool>(&value)) return *boolean ? "true" : "false";
  return "?";
}

/// "610/160/0"
bool readNumbers(std::string_view word, desktop::Display& display) {
  std::istringstream stream{std::string(word)};
  char first = 0;
  char second = 0;
  stream >> display.vendor >> first >> display.model >> second >> display.serial;
  return stream && first == '/' && second == '/';
}

}  // namespace

SimulatedDesktop& SimulatedDesktop::installed() {
  assert(installedDesktop != nullptr);
  return *installedDesktop;
}

SimulatedDesktop::SimulatedDesktop() : previous_(std::exchange(installedDesktop, this)) {
  workspace_ = std::make_shared<Workspace>(*this);
  setDisplays(R"(1 "Built-in Display" 0,0 1440x900 main 610/160/0)");
}

SimulatedDesktop::~SimulatedDesktop() {
  assert(taps_.empty());
  installedDesktop = previous_;
}

void SimulatedDesktop::setDisplays(std::string_view text) {
  displays_.clear();
  screenList.clear();
  for (const Line& line : linesOf(text)) {
    const auto identifier = static_cast<CGDirectDisplayID>(std::stoul(line.words.front()));
    desktop::Display display;
    std::string name;
    for (std::size_t i = 1; i < line.words.size(); ++i) {
      const std::string& word = line.words[i];
      if (word.front() == '"') {
        name = word.substr(1, word.size() - 2);
      } else if (word == "main") {
        display.isMain = true;
      } else if (const auto origin = pairOf(word, ',')) {
        display.bounds.origin = *origin;
      } else if (const auto size = pairOf(word, 'x')) {
        display.bounds.size = CGSizeMake(size->x, size->y);
      } else if (!readNumbers(word, display)) {
        refuse(word, "a display");
      }
    }
    displays_.emplace_back(identifier, display);
    screenList.push_back({ns::PropertyList{std::int64_t{identifier}}, name});
  }
}

void SimulatedDesktop::launch(const desktop::Application& application, std::string_view elements) {
  applications_.push_back(application);
  elements_.add(application.pid, elements);
  for (const auto& observer : observers_) observer(desktop::ApplicationChange::Launched, application.pid);
}

void SimulatedDesktop::quit(pid_t pid) {
  std::erase_if(applications_, [pid](const desktop::Application& each) { return each.pid == pid; });
  elements_.removeAll(pid);
  for (const auto& observer : observers_) observer(desktop::ApplicationChange::Terminated, pid);
}

bool SimulatedDesktop::click(CGPoint location, CGEventFlags flags, CGEventType type) {
  for (SimulatedTap* tap : std::vector(taps_)) {
    if (!tap->wants(type)) continue;
    const double start = Clock::now();
    const bool passes = tap->deliver({type, flags, location});
    const bool isStillThere = std::find(taps_.begin(), taps_.end(), tap) != taps_.end();
    if (isStillThere && Clock::now() - start > tapDeadline) {
      tap->setEnabled(false);
      tap->deliver({kCGEventTapDisabledByTimeout, 0, {}});
    } else if (!passes) {
      return false;
    }
  }
  return true;
}

bool SimulatedDesktop::click(std::string_view name, CGEventFlags flags, CGEventType type) {
  const CGRect place = frame(name);
  const CGPoint middle = CGPointMake(place.origin.x + place.size.width / 2, place.origin.y + place.size.height / 2);
  return click(middle, flags, type);
}

bool SimulatedDesktop::disableTaps(CGEventType notice) {
  bool passes = true;
  for (SimulatedTap* tap : std::vector(taps_)) {
    tap->setEnabled(false);
    passes = tap->deliver({notice, 0, {}}) && passes;
  }
  return passes;
}

void SimulatedDesktop::silenceTaps() {
  for (SimulatedTap* tap : taps_) tap->setEnabled(false);
}

void SimulatedDesktop::dropTaps() {
  for (SimulatedTap* tap : std::exchange(taps_, {})) tap->drop();
}

bool SimulatedDesktop::isHidden(pid_t pid) const {
  const auto attributes = applicationAttributes_.find(pid);
  if (attributes == applicationAttributes_.end()) return false;
  const auto found = attributes->second.find("AXHidden");
  const bool* isHidden = found != attributes->second.end() ? std::get_if<bool>(&found->second) : nullptr;
  return isHidden != nullptr && *isHidden;
}

std::size_t SimulatedDesktop::enabledTapCount() const {
  return static_cast<std::size_t>(
      std::count_if(taps_.begin(), taps_.end(), [](const SimulatedTap* tap) { return tap->isEnabled(); }));
}

CGEventMask SimulatedDesktop::tapMask() const {
  CGEventMask mask = 0;
  for (const SimulatedTap* tap : taps_) mask |= tap->mask();
  return mask;
}

int SimulatedDesktop::count(Call call) const {
  const auto found = counts_.find(call);
  return found != counts_.end() ? found->second : 0;
}

int SimulatedDesktop::totalCount() const {
  int total = 0;
  for (const auto& [call, count] : counts_) total += count;
  return total;
}

std::vector<std::string> SimulatedDesktop::writes() const {
  std::vector<std::string> writes;
  for (const std::string& entry : journal_) {
    if (entry.starts_with("set ") || entry.starts_with("hide ")) writes.push_back(entry);
  }
  return writes;
}

void SimulatedDesktop::note(const std::string& entry) { journal_.push_back(entry); }

std::string SimulatedDesktop::nameOf(const desktop::Element& element) {
  if (element.kind == applicationKind) return "application-" + std::to_string(element.id);
  const auto* node = element.kind == treeElementKind ? elements_.find(element.id) : nullptr;
  if (node == nullptr) return "nothing";
  return node->name.empty() ? "element-" + std::to_string(element.id) : node->name;
}

std::optional<Fault> SimulatedDesktop::meet(Call call, std::string_view element, std::string_view attribute) {
  ++counts_[call];
  std::optional<Fault> met;  // a copy: what happens meanwhile may change the faults
  for (auto& [fault, matches] : faults_) {
    if (fault.call != call || (!fault.element.empty() && fault.element != element) ||
        (!fault.attribute.empty() && fault.attribute != attribute)) {
      continue;
    }
    ++matches;
    if (!met && (fault.nth == 0 || fault.nth == matches)) met = fault;
  }
  if (!met) return std::nullopt;
  Clock::pass(met->seconds);
  if (met->meanwhile) met->meanwhile();
  return met;
}

desktop::Element SimulatedDesktop::systemWideElement() { return {systemWideKind, 0}; }

desktop::Element SimulatedDesktop::applicationElement(pid_t pid) {
  return {applicationKind, static_cast<std::uint64_t>(pid)};
}

AXError SimulatedDesktop::elementAtPosition(CGPoint position, desktop::Element& element) {
  if (keepsJournal) note("hit " + written(position));
  const auto fault = meet(Call::HitTest, {}, {});
  if (fault && fault->error) return static_cast<AXError>(*fault->error);
  const auto identifier = elements_.deepestAt(position);
  if (identifier == 0) return kAXErrorNoValue;
  element = {treeElementKind, identifier};
  return kAXErrorSuccess;
}

AXError SimulatedDesktop::attribute(const desktop::Element& element, std::string_view name, desktop::Value& value) {
  const auto* asked = element.kind == treeElementKind ? elements_.find(element.id) : nullptr;
  if (keepsJournal) note("get " + nameOf(element) + ' ' + std::string(name));
  const auto fault = meet(Call::Attribute, asked != nullptr ? std::string_view(asked->name) : "", name);
  if (fault && fault->error) return static_cast<AXError>(*fault->error);
  if (fault && fault->value) {
    value = *fault->value;
    return kAXErrorSuccess;
  }
  const auto pid = static_cast<pid_t>(element.id);
  if (element.kind == applicationKind && isApplicationRunning(pid)) {
    if (name != "AXHidden") return kAXErrorAttributeUnsupported;
    value = isHidden(pid);
    return kAXErrorSuccess;
  }
  if (asked == nullptr || asked->isGone) return kAXErrorInvalidUIElement;
  auto found = elements_.attribute(*asked, name);
  if (!found) return kAXErrorNoValue;
  value = *std::move(found);
  return kAXErrorSuccess;
}

AXError SimulatedDesktop::setAttribute(const desktop::Element& element, std::string_view name,
                                       const desktop::Value& value) {
  const std::string target = nameOf(element);
  if (keepsJournal) note("set " + target + ' ' + std::string(name) + ' ' + written(value));
  const auto fault = meet(Call::SetAttribute, target, name);
  if (fault && fault->error) return static_cast<AXError>(*fault->error);
  if (element.kind == applicationKind) {
    applicationAttributes_[static_cast<pid_t>(element.id)].insert_or_assign(std::string(name), value);
    return kAXErrorSuccess;
  }
  auto* node = element.kind == treeElementKind ? elements_.find(element.id) : nullptr;
  return node != nullptr ? elements_.setAttribute(*node, name, value) : kAXErrorInvalidUIElement;
}

AXError SimulatedDesktop::processIdentifier(const desktop::Element& element, pid_t& pid) {
  if (keepsJournal) note("pid " + nameOf(element));
  const auto* node = element.kind == treeElementKind ? elements_.find(element.id) : nullptr;
  const auto fault = meet(Call::ProcessIdentifier, node != nullptr ? std::string_view(node->name) : "", {});
  if (fault && fault->error) return static_cast<AXError>(*fault->error);
  if (node == nullptr || node->isGone) return kAXErrorInvalidUIElement;
  pid = node->pid;
  return kAXErrorSuccess;
}

std::unique_ptr<desktop::EventTap> SimulatedDesktop::createEventTap(CGEventMask mask,
                                                                    desktop::EventTapHandler handler) {
  if (refusesTap) return nullptr;
  return std::make_unique<SimulatedTap>(*this, mask, std::move(handler));
}

CGError SimulatedDesktop::activeDisplays(std::vector<CGDirectDisplayID>& displays) {
  const auto fault = meet(Call::ActiveDisplays, {}, {});
  if (fault && fault->error) return static_cast<CGError>(*fault->error);
  for (const auto& [identifier, display] : displays_) displays.push_back(identifier);
  return kCGErrorSuccess;
}

std::optional<desktop::Display> SimulatedDesktop::display(CGDirectDisplayID identifier) {
  for (const auto& [each, display] : displays_) {
    if (each == identifier) return display;
  }
  return std::nullopt;
}

std::size_t SimulatedDesktop::forgetTitleBarButtons(std::string_view painter) {
  return std::erase_if(titleBarLines,
                       [&](const ns::DiagnosticLine& line) { return painter.empty() || line.title == painter; });
}

std::vector<desktop::Application> SimulatedDesktop::runningApplications() {
  if (keepsJournal) note("running applications");
  return applications_;
}

bool SimulatedDesktop::isApplicationRunning(pid_t pid) {
  return std::ranges::find(applications_, pid, &desktop::Application::pid) != applications_.end();
}

bool SimulatedDesktop::hideApplication(pid_t pid) {
  if (keepsJournal) note("hide " + std::to_string(pid));
  if (refusesHiding) return false;
  applicationAttributes_[pid].insert_or_assign("AXHidden", true);
  return true;
}

void SimulatedDesktop::observeApplications(std::function<void(desktop::ApplicationChange, pid_t)> observer) {
  observers_.push_back(std::move(observer));
}

}  // namespace simulated

namespace desktop {

Desktop& Desktop::current() { return simulated::SimulatedDesktop::installed(); }

}  // namespace desktop
