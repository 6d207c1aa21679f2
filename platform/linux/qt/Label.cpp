// Text that cannot be edited.
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QTextDocument>
#include <QTextLayout>
#include <cmath>

#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/TextNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace qt {
namespace {

constexpr QChar controlSign(0x2303);

struct LabelNative final : TextNative {
  LabelNative(const std::string& initial, bool isWrapping)
      : content(QString::fromStdString(initial)), wraps(isWrapping) {}

  std::optional<double> naturalWidth() const override {
    if (!width) {
      width = 0;
      const QFontMetricsF metrics(qt::font(font));
      for (const auto& line : content.split(QLatin1Char('\n'))) {
        width = std::max(*width, std::ceil(metrics.horizontalAdvance(line)));
      }
    }
    return width;
  }

  /// A label that wraps has the height of its lines at that width; an empty one that of a line.
  std::optional<double> naturalHeight(double available) const override {
    const double whole = std::floor(available + 0.001);
    if (height && (!wraps || height->first == whole)) return height->second;
    const QFontMetricsF metrics(qt::font(font));
    double lines = metrics.height();
    if (wraps && !content.isEmpty() && whole > 0) {
      lines = std::max(lines, metrics.boundingRect(QRectF(0, 0, whole, 1e6), textFlags(), content).height());
    }
    height = {whole, std::ceil(lines)};
    return height->second;
  }

  /// Aligned as the interface is written; the text itself runs as its own script does.
  int textFlags() const {
    const bool isMirrored = QGuiApplication::layoutDirection() == Qt::RightToLeft;
    const bool isRight = alignment == ns::TextAlignment::Right || isMirrored;
    const int lines = wraps ? int{Qt::TextWordWrap} : int{Qt::TextSingleLine};
    return qt::textAtSide(content, isRight) | Qt::AlignTop | lines;
  }

  bool truncates() const { return !wraps && lineBreakMode == ns::LineBreakMode::TruncatingTail; }

  /// What is cut off can be read in a tool tip.
  void laidOut() override {
    const bool isCutOff = truncates() && *naturalWidth() > frame.width();
    // Made plain, for a name may look like markup.
    widget->setToolTip(isCutOff ? Qt::convertFromPlainText(content) : QString());
  }

  void paint(QPainter& painter, const QRectF& bounds) override {
    const QFont own = qt::font(font);
    painter.setFont(own);
    painter.setPen(qt::color(textColor));
    if (wraps && content.contains(controlSign)) {
      paintWithControlSigns(painter, bounds);
      return;
    }
    painter.drawText(bounds, textFlags(),
                     truncates() ? QFontMetricsF(own).elidedText(content, Qt::ElideRight, bounds.width()) : content);
  }

  /// Fonts draw the sign of the Control key tiny and high, beside the signs of the other keys: here it is as large as
  /// they are.
  void paintWithControlSigns(QPainter& painter, const QRectF& bounds) const {
    QTextLayout layout(content, painter.font());
    layout.setTextOption(QTextOption(Qt::Alignment(textFlags()) & Qt::AlignHorizontal_Mask));
    QList<QTextLayout::FormatRange> hidden;
    for (qsizetype at = content.indexOf(controlSign); at >= 0; at = content.indexOf(controlSign, at + 1)) {
      hidden.append({static_cast<int>(at), 1, {}});
      hidden.back().format.setForeground(Qt::transparent);
    }
    layout.setFormats(hidden);
    const QFontMetricsF metrics(painter.font());
    double down = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(bounds.width());
      line.setPosition({0, down});
      down += line.height() + metrics.leading();
    }
    layout.endLayout();
    layout.draw(&painter, bounds.topLeft());

    const double half = metrics.capHeight() * 0.45;
    painter.setPen(QPen(painter.pen().color(), painter.font().pixelSize() * 0.1));
    for (const auto& sign : hidden) {
      const QTextLine line = layout.lineForTextPosition(sign.start);
      const double x = (line.cursorToX(sign.start) + line.cursorToX(sign.start + 1)) / 2;
      const QPointF middle = bounds.topLeft() + QPointF(x, line.y() + line.ascent() - half);
      painter.drawPolyline(QPolygonF{middle + QPointF(-half, half / 2), middle - QPointF(0, half / 2),
                                     middle + QPointF(half, half / 2)});
    }
  }

  void setText(const QString& wanted) override {
    if (std::exchange(content, wanted) == wanted) return;
    styleChanged();
    notifyAccessible(QAccessible::NameChanged);
  }
  QString text() const override { return content; }
  void styleChanged() override {
    width.reset();
    height.reset();
    contentChanged();
  }

  /// A click goes to the view that the label belongs to.
  bool mousePressed(QPointF point) override { return Native::mousePressed(point); }

  AccessibleFacts accessibleFacts() const override {
    auto facts = TextNative::accessibleFacts();
    facts.role = QAccessible::StaticText;
    if (facts.name.isEmpty()) facts.name = content;
    return facts;
  }

  QString content;
  const bool wraps;
  mutable std::optional<double> width;
  /// For the width that it was asked for last.
  mutable std::optional<std::pair<double, double>> height;
};

}  // namespace

std::unique_ptr<TextNative> makeLabel(const std::string& text, bool wraps) {
  return std::make_unique<LabelNative>(text, wraps);
}

}  // namespace qt
