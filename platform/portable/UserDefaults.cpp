// The conversions of stored values.
#include "platform/UserDefaults.h"

#include <cmath>
#include <locale>
#include <sstream>
#include <string>

namespace ns {

namespace {

constexpr std::string_view digits = "0123456789";

std::string_view withoutLeadingSpace(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
  return start == std::string_view::npos ? std::string_view{} : text.substr(start);
}

/// How many characters of `text`, from `start`, are of `set`.
std::size_t span(std::string_view text, std::size_t start, std::string_view set) {
  const std::size_t end = text.find_first_not_of(set, start);
  return (end == std::string_view::npos ? text.size() : end) - std::min(start, text.size());
}

bool hasSign(std::string_view text, std::size_t at) { return at < text.size() && (text[at] == '+' || text[at] == '-'); }

bool boolFromText(std::string_view text) {
  text = withoutLeadingSpace(text);
  if (hasSign(text, 0)) text.remove_prefix(1);
  text.remove_prefix(span(text, 0, "0"));
  return !text.empty() && std::string_view("YyTt123456789").find(text.front()) != std::string_view::npos;
}

/// The decimal number that a text begins with. Never the current locale's reading: a preference means the same
/// everywhere. No hexadecimal numbers, infinities or NaN.
double doubleFromText(std::string_view text) {
  text = withoutLeadingSpace(text);
  const std::size_t sign = hasSign(text, 0) ? 1 : 0;
  const std::size_t whole = span(text, sign, digits);
  std::size_t end = sign + whole;
  std::size_t fraction = 0;
  if (end < text.size() && text[end] == '.') {
    fraction = span(text, end + 1, digits);
    end += 1 + fraction;
  }
  if (whole + fraction == 0) return 0;
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    const std::size_t exponentStart = end + 1 + (hasSign(text, end + 1) ? 1 : 0);
    const std::size_t exponent = span(text, exponentStart, digits);
    if (exponent > 0) end = exponentStart + exponent;
  }
  std::istringstream stream{std::string(text.substr(0, end))};
  stream.imbue(std::locale::classic());
  double value = 0;
  // What cannot be read although it is well-formed is too large.
  if (!(stream >> value)) return text.front() == '-' ? -HUGE_VAL : HUGE_VAL;
  return value;
}

}  // namespace

bool UserDefaults::boolForKey(std::string_view key) const {
  const auto object = objectForKey(key);
  if (!object) return false;
  if (const auto* value = object->as<bool>()) return *value;
  if (const auto* value = object->as<std::int64_t>()) return *value != 0;
  if (const auto* value = object->as<double>()) return *value != 0;
  if (const auto* value = object->as<std::string>()) return boolFromText(*value);
  return false;
}

double UserDefaults::doubleForKey(std::string_view key) const {
  const auto object = objectForKey(key);
  if (!object) return 0;
  if (const auto* value = object->as<bool>()) return *value ? 1 : 0;
  if (const auto* value = object->as<std::int64_t>()) return static_cast<double>(*value);
  if (const auto* value = object->as<double>()) return *value;
  if (const auto* value = object->as<std::string>()) return doubleFromText(*value);
  return 0;
}

std::optional<Array> UserDefaults::arrayForKey(std::string_view key) const {
  auto object = objectForKey(key);
  auto* array = object ? std::get_if<Array>(&object->value) : nullptr;
  return array != nullptr ? std::optional<Array>(std::move(*array)) : std::nullopt;
}

}  // namespace ns
