// The builders that the tabs share: scrolling columns, titled sections, cards, rows, information boxes.
#include "Ostrel/FlippedView.h"
#include "Ostrel/SettingsLayout.h"
#include "Ostrel/SettingsWindowController.h"
#include "Ostrel/SymbolImage.h"
#include "platform/Containers.h"

namespace ostrel {

std::shared_ptr<ns::View> SettingsWindowController::makeScrollableTab(const Rows& sections) {
  const auto column = std::make_shared<ns::StackView>(ns::LayoutOrientation::Vertical, ns::StackAlignment::Leading, 20);
  for (const auto& section : sections) {
    column->addArrangedSubview(section);
    ns::activate({section->width() == column->width()});
  }
  const auto document = std::make_shared<FlippedView>();
  fill(*document, column, 20, 16);
  const auto scrollView = std::make_shared<ns::ScrollView>();
  scrollView->setDocumentView(document);
  ns::View& clip = scrollView->contentView();
  ns::activate(
      {document->leading() == clip.leading(), document->trailing() == clip.trailing(), document->top() == clip.top()});
  return scrollView;
}

std::shared_ptr<ns::View> SettingsWindowController::makeSectionContainer(const std::string& title,
                                                                         const std::function<void(Rows&)>& populate) {
  const auto titleLabel = makeLabel(title, ns::Font::systemFontOfSize(13, ns::FontWeight::Semibold));
  Rows rows;
  populate(rows);

  const auto list = std::make_shared<ns::StackView>(ns::LayoutOrientation::Vertical, ns::StackAlignment::Leading, 0);
  const auto append = [&list](const std::shared_ptr<ns::View>& view) {
    list->addArrangedSubview(view);
    ns::activate({view->width() == list->width()});
  };
  for (std::size_t index = 0; index < rows.size(); ++index) {
    if (index > 0) append(makeHorizontalLine());
    append(paddedRowContainer(rows[index], 16, 11));
  }
  const auto card = makeCardView();
  fill(*card, list);

  const auto section = std::make_shared<ns::View>();
  section->addSubview(titleLabel);
  section->addSubview(card);
  ns::activate({titleLabel->top() == section->top(), titleLabel->leading() == section->leading() + 4,
                titleLabel->trailing() <= section->trailing() - 4, card->top() == titleLabel->bottom() + 10,
                card->leading() == section->leading(), card->trailing() == section->trailing(),
                card->bottom() == section->bottom()});
  return section;
}

std::shared_ptr<ns::View> SettingsWindowController::makeCardView() {
  auto card = std::make_shared<ns::View>();
  ns::Layer look;
  look.backgroundColor = ns::Color::controlBackgroundColor();
  look.cornerRadius = 10;
  look.borderWidth = 1;
  look.borderColor = ns::Color::separatorColor().colorWithAlphaComponent(0.6);
  look.masksToBounds = true;
  card->setLayer(look);
  return card;
}

std::shared_ptr<ns::View> SettingsWindowController::paddedRowContainer(const std::shared_ptr<ns::View>& view,
                                                                       double horizontal, double vertical) {
  auto container = std::make_shared<ns::View>();
  fill(*container, view, horizontal, vertical);
  return container;
}

std::shared_ptr<ns::View> SettingsWindowController::makeToggleRow(const std::string& icon, const std::string& title,
                                                                  const std::string& subtitle,
                                                                  const std::shared_ptr<ns::View>& control) {
  const auto row = std::make_shared<ns::View>();
  const auto iconView = makeRowIcon(icon, ns::Color::secondaryLabelColor());
  const auto texts = std::make_shared<ns::StackView>(ns::LayoutOrientation::Vertical, ns::StackAlignment::Leading, 2);
  texts->addArrangedSubview(makeLabel(title, ns::Font::systemFontOfSize(13)));
  texts->addArrangedSubview(
      makeWrappingLabel(subtitle, ns::Font::systemFontOfSize(11), ns::Color::secondaryLabelColor()));
  texts->setContentHuggingPriority(ns::LayoutPriorityDefaultLow, ns::LayoutOrientation::Horizontal);
  control->setContentHuggingPriority(ns::LayoutPriorityRequired, ns::LayoutOrientation::Horizontal);
  row->addSubview(iconView);
  row->addSubview(texts);
  row->addSubview(control);
  // The last relation makes the row no higher than it needs to be.
  ns::activate({iconView->leading() == row->leading(), iconView->centerY() == row->centerY(),
                texts->leading() == iconView->trailing() + 10, texts->centerY() == row->centerY(),
                texts->height() <= row->height(), texts->trailing() <= control->leading() - 12,
                control->trailing() == row->trailing(), control->centerY() == row->centerY(), row->height() >= 28,
                (row->height() == 28).priority(ns::LayoutPriorityDefaultLow)});
  return row;
}

std::shared_ptr<ns::View> SettingsWindowController::makeVexoRow(const std::string& icon, const std::string& title,
                                                                const std::shared_ptr<ns::View>& control) {
  const auto row = std::make_shared<ns::View>();
  const auto iconView = makeRowIcon(icon, ns::Color::secondaryLabelColor());
  const auto titleLabel = makeLabel(title, ns::Font::systemFontOfSize(13));
  titleLabel->setContentHuggingPriority(ns::LayoutPriorityDefaultHigh, ns::LayoutOrientation::Horizontal);
  row->addSubview(iconView);
  row->addSubview(titleLabel);
  row->addSubview(control);
  // The last relation makes the row no higher than it needs to be.
  ns::activate({iconView->leading() == row->leading(), iconView->centerY() == row->centerY(),
                titleLabel->leading() == iconView->trailing() + 10, titleLabel->centerY() == row->centerY(),
                control->leading() >= titleLabel->trailing() + 12, control->trailing() == row->trailing(),
                control->centerY() == row->centerY(), row->height() >= control->height(), row->height() >= 24,
                (row->height() == 24).priority(ns::LayoutPriorityDefaultLow)});
  return row;
}

std::shared_ptr<ns::View> SettingsWindowController::makeInfoBox(const std::string& text) {
  const auto box = std::make_shared<ns::View>();
  ns::Layer look;
  look.backgroundColor = ns::Color::controlAccentColor().colorWithAlphaComponent(0.1);
  look.cornerRadius = 6;
  box->setLayer(look);
  const auto icon = std::make_shared<ns::ImageView>();
  icon->setImage(symbolImage("info.circle.fill", 13));
  icon->setContentTintColor(ns::Color::controlAccentColor());
  const auto label = makeWrappingLabel(text, ns::Font::systemFontOfSize(12));
  box->addSubview(icon);
  box->addSubview(label);
  ns::activate({icon->width() == 16, icon->height() == 16, icon->leading() == box->leading() + 10,
                icon->top() == box->top() + 10, label->leading() == icon->trailing() + 8,
                label->trailing() == box->trailing() - 10, label->top() == box->top() + 9,
                label->bottom() == box->bottom() - 10});
  return box;
}

}  // namespace ostrel
