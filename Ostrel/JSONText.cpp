#include "Ostrel/JSONText.h"

#include <cmath>
#include <iomanip>
#include <limits>
#include <locale>
#include <sstream>

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
  // std::to_chars would do, but macOS has it for such numbers only since 13.3. Most numbers need 15 digits, some more.
  for (int digits = std::numeric_limits<double>::digits10;; ++digits) {
    std::stringstream text;
    text.imbue(std::locale::classic());
    text << std::setprecision(digits) << number;
    double read = 0;
    if (digits == std::numeric_limits<double>::max_digits10 || ((text >> read) && read == number)) return text.str();
  }
}

}  // namespace ostrel
