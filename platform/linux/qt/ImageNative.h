// What an image is on this desktop: one of our own symbol drawings, or an icon of the theme.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QSizeF>
#include <memory>
#include <optional>
#include <string>

#include "platform/Image.h"

namespace ns {

/// Plain state, read by whatever shows the image. Pictures are drawn when they are wanted, at the size and scale of the
/// place that shows them. Main thread only.
struct Image::Native {
  /// The name of a symbol that has a drawing; empty when the image is an icon.
  std::string symbolName;
  QIcon icon;
  SymbolConfiguration configuration{13, FontWeight::Regular};
  bool isTemplate = false;
  /// Set by the owner; none for the natural size.
  std::optional<QSizeF> chosenSize;
  std::string accessibilityDescription;

  /// In points: the chosen size, else the natural one of a symbol at its configuration, else 32 by 32.
  QSizeF size() const;
  /// The picture at `size` points for a screen of this scale. Symbols and template images are drawn in `tint`, other
  /// icons in their own colours.
  QPixmap pixmap(QSizeF size, double devicePixelRatio, const QColor& tint) const;
  QPixmap pixmap(double devicePixelRatio, const QColor& tint) const { return pixmap(size(), devicePixelRatio, tint); }
  /// For menus and trays, which choose the scale themselves: sharp from 1x to 3x.
  QIcon tintedIcon(QSizeF size, const QColor& tint) const;
};

}  // namespace ns

namespace qt {

/// An image that shows an icon; of 32 by 32 points until it is told another size.
std::shared_ptr<ns::Image> imageWithIcon(QIcon icon);

}  // namespace qt
