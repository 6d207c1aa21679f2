// Values written as JSON.
#pragma once

#include <string>
#include <string_view>

namespace ostrel {

/// The text in quotes, with everything escaped that JSON wants escaped. UTF-8 passes as it is; bytes that are no UTF-8
/// become U+FFFD.
std::string jsonText(std::string_view text);
/// The shortest decimal form that reads back as the same number; null for what is no number.
std::string jsonNumber(double number);

}  // namespace ostrel
