#include <gtest/gtest.h>

#include <QIcon>
#include <QImage>
#include <algorithm>

#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/SymbolTable.h"

namespace {

TEST(SymbolsTest, EveryDrawingIsVisibleCentredAndWithinItsSquare) {
  ASSERT_FALSE(qt::symbolTable().empty());
  for (const qt::Symbol& symbol : qt::symbolTable()) {
    SCOPED_TRACE(symbol.name);
    const auto image = ns::Image::imageWithSystemSymbolName(std::string(symbol.name))
                           ->imageWithSymbolConfiguration({48, ns::FontWeight::Medium});
    const QImage picture = image->native().pixmap(1, Qt::black).toImage().convertToFormat(QImage::Format_ARGB32);
    QRect inked;
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        if (qAlpha(picture.pixel(x, y)) > 64) inked |= QRect(x, y, 1, 1);
      }
    }
    EXPECT_GE(std::max(inked.width(), inked.height()), picture.width() * 3 / 4);
    EXPECT_LE(inked.width(), picture.width() - 2) << "touches an edge";
    EXPECT_LE(inked.height(), picture.height() - 2) << "touches an edge";
    EXPECT_NEAR(inked.center().x(), picture.width() / 2, 2);
    EXPECT_NEAR(inked.center().y(), picture.height() / 2, 3);
  }
}

TEST(SymbolsTest, AreDrawnInTheTintAtTheScaleOfTheScreen) {
  const auto image = ns::Image::imageWithSystemSymbolName("rectangle.center.inset.filled");
  const QPixmap picture = image->native().pixmap({20, 20}, 2, QColor(255, 0, 0, 128));
  EXPECT_EQ(picture.size(), QSize(40, 40));
  const QColor middle = picture.toImage().pixelColor(20, 20);
  EXPECT_EQ(middle.rgb() & 0xffffffU, 0xff0000U);
  EXPECT_NEAR(middle.alpha(), 128, 1);
  EXPECT_EQ(ns::Image::imageWithSystemSymbolName("no.such.symbol"), nullptr);
}

TEST(IconTest, FillsItsSquareWhateverSizesTheThemeHas) {
  QPixmap small(16, 16);
  small.fill(Qt::red);
  const auto image = qt::imageWithIcon(QIcon(small));
  EXPECT_EQ(image->size().width, 32);
  image->setSize({22, 22});
  for (const double scale : {1.0, 1.5, 2.0}) {
    const QImage picture = image->native().pixmap(scale, Qt::black).toImage();
    const int last = static_cast<int>(22 * scale) - 1;
    EXPECT_EQ(picture.size(), QSize(last + 1, last + 1));
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(picture.pixelColor(last, last), QColor(Qt::red));
  }
}

}  // namespace
