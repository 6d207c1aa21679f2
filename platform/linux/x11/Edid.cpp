#include "platform/linux/x11/Edid.h"

#include <algorithm>
#include <array>

#include "platform/linux/x11/NameHash.h"

namespace x11 {
namespace {

constexpr std::size_t blockSize = 128;
constexpr std::array<std::uint8_t, 8> header{0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
constexpr std::size_t firstDescriptor = 54;
constexpr std::size_t descriptorSize = 18;
constexpr std::size_t descriptorText = 5;
constexpr std::uint8_t nameTag = 0xFC;
constexpr std::uint8_t serialTag = 0xFF;

/// The text of a descriptor: printable ASCII up to a line feed, padded with spaces.
std::string text(std::span<const std::uint8_t> descriptor) {
  std::string result;
  for (const std::uint8_t byte : descriptor.subspan(descriptorText)) {
    if (byte == '\n') break;
    if (byte >= 0x20 && byte < 0x7F) result += static_cast<char>(byte);
  }
  const auto first = result.find_first_not_of(' ');
  return first == std::string::npos ? std::string() : result.substr(first, result.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::optional<Edid> parseEdid(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < blockSize || !std::equal(header.begin(), header.end(), bytes.begin())) return std::nullopt;
  const auto at = [&](std::size_t index) { return static_cast<std::uint32_t>(bytes[index]); };
  Edid edid;
  edid.vendor = at(8) << 8 | at(9);
  edid.model = at(11) << 8 | at(10);
  edid.serial = at(15) << 24 | at(14) << 16 | at(13) << 8 | at(12);
  std::string serialText;
  for (std::size_t start = firstDescriptor; start + descriptorSize < blockSize; start += descriptorSize) {
    const auto descriptor = bytes.subspan(start, descriptorSize);
    // A descriptor that begins otherwise describes a video mode.
    if (descriptor[0] != 0 || descriptor[1] != 0 || descriptor[2] != 0) continue;
    if (descriptor[3] == nameTag && edid.name.empty()) edid.name = text(descriptor);
    if (descriptor[3] == serialTag && serialText.empty()) serialText = text(descriptor);
  }
  if (edid.serial == 0 && !serialText.empty()) edid.serial = nameHash(serialText);
  return edid;
}

}  // namespace x11
