#include "platform/Image.h"

#include <QPainter>
#include <QPixmapCache>
#include <QString>

#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/Symbols.h"

namespace ns {
namespace {

QPixmap tinted(QPixmap pixmap, const QColor& tint) {
  QPainter painter(&pixmap);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(QRectF({0, 0}, pixmap.deviceIndependentSize()), tint);
  return pixmap;
}

/// Themes answer with the next smaller picture when they have none of this size: it is scaled up, for a row of icons
/// looks even only when all are of one size.
QPixmap iconPicture(const QIcon& icon, QSizeF size, double devicePixelRatio) {
  QPixmap source = icon.pixmap(size.toSize(), devicePixelRatio);
  source.setDevicePixelRatio(1);
  const QSize pixels = (size * devicePixelRatio).toSize();
  QPixmap result(pixels);
  result.fill(Qt::transparent);
  if (!source.isNull()) {
    const QPixmap scaled = source.scaled(pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPainter(&result).drawPixmap((pixels.width() - scaled.width()) / 2, (pixels.height() - scaled.height()) / 2,
                                 scaled);
  }
  result.setDevicePixelRatio(devicePixelRatio);
  return result;
}

}  // namespace

QSizeF Image::Native::size() const {
  if (chosenSize) return *chosenSize;
  if (symbolName.empty()) return {32, 32};
  const double side = qt::symbolSide(configuration.pointSize);
  return {side, side};
}

QPixmap Image::Native::pixmap(QSizeF size, double devicePixelRatio, const QColor& tint) const {
  if (symbolName.empty()) {
    const QPixmap picture = iconPicture(icon, size, devicePixelRatio);
    return isTemplate ? tinted(picture, tint) : picture;
  }
  const QString key = QStringLiteral("ostrel/%1/%2x%3/%4/%5/%6")
                          .arg(QString::fromStdString(symbolName))
                          .arg(size.width())
                          .arg(size.height())
                          .arg(static_cast<int>(configuration.weight))
                          .arg(devicePixelRatio)
                          .arg(tint.rgba());
  QPixmap pixmap;
  if (!QPixmapCache::find(key, &pixmap)) {
    pixmap = tinted(qt::drawSymbol(*qt::symbolNamed(symbolName), size, configuration.weight, devicePixelRatio), tint);
    QPixmapCache::insert(key, pixmap);
  }
  return pixmap;
}

QIcon Image::Native::tintedIcon(QSizeF size, const QColor& tint) const {
  QIcon result;
  for (const double scale : {1.0, 1.5, 2.0, 3.0}) result.addPixmap(pixmap(size, scale, tint));
  return result;
}

Image::Image(std::unique_ptr<Native> native) : native_(std::move(native)) {}
Image::~Image() = default;

std::shared_ptr<Image> Image::imageWithSystemSymbolName(const std::string& name,
                                                        const std::string& accessibilityDescription) {
  if (qt::symbolNamed(name) == nullptr) return nullptr;
  auto native = std::make_unique<Native>();
  native->symbolName = name;
  native->accessibilityDescription = accessibilityDescription;
  return std::make_shared<Image>(std::move(native));
}

std::shared_ptr<Image> Image::imageWithSymbolConfiguration(SymbolConfiguration configuration) const {
  if (native_->symbolName.empty()) return nullptr;
  auto native = std::make_unique<Native>(*native_);
  native->configuration = configuration;
  return std::make_shared<Image>(std::move(native));
}

void Image::setTemplate(bool isTemplate) { native_->isTemplate = isTemplate; }
bool Image::isTemplate() const { return native_->isTemplate; }
void Image::setSize(CGSize size) { native_->chosenSize = QSizeF(size.width, size.height); }
CGSize Image::size() const {
  const QSizeF size = native_->size();
  return {size.width(), size.height()};
}
std::string Image::accessibilityDescription() const { return native_->accessibilityDescription; }

}  // namespace ns

namespace qt {

std::shared_ptr<ns::Image> imageWithIcon(QIcon icon) {
  auto native = std::make_unique<ns::Image::Native>();
  native->icon = std::move(icon);
  return std::make_shared<ns::Image>(std::move(native));
}

}  // namespace qt
