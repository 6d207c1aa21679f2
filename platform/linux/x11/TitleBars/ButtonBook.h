// What has been learned about the title bars of every kind met so far.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/x11/TitleBars/ButtonEvidence.h"

namespace x11 {

/// Values only, no thread of its own.
class ButtonBook {
 public:
  /// A kind too many puts out the one that was longest without news.
  static constexpr std::size_t mostKinds = 400;

  /// What a book on disk says; none when it is no such text. What lies outside any title bar is left out.
  static std::optional<ButtonBook> parse(std::string_view text);
  std::string text() const;

  /// Null when nothing is known of that kind.
  const ButtonEvidence* evidence(const TitleBarKind& kind) const;
  /// Returns whether a button has come, gone or changed.
  bool add(const TitleBarKind& kind, const Observation& observation);
  /// Forgets all kinds of one painter, of all painters when it is empty. Returns how many there were.
  std::size_t forget(std::string_view painter);
  /// Those of whom at least one press on a button has been seen, each once.
  std::set<std::string> painters() const;
  std::size_t size() const { return pages_.size(); }

 private:
  struct Page {
    ButtonEvidence evidence;
    std::uint64_t lastNews = 0;
  };
  std::map<TitleBarKind, Page> pages_;
  std::uint64_t news_ = 0;
};

}  // namespace x11
