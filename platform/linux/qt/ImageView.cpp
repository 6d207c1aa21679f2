#include <QPainter>
#include <algorithm>

#include "platform/Controls.h"
#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace ns {
namespace {

struct ImageViewNative final : View::Native {
  std::optional<double> naturalWidth() const override {
    return image ? std::optional(image->native().size().width()) : std::nullopt;
  }
  std::optional<double> naturalHeight(double) const override {
    return image ? std::optional(image->native().size().height()) : std::nullopt;
  }

  void paint(QPainter& painter, const QRectF& bounds) override {
    if (!image) return;
    QSizeF size = image->native().size();
    // What is too large is shrunk in either case.
    const double fit = std::min(bounds.width() / size.width(), bounds.height() / size.height());
    if (fit < 1 || scaling == ImageScaling::ProportionallyUpOrDown) size *= fit;
    const double ratio = widget->devicePixelRatioF();
    const QPixmap picture = image->native().pixmap(size, ratio, qt::color(tint));
    // On whole device pixels, where symbols are sharp.
    const QPointF corner = bounds.center() - QPointF(size.width(), size.height()) / 2;
    painter.drawPixmap(QPointF(qRound(corner.x() * ratio) / ratio, qRound(corner.y() * ratio) / ratio), picture);
  }

  qt::AccessibleFacts accessibleFacts() const override {
    auto facts = Native::accessibleFacts();
    facts.role = QAccessible::Graphic;
    if (image && facts.name.isEmpty()) facts.name = QString::fromStdString(image->accessibilityDescription());
    return facts;
  }

  std::shared_ptr<Image> image;
  Color tint = Color::labelColor();
  ImageScaling scaling = ImageScaling::None;
};

struct SeparatorNative final : View::Native {
  void paint(QPainter& painter, const QRectF& bounds) override {
    painter.fillRect(bounds, qt::color(qt::ControlColor::Divider));
  }
  qt::AccessibleFacts accessibleFacts() const override {
    auto facts = Native::accessibleFacts();
    facts.role = QAccessible::Separator;
    return facts;
  }
};

}  // namespace

ImageView::ImageView() : View(std::make_unique<ImageViewNative>()) {}

void ImageView::setImage(std::shared_ptr<Image> image) {
  auto& native = qt::nativeOf<ImageViewNative>(*this);
  native.image = std::move(image);
  native.contentChanged();
}

std::shared_ptr<Image> ImageView::image() const { return qt::nativeOf<ImageViewNative>(*this).image; }

void ImageView::setContentTintColor(Color color) {
  auto& native = qt::nativeOf<ImageViewNative>(*this);
  native.tint = color;
  native.repaint();
}

void ImageView::setImageScaling(ImageScaling scaling) {
  auto& native = qt::nativeOf<ImageViewNative>(*this);
  native.scaling = scaling;
  native.repaint();
}

SeparatorBox::SeparatorBox() : View(std::make_unique<SeparatorNative>()) {}

}  // namespace ns
