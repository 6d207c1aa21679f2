// Random desktops, with gaps and negative origins, against plain reckoning. Coordinates are quarters of a point, so
// that every sum is exact.
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "Fixture.h"
#include "Ostrel/Geometry.h"

namespace {

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  int integer(int least, int most) { return std::uniform_int_distribution(least, most)(engine_); }
  double quarter(int least, int most) { return integer(least * 4, most * 4) / 4.0; }
  CGRect rect() { return {{quarter(-4000, 4000), quarter(-4000, 4000)}, {quarter(1, 3000), quarter(1, 2000)}}; }

 private:
  std::mt19937 engine_;
};

/// The squared way from a point to the closest one of a rectangle's closure.
double squaredWay(CGRect rect, CGPoint point) {
  const double x = std::clamp(point.x, rect.origin.x, rect.origin.x + rect.size.width) - point.x;
  const double y = std::clamp(point.y, rect.origin.y, rect.origin.y + rect.size.height) - point.y;
  return x * x + y * y;
}

TEST(GeometryTest, PicksTheContainingOrNearestDisplay) {
  SCOPED_TRACE(testing::Message() << "OSTREL_TEST_SEED=" << testSeed());
  Random random(testSeed());
  for (int round = 0; round < 3000; ++round) {
    std::vector<CGRect> displays(static_cast<std::size_t>(random.integer(1, 5)));
    for (CGRect& display : displays) display = random.rect();
    if (random.integer(0, 3) == 0) displays.push_back(displays.front());  // mirrored
    const CGRect near = displays[static_cast<std::size_t>(random.integer(0, 1)) % displays.size()];
    // Often exactly on an edge.
    const CGPoint point = random.integer(0, 1) == 0 ? CGPoint{random.quarter(-6000, 6000), random.quarter(-6000, 6000)}
                                                    : CGPoint{near.origin.x + near.size.width, near.origin.y};
    const auto chosen = ostrel::containingOrNearest(displays, point);
    ASSERT_TRUE(chosen);
    const auto holds = [point](CGRect each) {
      return squaredWay(each, point) == 0 && point.x != each.origin.x + each.size.width &&
             point.y != each.origin.y + each.size.height;
    };
    const auto holder = std::find_if(displays.begin(), displays.end(), holds);
    const auto nearest = std::min_element(
        displays.begin(), displays.end(),
        [point](const CGRect& one, const CGRect& other) { return squaredWay(one, point) < squaredWay(other, point); });
    const auto expected = holder != displays.end() ? holder : nearest;
    ASSERT_EQ(*chosen, static_cast<std::size_t>(expected - displays.begin())) << "round " << round;
  }
  EXPECT_FALSE(ostrel::containingOrNearest({}, {0, 0}));
}

TEST(GeometryTest, CentersAndFillsWithinTheirInvariants) {
  SCOPED_TRACE(testing::Message() << "OSTREL_TEST_SEED=" << testSeed());
  Random random(testSeed());
  for (int round = 0; round < 3000; ++round) {
    const CGRect display = random.rect();
    const CGRect window = random.rect();
    const CGPoint centered = ostrel::horizontallyCentered(display, window.origin, window.size);
    const double leftSpace = centered.x - CGRectGetMinX(display);
    const double rightSpace = CGRectGetMaxX(display) - (centered.x + window.size.width);
    ASSERT_EQ(leftSpace, rightSpace);
    ASSERT_EQ(centered.y, window.origin.y);

    const ostrel::WindowMargins margins{random.quarter(0, 1000), random.quarter(0, 1000), random.quarter(0, 1000),
                                        random.quarter(0, 1000)};
    const CGRect filled = ostrel::filledFrame(display, margins);
    ASSERT_EQ(CGRectGetMinX(filled) - CGRectGetMinX(display), margins.left);
    ASSERT_EQ(CGRectGetMinY(filled) - CGRectGetMinY(display), margins.top);
    // Either the margin holds, or the window has its least size and reaches past it.
    const double right = CGRectGetMaxX(display) - CGRectGetMaxX(filled);
    const double bottom = CGRectGetMaxY(display) - CGRectGetMaxY(filled);
    ASSERT_TRUE(filled.size.width >= 120 && filled.size.height >= 120);
    ASSERT_TRUE(right == margins.right || (filled.size.width == 120 && right < margins.right));
    ASSERT_TRUE(bottom == margins.bottom || (filled.size.height == 120 && bottom < margins.bottom));
  }
}

}  // namespace
