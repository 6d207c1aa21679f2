// Writes a picture of each tab of the settings window, of the menu in both its states and of the question for consent,
// all of the program as it is: ostrel_pictures FOLDER SUFFIX. Light or dark, and the scale, are what the toolkit's
// environment says.
#include <QApplication>
#include <QDialog>
#include <QPainter>
#include <QPixmap>
#include <QWidget>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

#include "Ostrel/AppDelegate.h"
#include "platform/Application.h"
#include "platform/LoginItem.h"
#include "platform/linux/freedesktop/Consent.h"
#include "platform/linux/qt/ConsentPrompt.h"
#include "platform/linux/qt/MenuWidget.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/XvfbSession.h"

namespace {

void save(QWidget& widget, const std::string& path) {
  widget.ensurePolished();
  if (!widget.grab().save(QString::fromStdString(path))) {
    std::cerr << "cannot write " << path << '\n';
    std::exit(1);
  }
}

void save(ns::Window& window, const std::string& path) {
  const auto content = window.contentView();
  content->layoutSubtreeIfNeeded();
  save(*content->native().widget->window(), path);
}

/// An application's icon: a coloured rounded square with a letter.
QPixmap letterPicture(QChar letter, QColor color) {
  QPixmap pixmap(64, 64);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(color);
  painter.setPen(Qt::NoPen);
  painter.drawRoundedRect(QRectF(3, 3, 58, 58), 14, 14);
  QFont font = QApplication::font();
  font.setPixelSize(36);
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(Qt::white);
  painter.drawText(QRectF(0, 0, 64, 64), Qt::AlignCenter, letter);
  return pixmap;
}

void saveMenu(ostrel::AppDelegate& delegate, const std::string& path) {
  ns::Menu menu;
  delegate.menuNeedsUpdate(menu);
  qt::MenuWidget widget(menu);
  widget.ensurePolished();
  widget.resize(widget.sizeHint());
  save(widget, path);
}

/// In the words of xrandr.
void addMonitor(const std::string& name, const std::string& geometry, const std::string& output) {
  support::ChildProcess xrandr({"xrandr", "--setmonitor", name, geometry, output});
  if (xrandr.waitForExit(support::patience) != 0) throw std::runtime_error("no monitor " + name);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: ostrel_pictures FOLDER SUFFIX\n";
    return 2;
  }
  const std::string folder = argv[1];
  const std::string suffix = argv[2];
  // Its own home and desktop, so that neither the person's consent nor their displays are in the pictures.
  const support::TemporaryFolder home;
  for (const auto* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
    setenv(name, home.path().c_str(), 1);
  }
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  // Ends with this process, not before: the program takes its server's end for the session's.
  [[maybe_unused]] static const auto* const server = new support::XvfbSession("4000x1440x24");
  addMonitor("*Laptop Display", "1440/360x900/225+0+0", "screen");
  addMonitor("Studio Panel", "2560/640x1440/360+1440+0", "none");
  const auto app = ns::Application::sharedApplication();

  freedesktop::Consent::shared().set(true);
  sm::AppService::mainAppService().registerItem();
  const auto controller = ostrel::OstrelController::create();
  const std::pair<const char*, QColor> applications[] = {{"Calculator", QColor(0x5E, 0x5C, 0xE6)},
                                                         {"Photos", QColor(0x30, 0xB0, 0x60)},
                                                         {"Writer", QColor(0xE0, 0x6A, 0x2B)}};
  for (const auto& [name, color] : applications) {
    const std::string icon = home / name + ".png";
    letterPicture(QChar::fromLatin1(name[0]), color).save(QString::fromStdString(icon));
    home.write(std::string("applications/") + name + ".desktop",
               std::string("[Desktop Entry]\nType=Application\nExec=true\nName=") + name + "\nIcon=" + icon + '\n');
    controller->addExcludedApp({name, name});
  }

  const auto delegate = std::make_shared<ostrel::AppDelegate>();
  delegate->applicationDidFinishLaunching();
  auto& settings = delegate->settingsWindow();
  for (const auto tab : ostrel::allTabs) {
    settings.present(tab);
    settings.window()->setContentSize({700, 750});  // which fits the screens of most people, not the one here
    save(*settings.window(), folder + "/settings-" + std::string(rawValue(tab)) + suffix + ".png");
  }
  saveMenu(*delegate, folder + "/menu" + suffix + ".png");
  freedesktop::Consent::shared().set(false);
  saveMenu(*delegate, folder + "/menu-access-needed" + suffix + ".png");

  qt::showConsentPrompt();
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    if (qobject_cast<QDialog*>(widget) && widget->isVisible()) save(*widget, folder + "/consent" + suffix + ".png");
  }
  delegate->applicationWillTerminate();
  return 0;
}
