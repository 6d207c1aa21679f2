#include "platform/linux/qt/Appearance.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>
#include <QWidget>
#include <optional>

#include "platform/linux/qt/DesktopScheme.h"
#include "platform/linux/qt/Style.h"

namespace qt {
namespace {

struct Shade {
  QRgb light;
  QRgb dark;
};

constexpr QRgb shade(QRgb rgb, double alpha) {
  return (rgb & 0xFFFFFFU) | (static_cast<QRgb>(alpha * 255 + 0.5) << 24U);
}
constexpr QRgb black(double alpha) { return shade(0x000000, alpha); }
constexpr QRgb white(double alpha) { return shade(0xFFFFFF, alpha); }

constexpr Shade shadeOf(ns::ColorName name) {
  switch (name) {
    case ns::ColorName::Clear:
      return {black(0), black(0)};
    case ns::ColorName::Black:
      return {black(1), black(1)};
    case ns::ColorName::White:
      return {white(1), white(1)};
    case ns::ColorName::Label:
      return {black(0.85), white(0.88)};
    case ns::ColorName::SecondaryLabel:
      return {black(0.56), white(0.58)};
    case ns::ColorName::Separator:
      return {black(0.17), white(0.20)};
    case ns::ColorName::WindowBackground:
      return {0xFFF1F1F3, 0xFF232326};
    case ns::ColorName::ControlBackground:
      return {0xFFFFFFFF, 0xFF2E2E32};
    case ns::ColorName::ControlAccent:
      return {0xFF0A70E8, 0xFF4C9BFF};
    case ns::ColorName::SystemBlue:
      return {0xFF0A74F0, 0xFF2B86F5};
    case ns::ColorName::SystemOrange:
      return {0xFFB45600, 0xFFFF9F0A};
  }
  return {};
}

constexpr Shade shadeOf(ControlColor part) {
  switch (part) {
    case ControlColor::Face:
      return {0xFFFFFFFF, white(0.17)};
    case ControlColor::PressedFace:
      return {0xFFE4E4E8, white(0.28)};
    case ControlColor::Edge:
      return {black(0.17), white(0.10)};
    case ControlColor::LowerEdge:
      return {black(0.28), white(0.06)};
    case ControlColor::Field:
      return {0xFFFFFFFF, white(0.07)};
    case ControlColor::AccentFill:
      return {0xFF0A70E8, 0xFF1F72E3};
    case ControlColor::Divider:
      return {black(0.10), white(0.12)};
    case ControlColor::Track:
      return {black(0.13), white(0.18)};
    case ControlColor::TrackEdge:
      return {black(0.43), white(0.36)};
    case ControlColor::Knob:
      return {0xFFFFFFFF, 0xFFF2F2F5};
    case ControlColor::Glyph:
      return {black(0.70), white(0.85)};
    case ControlColor::FocusRing:
      return {shade(0x0A74F0, 0.55), shade(0x4A9BFF, 0.70)};
    case ControlColor::Scroller:
      return {black(0.38), white(0.42)};
    case ControlColor::Menu:
      return {0xFFFAFAFB, 0xFF2B2B2F};
    case ControlColor::MenuEdge:
      return {0xFFCDCDD1, 0xFF4B4B50};
  }
  return {};
}

DesktopScheme* scheme = nullptr;

QColor resolve(Shade both) { return QColor::fromRgba(isDark() ? both.dark : both.light); }

/// For the toolkit's own menus and dialogs.
QPalette palette() {
  const QColor window = color(ns::Color::windowBackgroundColor());
  const QColor text = color(ns::Color::labelColor());
  const QColor accent = color(ns::Color::controlAccentColor());
  QPalette result(window);
  result.setColor(QPalette::Window, window);
  result.setColor(QPalette::Base, color(ns::Color::controlBackgroundColor()));
  result.setColor(QPalette::AlternateBase, window);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    result.setColor(role, text);
    result.setColor(QPalette::Disabled, role, color(ns::Color::labelColor().colorWithAlphaComponent(0.4)));
  }
  result.setColor(QPalette::PlaceholderText, color(ns::Color::secondaryLabelColor()));
  result.setColor(QPalette::Button, isDark() ? QColor(0x3A, 0x3A, 0x3E) : QColor(0xFB, 0xFB, 0xFC));
  result.setColor(QPalette::ToolTipBase, color(ControlColor::Menu));
  result.setColor(QPalette::Highlight, color(ControlColor::AccentFill));
  result.setColor(QPalette::HighlightedText, Qt::white);
  result.setColor(QPalette::Link, accent);
  return result;
}

void apply() {
  QApplication::setPalette(palette());
  for (auto* window : QApplication::topLevelWidgets()) {
    window->update();
    for (auto* widget : window->findChildren<QWidget*>()) widget->update();
  }
}

/// The family of the interface: of those made for it the first that is installed, else what the desktop calls sans.
QString family() {
  static const QString chosen = [] {
    for (const auto* name :
         {"Inter", "Inter Variable", "Adwaita Sans", "Cantarell", "Noto Sans", "Ubuntu", "Open Sans"}) {
      if (QFontDatabase::hasFamily(QLatin1String(name))) return QString::fromLatin1(name);
    }
    return QStringLiteral("sans-serif");
  }();
  return chosen;
}

}  // namespace

void startAppearance() {
  QApplication::setStyle(new Style);
  scheme = new DesktopScheme(apply);
  apply();
}

bool isDark() { return scheme && scheme->isDark(); }

QColor color(ns::Color color) {
  QColor result = resolve(shadeOf(color.name()));
  result.setAlphaF(result.alphaF() * static_cast<float>(color.alphaComponent()));
  return result;
}

QColor color(ControlColor part) { return resolve(shadeOf(part)); }

QColor fillColor(ns::Color color) {
  if (color.name() != ns::ColorName::ControlAccent) return qt::color(color);
  QColor result = qt::color(ControlColor::AccentFill);
  result.setAlphaF(static_cast<float>(color.alphaComponent()));
  return result;
}

int textDirection(const QString& text) {
  return text.isRightToLeft() ? int{Qt::TextForceRightToLeft} : int{Qt::TextForceLeftToRight};
}

int textAtSide(const QString& text, bool isRight) {
  return int{Qt::AlignAbsolute} | (isRight ? int{Qt::AlignRight} : int{Qt::AlignLeft}) | textDirection(text);
}

QFont font(const ns::Font& font) {
  QFont result(family());
  result.setPixelSize(static_cast<int>(font.pointSize + 0.5));
  switch (font.weight) {
    case ns::FontWeight::Regular:
      result.setWeight(QFont::Normal);
      break;
    case ns::FontWeight::Medium:
      result.setWeight(QFont::Medium);
      break;
    case ns::FontWeight::Semibold:
      result.setWeight(QFont::DemiBold);
      break;
  }
  return result;
}

}  // namespace qt
