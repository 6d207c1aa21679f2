// Values that the preference store keeps.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace ns {

struct PropertyList;
using Array = std::vector<PropertyList>;
using Dictionary = std::map<std::string, PropertyList>;

/// One property-list value. Texts are UTF-8.
struct PropertyList {
  std::variant<bool, std::int64_t, double, std::string, Array, Dictionary> value;

  template <typename T>
  const T* as() const {
    return std::get_if<T>(&value);
  }
  friend bool operator==(const PropertyList&, const PropertyList&) = default;
};

/// What a value of any other kind, a date or data, reads as: it is there, but it is no number, and a list that holds it
/// is no list of dictionaries.
inline PropertyList foreignValue() { return {Array{}}; }

}  // namespace ns
