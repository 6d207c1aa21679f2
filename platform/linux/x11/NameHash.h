// Numbers for names.
#pragma once

#include <cstdint>
#include <string_view>

namespace x11 {

/// The same number for the same name on every machine and in every version (32-bit FNV-1a): such numbers end up in
/// stored preferences. Never 0.
constexpr std::uint32_t nameHash(std::string_view name) {
  std::uint32_t hash = 2166136261U;
  for (const char c : name) hash = (hash ^ static_cast<std::uint8_t>(c)) * 16777619U;
  return hash == 0 ? 1 : hash;
}

}  // namespace x11
