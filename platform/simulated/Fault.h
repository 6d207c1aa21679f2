// What can go wrong with one question to the simulated desktop.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/portable/Desktop.h"

namespace simulated {

enum class Call { HitTest, Attribute, SetAttribute, ProcessIdentifier, ActiveDisplays };

/// Applies to the calls that match its first four fields; the others say what happens then, in their order.
struct Fault {
  Call call = Call::Attribute;
  /// The name of the element asked; empty for any.
  std::string element = {};
  /// Empty for any.
  std::string attribute = {};
  /// Only the nth matching call, counted from 1; 0 for every one.
  int nth = 0;

  /// The call takes this long: a hung application.
  double seconds = 0;
  /// Happens on the desktop before the call is answered: a window closes, a display goes away.
  std::function<void()> meanwhile = {};
  /// The answer: an AXError or CGError, or a value in place of the real one. The truth when neither is given.
  std::optional<std::int32_t> error = std::nullopt;
  std::optional<desktop::Value> value = std::nullopt;
};

}  // namespace simulated
