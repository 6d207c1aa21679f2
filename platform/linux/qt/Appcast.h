// The feed that tells of new versions: an RSS document with one item for each version.
#pragma once

#include <QByteArray>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qt {

struct FeedItem {
  /// The build, which orders versions; empty when the item names none.
  std::string version;
  /// As people know it; the build when the item names no other.
  std::string displayVersion;
  /// A page that tells more, https or http; empty when there is none.
  std::string link;
};

/// The items of a feed in its order, without those for other systems. None when it is no well-formed feed. Any thread.
std::optional<std::vector<FeedItem>> parseAppcast(const QByteArray& document);

/// Compares versions by their numbers from left to right, a missing one being 0: less than, equal to or greater than 0.
/// Of two with equal numbers the one with letters behind them (a beta) is the earlier. Any thread.
int compareVersions(std::string_view left, std::string_view right);

/// The newest item, if it is newer than what runs. An item without a build is compared by its display version.
const FeedItem* newestUpdate(const std::vector<FeedItem>& items, std::string_view runningBuild,
                             std::string_view runningVersion);

}  // namespace qt
