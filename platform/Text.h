// The few text operations that need to know Unicode and the user's locale. All texts are UTF-8. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace ns {

/// Letters, marks and digits of every script (general categories L, M and N).
bool isAlphanumeric(char32_t scalar);

/// The scalars of a text; malformed bytes become U+FFFD.
std::u32string unicodeScalars(std::string_view text);
std::string utf8(std::u32string_view scalars);

/// Canonical composition (NFC).
std::string precomposedString(std::string_view text);

enum class ComparisonResult { Ascending = -1, Same = 0, Descending = 1 };
/// Orders two texts as a person who uses the current locale would, letter case aside.
ComparisonResult localizedCaseInsensitiveCompare(std::string_view one, std::string_view other);

}  // namespace ns
