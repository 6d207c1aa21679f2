#include "platform/Text.h"

#import <Foundation/Foundation.h>

#include <algorithm>

namespace ns {
namespace {

// The wanted encoding by its byte order, so that no byte-order mark is expected or written.
constexpr NSStringEncoding scalarEncoding = NSUTF32LittleEndianStringEncoding;

/// Nil for malformed UTF-8.
NSString* decoded(std::string_view text) {
  return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
}

NSString* toString(std::string_view text) {
  if (NSString* string = decoded(text)) return string;
  NSMutableString* mended = [NSMutableString string];
  while (!text.empty()) {
    NSString* scalar = nil;
    std::size_t length = 0;
    while (scalar == nil && length < std::min<std::size_t>(4, text.size())) scalar = decoded(text.substr(0, ++length));
    [mended appendString:scalar != nil ? scalar : @"\uFFFD"];
    text.remove_prefix(scalar != nil ? length : 1);
  }
  return mended;
}

}  // namespace

bool isAlphanumeric(char32_t scalar) { return [NSCharacterSet.alphanumericCharacterSet longCharacterIsMember:scalar]; }

std::u32string unicodeScalars(std::string_view text) {
  NSData* data = [toString(text) dataUsingEncoding:scalarEncoding];
  std::u32string scalars(data.length / sizeof(char32_t), U'\0');
  [data getBytes:scalars.data() length:scalars.size() * sizeof(char32_t)];
  return scalars;
}

std::string utf8(std::u32string_view scalars) {
  NSString* string = [[NSString alloc] initWithBytes:scalars.data()
                                              length:scalars.size() * sizeof(char32_t)
                                            encoding:scalarEncoding];
  const char* text = string.UTF8String;
  return text != nullptr ? text : "";
}

std::string precomposedString(std::string_view text) {
  return toString(text).precomposedStringWithCanonicalMapping.UTF8String;
}

ComparisonResult localizedCaseInsensitiveCompare(std::string_view one, std::string_view other) {
  return static_cast<ComparisonResult>([toString(one) localizedCaseInsensitiveCompare:toString(other)]);
}

}  // namespace ns
