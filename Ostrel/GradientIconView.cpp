#include "Ostrel/GradientIconView.h"

#include "Ostrel/SymbolImage.h"
#include "platform/Controls.h"

namespace ostrel {

GradientIconView::GradientIconView(const std::string& symbolName)
    : gradientLayer_(std::make_shared<ns::GradientLayer>()) {
  const auto blue = ns::Color::systemBlueColor();
  gradientLayer_->colors = {blue, blue.colorWithAlphaComponent(0.8)};
  gradientLayer_->startPoint = {0, 0};
  gradientLayer_->endPoint = {1, 1};
  gradientLayer_->cornerRadius = 10;
  gradientLayer_->masksToBounds = true;

  ns::Layer look;
  look.cornerRadius = 10;
  // A layer that clips would cut off its own shadow.
  look.masksToBounds = false;
  look.sublayer = gradientLayer_;
  look.shadow = ns::Shadow{ns::Color::blackColor().colorWithAlphaComponent(0.18), {0, -2}, 4, 1};
  setLayer(look);

  const auto symbol = std::make_shared<ns::ImageView>();
  symbol->setImage(symbolImage(symbolName, 24, ns::FontWeight::Medium));
  symbol->setContentTintColor(ns::Color::whiteColor());
  addSubview(symbol);
  ns::activate({symbol->centerX() == centerX(), symbol->centerY() == centerY()});
}

void GradientIconView::layout() {
  ns::View::layout();
  gradientLayer_->frame = bounds();
  setLayer(layer());
}

}  // namespace ostrel
