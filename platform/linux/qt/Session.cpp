#include "platform/linux/qt/Session.h"

#include "platform/linux/freedesktop/Consent.h"
#include "platform/linux/freedesktop/IconLoader.h"
#include "platform/linux/freedesktop/LinuxWorkspace.h"
#include "platform/linux/freedesktop/ServiceManager.h"
#include "platform/linux/qt/ConsentPrompt.h"
#include "platform/linux/qt/Icons.h"
#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/Launch.h"
#include "platform/linux/qt/MessageDialog.h"

namespace qt {
namespace {

void showOpeningFailure(const std::string& url, const std::string& reason) {
  MessageContent content;
  content.symbol = "exclamationmark.triangle.fill";
  content.symbolColor = ns::Color::systemOrangeColor();
  content.message = QStringLiteral("“%1” couldn’t be opened.").arg(QString::fromStdString(url));
  content.informative = QString::fromStdString(reason);
  content.buttons = {QStringLiteral("OK")};
  (new MessageDialog(content, dialogParent()))->showAndTell([](std::size_t) {});
}

}  // namespace
}  // namespace qt

void qt::joinSession() {
  freedesktop::setIconLoader([](const std::string& name) { return imageWithIcon(applicationIcon(name)); });
  freedesktop::Consent::shared().setPrompt(showConsentPrompt);
  whenLaunched([] {
    freedesktop::tellServiceManagerOfReadiness();
    freedesktop::Consent::shared().promptOnce();
  });
  freedesktop::setOpeningFailure(showOpeningFailure);
}
