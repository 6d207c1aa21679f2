// Event taps: a mach port around the desktop's tap, and the main run loop that its source must be on to deliver.
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "platform/CFRef.h"
#include "platform/RunLoop.h"
#include "platform/portable/ApplicationServices.h"
#include "platform/portable/CFObject.h"
#include "platform/portable/Desktop.h"

namespace {

using desktop::Desktop;

class Event final : public cf::Object {
 public:
  static constexpr cf::Kind kind = cf::Kind::Event;
  explicit Event(const desktop::MouseDown& event) : Object(kind), event_(event) {}
  const desktop::MouseDown& event() const { return event_; }

 private:
  const desktop::MouseDown event_;
};

/// What the desktop's tap and the mach port share, so that a tap that outlives its port finds it invalid.
struct Receiver {
  CGEventTapCallBack callback = nullptr;
  void* refcon = nullptr;
  bool isScheduled = false;

  bool deliver(const desktop::MouseDown& mouseDown) const {
    if (!isScheduled) return true;
    const auto event = CFRef<CGEventRef>::adopt(cf::reference<CGEventRef>(new Event(mouseDown)));
    return callback(nullptr, mouseDown.type, event.get(), refcon) != nullptr;
  }
};

class MachPort final : public cf::Object {
 public:
  static constexpr cf::Kind kind = cf::Kind::MachPort;
  MachPort(CGEventTapCallBack callback, void* refcon) : Object(kind), receiver_(std::make_shared<Receiver>()) {
    receiver_->callback = callback;
    receiver_->refcon = refcon;
  }

  /// False when the desktop refuses the tap. From then on the port holds itself, as if the system did: only
  /// invalidating ends a tap, so that forgetting it does not go unnoticed here.
  bool install(CGEventMask mask) {
    tap_ = Desktop::current().createEventTap(mask, [this, receiver = receiver_](const desktop::MouseDown& mouseDown) {
      if (!receiver->isScheduled) return true;
      const bool wasDelivering = std::exchange(isDelivering_, true);
      const auto port = CFRef<CFMachPortRef>::retain(cf::reference<CFMachPortRef>(this));
      const bool passes = receiver->deliver(mouseDown);
      isDelivering_ = wasDelivering;
      return passes;
    });
    if (tap_ == nullptr) return false;
    retain();
    return true;
  }

  bool isValid() const { return tap_ != nullptr && tap_->isValid(); }
  desktop::EventTap* tap() const { return tap_.get(); }
  void setScheduled(bool isScheduled) { receiver_->isScheduled = isScheduled && isValid(); }

  /// May be the end of the port.
  void invalidate() {
    receiver_->isScheduled = false;
    if (tap_ == nullptr) return;
    if (isDelivering_) {
      // The tap is further up this very call; it goes once that has returned.
      tap_->setEnabled(false);
      ns::dispatchAsyncOnMainQueue([tap = std::shared_ptr<desktop::EventTap>(std::move(tap_))] {});
    } else {
      tap_.reset();
    }
    release();
  }

 private:
  const std::shared_ptr<Receiver> receiver_;
  std::unique_ptr<desktop::EventTap> tap_;
  bool isDelivering_ = false;
};

class RunLoopSource final : public cf::Object {
 public:
  static constexpr cf::Kind kind = cf::Kind::RunLoopSource;
  explicit RunLoopSource(CFMachPortRef port) : Object(kind), port_(CFRef<CFMachPortRef>::retain(port)) {}
  MachPort& port() const { return *cf::asMutable<MachPort>(port_.get()); }

 private:
  const CFRef<CFMachPortRef> port_;
};

class RunLoop final : public cf::Object {
 public:
  static constexpr cf::Kind kind = cf::Kind::RunLoop;
  RunLoop() : Object(kind, cf::Lifetime::Immortal) {}

  void add(CFRunLoopSourceRef source) {
    auto* added = cf::asMutable<RunLoopSource>(source);
    if (added == nullptr || !added->port().isValid() || contains(source)) return;
    sources_.push_back(CFRef<CFRunLoopSourceRef>::retain(source));
    added->port().setScheduled(true);
  }
  void remove(CFRunLoopSourceRef source) {
    auto* removed = cf::asMutable<RunLoopSource>(source);
    if (removed == nullptr || !contains(source)) return;
    removed->port().setScheduled(false);
    std::erase_if(sources_, [source](const auto& each) { return each.get() == source; });
  }
  void removeSources(const MachPort& port) {
    std::erase_if(sources_,
                  [&port](const auto& each) { return &cf::asMutable<RunLoopSource>(each.get())->port() == &port; });
  }

 private:
  bool contains(CFRunLoopSourceRef source) const {
    return std::any_of(sources_.begin(), sources_.end(), [source](const auto& each) { return each.get() == source; });
  }

  std::vector<CFRef<CFRunLoopSourceRef>> sources_;
};

RunLoop& mainRunLoop() {
  static auto& loop = *new RunLoop;  // never destroyed: sources may still be taken off while the program ends
  return loop;
}

}  // namespace

extern "C" {

CFMachPortRef CGEventTapCreate(CGEventTapLocation, CGEventTapPlacement, CGEventTapOptions, CGEventMask eventsOfInterest,
                               CGEventTapCallBack callback, void* refcon) {
  if (callback == nullptr) return nullptr;
  auto* port = new MachPort(callback, refcon);
  auto owned = CFRef<CFMachPortRef>::adopt(cf::reference<CFMachPortRef>(port));
  if (!port->install(eventsOfInterest)) return nullptr;
  port->retain();  // the caller's
  return owned.get();
}

void CGEventTapEnable(CFMachPortRef tap, bool enable) {
  const auto* port = cf::as<MachPort>(tap);
  if (port != nullptr && port->isValid()) port->tap()->setEnabled(enable);
}

bool CGEventTapIsEnabled(CFMachPortRef tap) {
  const auto* port = cf::as<MachPort>(tap);
  return port != nullptr && port->isValid() && port->tap()->isEnabled();
}

CGEventFlags CGEventGetFlags(CGEventRef event) {
  const auto* object = cf::as<Event>(event);
  return object != nullptr ? object->event().flags : 0;
}

CGPoint CGEventGetLocation(CGEventRef event) {
  const auto* object = cf::as<Event>(event);
  return object != nullptr ? object->event().location : CGPoint{};
}

CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef, CFMachPortRef port, CFIndex) {
  const auto* wrapped = cf::as<MachPort>(port);
  if (wrapped == nullptr || !wrapped->isValid() || !Desktop::current().allowsRunLoopSource()) return nullptr;
  return cf::reference<CFRunLoopSourceRef>(new RunLoopSource(port));
}

void CFMachPortInvalidate(CFMachPortRef port) {
  auto* wrapped = cf::asMutable<MachPort>(port);
  if (wrapped == nullptr) return;
  mainRunLoop().removeSources(*wrapped);
  wrapped->invalidate();
}

Boolean CFMachPortIsValid(CFMachPortRef port) {
  const auto* wrapped = cf::as<MachPort>(port);
  return wrapped != nullptr && wrapped->isValid();
}

CFRunLoopRef CFRunLoopGetMain() { return cf::reference<CFRunLoopRef>(&mainRunLoop()); }

void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode) {
  if (auto* target = cf::asMutable<RunLoop>(loop)) target->add(source);
}

void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode) {
  if (auto* target = cf::asMutable<RunLoop>(loop)) target->remove(source);
}

}  // extern "C"
