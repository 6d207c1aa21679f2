// Colours by role. A named colour follows the desktop's light or dark look wherever it is used, also while on screen.
#pragma once

namespace ns {

enum class ColorName {
  Clear,
  Black,
  White,
  Label,
  SecondaryLabel,
  Separator,
  WindowBackground,
  ControlBackground,
  ControlAccent,
  SystemBlue,
  SystemOrange,
};

/// A named colour at some opacity; a value without resources.
class Color {
 public:
  static constexpr Color clearColor() { return Color(ColorName::Clear); }
  static constexpr Color blackColor() { return Color(ColorName::Black); }
  static constexpr Color whiteColor() { return Color(ColorName::White); }
  static constexpr Color labelColor() { return Color(ColorName::Label); }
  static constexpr Color secondaryLabelColor() { return Color(ColorName::SecondaryLabel); }
  static constexpr Color separatorColor() { return Color(ColorName::Separator); }
  static constexpr Color windowBackgroundColor() { return Color(ColorName::WindowBackground); }
  static constexpr Color controlBackgroundColor() { return Color(ColorName::ControlBackground); }
  static constexpr Color controlAccentColor() { return Color(ColorName::ControlAccent); }
  static constexpr Color systemBlueColor() { return Color(ColorName::SystemBlue); }
  static constexpr Color systemOrangeColor() { return Color(ColorName::SystemOrange); }

  /// The same colour at an opacity from 0 to 1.
  constexpr Color colorWithAlphaComponent(double alpha) const {
    Color color = *this;
    color.alpha_ = alpha;
    return color;
  }

  constexpr ColorName name() const { return name_; }
  /// The opacity that the named colour is multiplied with.
  constexpr double alphaComponent() const { return alpha_; }
  friend constexpr bool operator==(const Color&, const Color&) = default;

 private:
  explicit constexpr Color(ColorName name) : name_(name) {}

  ColorName name_;
  double alpha_ = 1;
};

}  // namespace ns
