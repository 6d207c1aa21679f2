#include "Ostrel/SettingsLayout.h"

#include "Ostrel/SymbolImage.h"

namespace ostrel {
namespace {

std::shared_ptr<ns::TextField> styled(std::shared_ptr<ns::TextField> label, ns::Font font, ns::Color color) {
  label->setFont(font);
  label->setTextColor(color);
  return label;
}

}  // namespace

void fill(ns::View& container, const std::shared_ptr<ns::View>& view, double horizontal, double vertical) {
  container.addSubview(view);
  ns::activate({view->leading() == container.leading() + horizontal,
                view->trailing() == container.trailing() - horizontal, view->top() == container.top() + vertical,
                view->bottom() == container.bottom() - vertical});
}

std::shared_ptr<ns::TextField> makeLabel(const std::string& text, ns::Font font, ns::Color color) {
  return styled(ns::TextField::labelWithString(text), font, color);
}

std::shared_ptr<ns::TextField> makeWrappingLabel(const std::string& text, ns::Font font, ns::Color color) {
  return styled(ns::TextField::wrappingLabelWithString(text), font, color);
}

std::shared_ptr<ns::ImageView> makeRowIcon(const std::string& symbolName, ns::Color tint) {
  auto icon = std::make_shared<ns::ImageView>();
  icon->setImage(symbolImage(symbolName, 14));
  icon->setContentTintColor(tint);
  ns::activate({icon->width() == 20});
  return icon;
}

std::shared_ptr<ns::View> makeHorizontalLine() {
  auto line = std::make_shared<ns::SeparatorBox>();
  ns::activate({line->height() == 1});
  return line;
}

std::shared_ptr<ns::View> makeVerticalLine() {
  auto line = std::make_shared<ns::SeparatorBox>();
  ns::activate({line->width() == 1});
  return line;
}

}  // namespace ostrel
