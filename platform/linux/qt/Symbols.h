// The drawings of the system symbols.
#pragma once

#include <QByteArray>
#include <QIcon>
#include <QPixmap>
#include <QSizeF>
#include <string_view>

#include "platform/Font.h"

namespace qt {

/// One drawing: a file of platform/linux/symbols, on a grid of 24 by 24 units. Static storage.
struct Symbol {
  std::string_view name;
  std::string_view svg;
};

/// Null for a name without a drawing. Any thread.
const Symbol* symbolNamed(std::string_view name);

/// The side of a symbol's square at a point size, in points: the drawing is a little higher than a capital letter of
/// that size, as icons beside text are.
double symbolSide(double pointSize);

/// The drawing in black on nothing, `size` points large (the shorter side decides, the drawing is centred), with lines
/// of this weight.
QPixmap drawSymbol(const Symbol& symbol, QSizeF size, ns::FontWeight weight, double devicePixelRatio);

/// The application's icon, a square of this side in points.
QPixmap drawApplicationPicture(double side, double devicePixelRatio);
/// For the title bars of its windows and for whatever lists windows.
QIcon drawApplicationIcon();

}  // namespace qt
