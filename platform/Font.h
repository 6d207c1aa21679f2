// The system font at a size and weight.
#pragma once

namespace ns {

enum class FontWeight { Regular, Medium, Semibold };

/// A value; sizes are in points.
struct Font {
  double pointSize;
  FontWeight weight = FontWeight::Regular;

  static constexpr Font systemFontOfSize(double size, FontWeight weight = FontWeight::Regular) {
    return {size, weight};
  }
  friend constexpr bool operator==(const Font&, const Font&) = default;
};

}  // namespace ns
