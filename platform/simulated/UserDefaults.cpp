#include "platform/simulated/UserDefaults.h"

#include <utility>

#include "platform/simulated/SimulatedDesktop.h"

namespace simulated {

std::optional<ns::PropertyList> UserDefaults::objectForKey(std::string_view key) const {
  for (const Domain* domain : {&user, &system}) {
    if (const auto found = domain->find(key); found != domain->end()) return found->second;
  }
  return std::nullopt;
}

void UserDefaults::setObject(ns::PropertyList value, std::string_view key) {
  user.insert_or_assign(std::string(key), std::move(value));
}

}  // namespace simulated

namespace ns {

std::shared_ptr<UserDefaults> UserDefaults::standardUserDefaults() {
  return simulated::SimulatedDesktop::installed().defaults();
}

}  // namespace ns
