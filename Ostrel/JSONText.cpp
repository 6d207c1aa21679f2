#include "Ostrel/JSONText.h"

#include <array>
#include <charconv>
#include <cmath>

#include "platform/Text.h"

namespace ostrel {

std::string jsonText(std::string_view text) {
  constexpr std::string_view hexDigits = "0123456789abcdef";
  std::string result = "\"";
  for (const char c : ns::utf8(ns::unicodeScalars(text))) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      result += '\\';
      result += c;
    } else if (byte < 0x20 || byte == 0x7F) {
      result += "\\u00";
      result += hexDigits[byte >> 4];
      result += hexDigits[byte & 0xF];
    } else {
      result += c;
    }
  }
  return result + '"';
}

std::string jsonNumber(double number) {
  if (!std::isfinite(number)) return "null";
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return {digits.data(), end};
}

}  // namespace ostrel
