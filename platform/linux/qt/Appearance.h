// Colours and fonts of the interface, light or dark as the desktop is.
#pragma once

#include <QColor>
#include <QFont>

#include "platform/Color.h"
#include "platform/Font.h"

namespace qt {

/// Parts of controls that have no named colour of their own.
enum class ControlColor {
  Face,
  PressedFace,
  Edge,
  LowerEdge,
  Field,
  /// The accent beneath white text: in the dark scheme the accent that can be read on a card is too light for that.
  AccentFill,
  /// Lines between rows; no stronger than the border of the card around them.
  Divider,
  Track,
  TrackEdge,
  Knob,
  Glyph,
  FocusRing,
  Scroller,
  Menu,
  MenuEdge,
};

/// Starts following the desktop; every widget is repainted when it changes between light and dark. Called once, with
/// the application object. Main thread only, as everything here.
void startAppearance();
bool isDark();
/// As it is now: ask again at each painting.
QColor color(ns::Color color);
QColor color(ControlColor part);
/// Of an area that something is written on.
QColor fillColor(ns::Color color);
/// A size of one point is one pixel at 1x.
QFont font(const ns::Font& font);

/// The painter's flag by which `text` runs as its own script does, whichever way the interface is written.
int textDirection(const QString& text);
/// That and the flags by which `text` stands at this side, whichever way the interface is written.
int textAtSide(const QString& text, bool isRight);

}  // namespace qt
