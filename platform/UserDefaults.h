// The user's preferences.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/PropertyList.h"

namespace ns {

/// The application's preferences: what the user stored, with the system's defaults behind it. Abstract because tests
/// keep theirs in memory. Main thread only. Nothing here fails towards the caller: a value that cannot be stored is
/// logged by the backing, and what was stored before stays and is read again.
class UserDefaults {
 public:
  static std::shared_ptr<UserDefaults> standardUserDefaults();
  virtual ~UserDefaults() = default;

  /// The value in the first domain that has the key; none when no domain has it.
  virtual std::optional<PropertyList> objectForKey(std::string_view key) const = 0;
  /// Stores in the user's domain; read from now on, and kept whatever happens from a moment later.
  virtual void setObject(PropertyList value, std::string_view key) = 0;
  /// `handler` is called on the main thread, with words for the person, after values could not be stored and are again
  /// what they were. Only where a file may refuse: a Mac keeps every value.
  using RefusalHandler = std::function<void(const std::string& reason)>;
  virtual void setRefusalHandler(const RefusalHandler& /*handler*/) {}

  /// True for true, a number other than 0, and a text that starts, after white space and a sign and zeros, with Y, y,
  /// T, t or a digit from 1 to 9; false for anything else and for no value.
  bool boolForKey(std::string_view key) const;
  /// A number's value, the number that a text begins with, 1 for true; 0 for anything else and for no value.
  double doubleForKey(std::string_view key) const;
  /// None when there is no value or it is not an array.
  std::optional<Array> arrayForKey(std::string_view key) const;

  void setBool(bool value, std::string_view key) { setObject({value}, key); }
  void setDouble(double value, std::string_view key) { setObject({value}, key); }
};

}  // namespace ns
