#include "Ostrel/SidebarButton.h"

#include "Ostrel/SymbolImage.h"

namespace ostrel {

SidebarButton::SidebarButton(Tab tab, Handler handler)
    : tab_(tab),
      handler_(std::move(handler)),
      iconView_(std::make_shared<ns::ImageView>()),
      titleLabel_(ns::TextField::labelWithString(title(tab))) {
  iconView_->setImage(symbolImage(symbolName(tab), 14));
  addSubview(iconView_);
  addSubview(titleLabel_);
  ns::activate({height() == 32, iconView_->leading() == leading() + 12, iconView_->width() == 20,
                iconView_->centerY() == centerY(), titleLabel_->leading() == iconView_->trailing() + 12,
                titleLabel_->centerY() == centerY(), titleLabel_->trailing() <= trailing() - 12});
  setAccessibilityLabel(title(tab));
  updateAppearance();
}

void SidebarButton::updateAppearance() {
  ns::Layer look;
  look.cornerRadius = 8;
  look.backgroundColor = isSelected_ ? ns::Color::controlAccentColor() : ns::Color::clearColor();
  setLayer(look);
  titleLabel_->setTextColor(isSelected_ ? ns::Color::whiteColor() : ns::Color::labelColor());
  titleLabel_->setFont(ns::Font::systemFontOfSize(13, isSelected_ ? ns::FontWeight::Medium : ns::FontWeight::Regular));
  iconView_->setContentTintColor(isSelected_ ? ns::Color::whiteColor() : ns::Color::secondaryLabelColor());
  setAccessibilityButton(isSelected_);
}

void SidebarButton::mouseDown(const ns::MouseEvent&) { handler_(*this); }

void SidebarButton::resetCursorRects() { addCursorRect(bounds(), ns::Cursor::PointingHand); }

}  // namespace ostrel
