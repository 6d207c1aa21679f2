#include "platform/linux/qt/ConsentPrompt.h"

#include <QPointer>

#include "platform/linux/freedesktop/Consent.h"
#include "platform/linux/qt/MessageDialog.h"

namespace qt {
namespace {

MessageContent question() {
  MessageContent content;
  content.message = QStringLiteral("“Ostrel” would like to control this computer using accessibility features.");
  content.informative = QStringLiteral(
      "A click on a title bar’s minimize button will center that window, one on its maximize button will let it fill "
      "the "
      "screen but for a margin, and the close button will hide the whole application if you turn that on. Without "
      "access, every click does what it always did.\n\n"
      "“Grant access…” in Ostrel’s settings asks you again, and the command “ostrel accessibility revoke” takes the "
      "access back.");
  content.buttons = {QStringLiteral("Allow"), QStringLiteral("Don’t Allow")};
  content.hasDefaultButton = false;
  return content;
}

/// The same place once consent is given.
MessageContent review() {
  MessageContent content;
  content.message = QStringLiteral("“Ostrel” may control this computer using accessibility features.");
  content.informative = QStringLiteral(
      "It notices clicks on the title-bar buttons of other applications’ windows, and moves, resizes and hides those "
      "windows. When you withdraw the access, these buttons get their usual behavior back.");
  content.buttons = {QStringLiteral("Withdraw Access"), QStringLiteral("Keep Access")};
  content.hasDefaultButton = false;
  return content;
}

void record(bool granted) {
  const auto error = freedesktop::Consent::shared().set(granted);
  if (!error) return;
  MessageContent content;
  content.symbol = "exclamationmark.triangle.fill";
  content.message = QStringLiteral("Your choice couldn’t be saved.");
  content.informative = QString::fromStdString(*error);
  content.buttons = {QStringLiteral("OK")};
  (new MessageDialog(content, dialogParent()))->showAndTell([](std::size_t) {});
}

}  // namespace

void showConsentPrompt() {
  static QPointer<MessageDialog> open;
  if (open && open->isVisible()) {
    open->raise();
    open->activateWindow();
    return;
  }
  const bool wasTrusted = freedesktop::Consent::shared().isTrusted();
  open = new MessageDialog(wasTrusted ? review() : question(), dialogParent());
  open->showAndTell([wasTrusted](std::size_t button) {
    if (!wasTrusted) {
      record(button == 0);
    } else if (button == 0) {
      record(false);
    }
  });
}

}  // namespace qt
