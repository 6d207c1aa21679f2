#include "platform/Panels.h"
#include "platform/linux/qt/MessageDialog.h"

namespace ns {

std::size_t Alert::runModal() {
  const bool isWarning = style_ == AlertStyle::Warning;
  qt::MessageContent content;
  content.symbol = isWarning ? "exclamationmark.triangle.fill" : "info.circle.fill";
  content.symbolColor = isWarning ? Color::systemOrangeColor() : Color::systemBlueColor();
  content.message = QString::fromStdString(messageText_);
  content.informative = QString::fromStdString(informativeText_);
  for (const std::string& title : buttonTitles_) content.buttons += QString::fromStdString(title);
  if (content.buttons.isEmpty()) content.buttons += QStringLiteral("OK");
  return qt::MessageDialog(content, qt::dialogParent()).ask();
}

}  // namespace ns
