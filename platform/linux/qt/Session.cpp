#include "platform/linux/qt/Session.h"

#include "platform/linux/freedesktop/Consent.h"
#include "platform/linux/freedesktop/IconLoader.h"
#include "platform/linux/qt/ConsentPrompt.h"
#include "platform/linux/qt/Icons.h"
#include "platform/linux/qt/ImageNative.h"

void qt::joinSession() {
  freedesktop::setIconLoader([](const std::string& name) { return imageWithIcon(applicationIcon(name)); });
  freedesktop::Consent::shared().setPrompt(showConsentPrompt);
}
