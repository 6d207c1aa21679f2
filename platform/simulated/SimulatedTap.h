// One tap on the simulated desktop.
#pragma once

#include <utility>

#include "platform/simulated/SimulatedDesktop.h"

namespace simulated {

class SimulatedTap final : public desktop::EventTap {
 public:
  SimulatedTap(SimulatedDesktop& desktop, CGEventMask mask, desktop::EventTapHandler handler)
      : desktop_(desktop), mask_(mask), handler_(std::move(handler)) {
    desktop_.taps_.push_back(this);
  }
  ~SimulatedTap() override { std::erase(desktop_.taps_, this); }

  void setEnabled(bool enabled) override { isEnabled_ = enabled; }
  bool isEnabled() const override { return isEnabled_; }
  bool isValid() const override { return isValid_; }
  void drop() { isValid_ = isEnabled_ = false; }
  CGEventMask mask() const { return mask_; }
  bool wants(CGEventType type) const { return isEnabled_ && (mask_ & CGEventMaskBit(type)) != 0; }
  bool deliver(const desktop::MouseDown& mouseDown) const { return handler_(mouseDown); }

 private:
  SimulatedDesktop& desktop_;
  const CGEventMask mask_;
  const desktop::EventTapHandler handler_;
  bool isEnabled_ = false;
  bool isValid_ = true;
};

}  // namespace simulated
