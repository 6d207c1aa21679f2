#include "platform/linux/x11/TitleBars/ButtonEvidence.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

namespace x11 {

namespace {

constexpr ButtonRole roles[] = {ButtonRole::Minimize, ButtonRole::Zoom, ButtonRole::Close};

// In points.
constexpr int leastSide = 14;
constexpr int mostSide = 40;
/// What a press says about its surroundings: nothing else than that button can be so near.
constexpr int samePlace = 8;

constexpr std::size_t keptOfOne = 8;  // of each role, and of the presses that did nothing twice as many

/// How far apart two spots are, along the axis on which they are farther; endless between corners.
int distance(const Spot& one, const Spot& other) {
  if (one.corner != other.corner) return std::numeric_limits<int>::max();
  return std::max(std::abs(one.across - other.across), std::abs(one.down - other.down));
}

/// From `least` to `most`, both included.
struct Span {
  int least;
  int most;
  int length() const { return most - least + 1; }
  void take(int place) {
    least = std::min(least, place);
    most = std::max(most, place);
  }
  /// Makes it at least that long, about its middle.
  void growTo(int length) {
    const int missing = length - this->length();
    if (missing <= 0) return;
    least -= missing / 2;
    most += missing - missing / 2;
  }
};

}  // namespace

bool StoredButton::contains(const Spot& spot, int rim) const {
  return spot.corner == corner && spot.across >= across + rim && spot.across < across + width - rim &&
         spot.down >= down + rim && spot.down < down + height - rim;
}

bool ButtonEvidence::add(const Observation& observation) {
  const auto contradicts = [&](const Observation& older) {
    if (older.role == observation.role) {
      // Too far apart for one button: it has moved, or it was no button.
      return observation.role && distance(older.spot, observation.spot) >= mostSide * scale_ / 100;
    }
    return distance(older.spot, observation.spot) <= samePlace * scale_ / 100;
  };
  // One doubtful press makes its whole role doubtful.
  std::vector<std::optional<ButtonRole>> doubtful;
  for (const Observation& older : observations_) {
    if (older.role && contradicts(older)) doubtful.push_back(older.role);
  }
  std::erase_if(observations_, [&](const Observation& older) {
    return older.role ? std::find(doubtful.begin(), doubtful.end(), older.role) != doubtful.end() : contradicts(older);
  });
  observations_.push_back(observation);
  forgetOldest();

  std::vector<StoredButton> buttons;
  for (const ButtonRole role : roles) {
    if (const auto button = buttonOf(role)) buttons.push_back(*button);
  }
  return std::exchange(buttons_, buttons) != buttons;
}

bool ButtonEvidence::has(ButtonRole role) const {
  return std::any_of(buttons_.begin(), buttons_.end(), [role](const StoredButton& one) { return one.role == role; });
}

int ButtonEvidence::seen(ButtonRole role) const {
  return static_cast<int>(std::count_if(observations_.begin(), observations_.end(),
                                        [role](const Observation& one) { return one.role == role; }));
}

bool ButtonEvidence::hasAnyRole() const {
  return std::any_of(observations_.begin(), observations_.end(), [](const Observation& one) { return !!one.role; });
}

std::optional<StoredButton> ButtonEvidence::buttonOf(ButtonRole role) const {
  if (seen(role) < needed(role)) return std::nullopt;
  std::optional<Spot> first;
  Span across{}, down{};
  for (const Observation& one : observations_) {
    if (one.role != role) continue;
    if (!first) {
      first = one.spot;
      across = {one.spot.across, one.spot.across};
      down = {one.spot.down, one.spot.down};
    }
    across.take(one.spot.across);
    down.take(one.spot.down);
  }
  const int least = leastSide * scale_ / 100;
  across.growTo(least);
  down.growTo(least);
  // What lies nearer to another press than to ours is not certainly ours.
  for (const Observation& other : observations_) {
    if (other.role == role || other.spot.corner != first->corner) continue;
    const bool isBeside = other.spot.down >= down.least && other.spot.down <= down.most;
    if (isBeside && other.spot.across >= across.least && other.spot.across <= across.most) return std::nullopt;
  }
  if (std::max(across.length(), down.length()) > mostSide * scale_ / 100) return std::nullopt;
  return StoredButton{role, first->corner, across.least, down.least, across.length(), down.length()};
}

void ButtonEvidence::forgetOldest() {
  const auto& newest = observations_.back();
  const std::size_t kept = newest.role ? keptOfOne : 2 * keptOfOne;
  const auto isAlike = [&newest](const Observation& one) { return one.role == newest.role; };
  if (static_cast<std::size_t>(std::count_if(observations_.begin(), observations_.end(), isAlike)) <= kept) return;
  observations_.erase(std::find_if(observations_.begin(), observations_.end(), isAlike));
}

}  // namespace x11
