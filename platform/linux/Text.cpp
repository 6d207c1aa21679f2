// Text operations on ICU.
#include "platform/Text.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <memory>

namespace ns {

bool isAlphanumeric(char32_t scalar) {
  const auto category = U_GET_GC_MASK(static_cast<UChar32>(scalar));
  return (category & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}

std::u32string unicodeScalars(std::string_view text) {
  const auto utf16 = icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
  std::u32string scalars;
  for (std::int32_t i = 0; i < utf16.length(); i = utf16.moveIndex32(i, 1)) {
    scalars.push_back(static_cast<char32_t>(utf16.char32At(i)));
  }
  return scalars;
}

std::string utf8(std::u32string_view scalars) {
  std::string text;
  icu::UnicodeString::fromUTF32(reinterpret_cast<const UChar32*>(scalars.data()),
                                static_cast<std::int32_t>(scalars.size()))
      .toUTF8String(text);
  return text;
}

std::string precomposedString(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
  if (U_FAILURE(status)) return std::string(text);
  const auto utf16 = icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
  const icu::UnicodeString composed = nfc->normalize(utf16, status);
  if (U_FAILURE(status)) return std::string(text);
  std::string result;
  composed.toUTF8String(result);
  return result;
}

ComparisonResult localizedCaseInsensitiveCompare(std::string_view one, std::string_view other) {
  UErrorCode status = U_ZERO_ERROR;
  // The C locale orders by code, upper case first: nobody reads names that way.
  const icu::Locale& user = icu::Locale::getDefault();
  const bool isPOSIX = std::string_view(user.getVariant()) == "POSIX";
  const icu::Locale& locale = isPOSIX ? icu::Locale::getRoot() : user;
  const std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, status));
  if (U_FAILURE(status)) return static_cast<ComparisonResult>((one > other) - (one < other));
  collator->setStrength(icu::Collator::SECONDARY);  // accents count, letter case does not
  const auto order = collator->compareUTF8({one.data(), static_cast<std::int32_t>(one.size())},
                                           {other.data(), static_cast<std::int32_t>(other.size())}, status);
  return order == UCOL_LESS ? ComparisonResult::Ascending
                            : (order == UCOL_GREATER ? ComparisonResult::Descending : ComparisonResult::Same);
}

}  // namespace ns
