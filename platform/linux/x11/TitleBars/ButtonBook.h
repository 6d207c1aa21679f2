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

  /// Where the user's book lasts.
  static std::string userFile();
  /// What a book on disk says; none when it is no such text. What lies outside any title bar is left out.
  static std::optional<ButtonBook> parse(std::string_view text);
  std::string text() const;

  /// Null when nothing is known of that kind.
  const ButtonEvidence* evidence(const TitleBarKind& kind) const;
  /// Returns whether a button has come, gone or changed.
  bool add(const TitleBarKind& kind, const Observation& observation);
  /// Believes these presses about a kind of which nothing has been learned. Once something is, they count as any others
  /// and do not come back, even if they are contradicted.
  void ship(const TitleBarKind& kind, const std::vector<Observation>& presses);
  /// Whether this process has shipped something about that kind.
  bool hasShipped(const TitleBarKind& kind) const;
  /// Whether all that speaks for a button has been shipped.
  bool isShipped(const TitleBarKind& kind, ButtonRole role) const;
  /// Forgets all kinds of one painter, of all painters when it is empty. Returns of how many
  /// something had been learned.
  std::size_t forget(std::string_view painter);
  /// Those of whom something has been learned, each once.
  std::set<std::string> painters() const;
  std::size_t size() const { return pages_.size(); }

 private:
  struct Page {
    ButtonEvidence evidence;
    std::uint64_t lastNews = 0;
    /// Whether something was shipped about it, and what, as far as this process knows.
    bool wasShipped = false;
    std::vector<Observation> shipped{};

    bool isLearned() const { return wasShipped ? evidence.observations() != shipped : evidence.hasAnyRole(); }
  };
  Page& page(const TitleBarKind& kind);

  std::map<TitleBarKind, Page> pages_;
  std::uint64_t news_ = 0;
};

}  // namespace x11
