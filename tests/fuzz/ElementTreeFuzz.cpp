// Clicks on element trees made of arbitrary bytes: whatever an application answers, a click costs a bounded number of
// questions, is swallowed only on a window button, and leaves nothing behind.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "Ostrel/OstrelController.h"
#include "platform/portable/CFObject.h"
#include "platform/simulated/RunLoop.h"
#include "platform/simulated/SimulatedDesktop.h"

namespace {

constexpr int mostCalls = 1 + 3 * 6 + 1 + 2 * 12 + 1 + 2;

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  bool isEmpty() const { return size_ == 0; }
  unsigned next() {
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

void require(bool condition) {
  if (!condition) std::abort();
}

desktop::Value value(Bytes& bytes) {
  static const std::array<const char*, 7> texts{
      "AXButton", "AXWindow", "AXMinimizeButton", "AXZoomButton", "AXFullScreenButton", "AXCloseButton", "AXGroup"};
  const unsigned choice = bytes.next();
  switch (choice % 8) {
    case 0:
      return desktop::ForeignValue{};
    case 1:
      return (choice & 8) != 0;
    case 2:
      return std::int64_t{bytes.next()} - 1;
    case 3:
      return bytes.next() / 4.0;
    case 4:
      return CGPoint{static_cast<double>(bytes.next()), -1.0};
    case 5:
      return desktop::Element{bytes.next() % 5, bytes.next() % 40};
    default:
      return std::string(texts[bytes.next() % texts.size()]);
  }
}

bool isText(const simulated::ElementTree::Node& node, const char* attribute, std::initializer_list<const char*> texts) {
  const auto found = node.attributes.find(attribute);
  const auto* text = found != node.attributes.end() ? std::get_if<std::string>(&found->second) : nullptr;
  return text != nullptr && std::find(texts.begin(), texts.end(), *text) != texts.end();
}

/// Builds up to 32 elements and tells whether a window button is among them.
bool build(simulated::SimulatedDesktop& desktop, Bytes& bytes) {
  static const std::array<const char*, 6> names{"AXRole",    "AXSubrole",  "AXParent",
                                                "AXEnabled", "AXPosition", "AXMinimizeButton"};
  bool hasButton = false;
  const unsigned count = bytes.next() % 32;
  for (unsigned i = 0; i < count; ++i) {
    auto& node = desktop.elements().add(501, i == 0 ? 0 : bytes.next() % (i + 1));
    node.name = "n" + std::to_string(i);
    node.place = CGRectMake(0, 0, 100, 100);
    for (unsigned left = bytes.next() % 5; left > 0; --left) {
      const char* name = names[bytes.next() % names.size()];
      node.attributes.insert_or_assign(name, value(bytes));
    }
    hasButton = hasButton || (isText(node, "AXRole", {"AXButton"}) &&
                              isText(node, "AXSubrole",
                                     {"AXMinimizeButton", "AXFullScreenButton", "AXZoomButton", "AXCloseButton"}));
  }
  return hasButton;
}

bool injectFaults(simulated::SimulatedDesktop& desktop, Bytes& bytes) {
  bool invents = false;
  for (unsigned left = bytes.next() % 4; left > 0; --left) {
    simulated::Fault fault;
    fault.call = static_cast<simulated::Call>(bytes.next() % 5);
    fault.nth = static_cast<int>(bytes.next() % 16);
    const unsigned kind = bytes.next();
    if (kind % 3 == 0) fault.error = -25200 - static_cast<int>(bytes.next() % 15);
    if (kind % 3 == 1) fault.value = value(bytes);
    if (kind % 3 == 2) {
      fault.meanwhile = [&desktop, lost = bytes.next() % 32 + 1] { desktop.elements().remove(lost); };
    }
    invents = invents || fault.value.has_value();
    desktop.inject(std::move(fault));
  }
  return invents;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes bytes(data, size);
  const std::size_t objects = cf::liveObjects();
  {
    simulated::SimulatedDesktop desktop;
    desktop.keepsJournal = false;
    desktop.launch({501, "org.example.fuzzed", "Fuzzed"});
    const bool hasButton = build(desktop, bytes);
    desktop.defaults()->user["behavior.redButtonHidesWindow"].value = true;
    auto controller = ostrel::OstrelController::create();
    if (bytes.next() % 2 == 1) controller->addExcludedApp({"org.example.other", "Other"});
    require(controller->startIfPossible());
    const bool invents = injectFaults(desktop, bytes);
    for (int clicks = 0; clicks < 8 && !bytes.isEmpty(); ++clicks) {
      desktop.resetCounts();
      const bool passed = desktop.click(CGPointMake(bytes.next(), 50), 0,
                                        bytes.next() % 4 == 0 ? kCGEventRightMouseDown : kCGEventLeftMouseDown);
      require(desktop.totalCount() <= mostCalls);
      require(passed || hasButton || invents);
      simulated::RunLoop::runPending();
    }
    controller.reset();
  }
  require(cf::liveObjects() == objects);
  return 0;
}
