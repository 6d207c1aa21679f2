#include "platform/linux/qt/Symbols.h"

#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>

#include "platform/linux/qt/SymbolTable.h"

namespace qt {
namespace {

// The drawings say stroke-width="2"; the weight of the text beside them decides what that becomes.
QByteArray atWeight(std::string_view svg, ns::FontWeight weight) {
  QByteArray bytes(svg.data(), static_cast<qsizetype>(svg.size()));
  const char* width = weight == ns::FontWeight::Regular ? "1.8" : "2.2";
  return bytes.replace("stroke-width=\"2\"", QByteArray("stroke-width=\"") + width + "\"");
}

}  // namespace

const Symbol* symbolNamed(std::string_view name) {
  const auto found = std::ranges::find(symbolTable(), name, &Symbol::name);
  return found == symbolTable().end() ? nullptr : &*found;
}

double symbolSide(double pointSize) { return std::round(pointSize * 1.25); }

QPixmap drawSymbol(const Symbol& symbol, QSizeF size, ns::FontWeight weight, double devicePixelRatio) {
  QPixmap pixmap((size * devicePixelRatio).toSize());
  pixmap.setDevicePixelRatio(devicePixelRatio);
  pixmap.fill(Qt::transparent);
  const double side = std::min(size.width(), size.height());
  QSvgRenderer renderer(atWeight(symbol.svg, weight));
  QPainter painter(&pixmap);
  renderer.render(&painter, QRectF((size.width() - side) / 2, (size.height() - side) / 2, side, side));
  return pixmap;
}

QPixmap drawApplicationPicture(double side, double devicePixelRatio) {
  const std::string_view svg = applicationDrawing();
  QSvgRenderer renderer(QByteArray(svg.data(), static_cast<qsizetype>(svg.size())));
  QPixmap pixmap((QSizeF(side, side) * devicePixelRatio).toSize());
  pixmap.setDevicePixelRatio(devicePixelRatio);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  renderer.render(&painter, QRectF(0, 0, side, side));
  return pixmap;
}

QIcon drawApplicationIcon() {
  QIcon icon;
  for (const int side : {16, 24, 32, 48, 64}) icon.addPixmap(drawApplicationPicture(side, 1));
  return icon;
}

}  // namespace qt
