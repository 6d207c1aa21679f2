// Preferences in memory.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/UserDefaults.h"

namespace simulated {

class UserDefaults final : public ns::UserDefaults {
 public:
  using Domain = std::map<std::string, ns::PropertyList, std::less<>>;

  std::optional<ns::PropertyList> objectForKey(std::string_view key) const override;
  void setObject(ns::PropertyList value, std::string_view key) override;
  void setRefusalHandler(const RefusalHandler& handler) override { refused = handler; }

  /// What the application stores goes here; tests read and write it, as another program would.
  Domain user;
  /// Searched after the user's.
  Domain system;
  /// For a test to tell, after it has changed `user` back.
  std::function<void(const std::string& reason)> refused;
};

}  // namespace simulated
