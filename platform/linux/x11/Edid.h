// What a monitor says about itself.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace x11 {

/// The identifying part of a monitor's EDID block. A number the monitor does not give is 0, a name it does not give
/// empty.
struct Edid {
  /// The three-letter maker's code as it is packed in the block, read as one number.
  std::uint32_t vendor = 0;
  std::uint32_t model = 0;
  /// The numeric serial number; of a monitor that has only a textual one, a number made from that text, so that two
  /// monitors of one model can be told apart.
  std::uint32_t serial = 0;
  std::string name;
};

/// Reads the first block of `bytes`, which may be anything: none unless it is an EDID block. The block's checksum is
/// not asked for: monitors with a wrong one exist, and theirs is wrong every day.
std::optional<Edid> parseEdid(std::span<const std::uint8_t> bytes);

}  // namespace x11
