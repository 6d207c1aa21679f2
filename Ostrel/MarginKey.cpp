#include "Ostrel/MarginKey.h"

#include <string_view>

namespace ostrel {
namespace {

struct Row {
  std::string_view title;
  std::string_view symbolName;
  double WindowMargins::*edge;
};

constexpr Row row(MarginKey key) {
  switch (key) {
    case MarginKey::Top:
      return {"Top", "arrow.up.to.line", &WindowMargins::top};
    case MarginKey::Left:
      return {"Left", "arrow.left.to.line", &WindowMargins::left};
    case MarginKey::Right:
      return {"Right", "arrow.right.to.line", &WindowMargins::right};
    case MarginKey::Bottom:
      break;
  }
  return {"Bottom", "arrow.down.to.line", &WindowMargins::bottom};
}

}  // namespace

std::string title(MarginKey key) { return std::string(row(key).title); }
std::string symbolName(MarginKey key) { return std::string(row(key).symbolName); }
double& edge(WindowMargins& margins, MarginKey key) { return margins.*row(key).edge; }

}  // namespace ostrel
