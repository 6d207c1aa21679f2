// Text that cannot be edited.
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QTextDocument>
#include <cmath>

#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/TextNative.h"
#include "platform/linux/qt/ViewWidget.h"
#include "platform/linux/qt/Words.h"

namespace qt {
namespace {

struct LabelNative final : TextNative {
  LabelNative(const std::string& initial, bool isWrapping)
      : original(QString::fromStdString(initial)), content(inWordsOfThisDesktop(original)), wraps(isWrapping) {}

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
    painter.drawText(bounds, textFlags(),
                     truncates() ? QFontMetricsF(own).elidedText(content, Qt::ElideRight, bounds.width()) : content);
  }

  void setText(const QString& wanted) override {
    if (std::exchange(original, wanted) == wanted) return;
    content = inWordsOfThisDesktop(wanted);
    styleChanged();
    notifyAccessible(QAccessible::NameChanged);
  }
  QString text() const override { return original; }
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

  QString original;
  /// What is shown of it.
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
