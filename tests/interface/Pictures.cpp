// Writes a picture of each tab of the settings window, of the menu in both its states and of the question for consent:
// ostrel_pictures FOLDER SUFFIX. Light or dark, and the scale, are what the toolkit's environment says.
#include <QApplication>
#include <QDialog>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QWidget>
#include <iostream>
#include <string>

#include "Ostrel/AppDelegate.h"
#include "platform/Application.h"
#include "platform/linux/qt/ConsentPrompt.h"
#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/MenuWidget.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"
#include "platform/simulated/Services.h"
#include "platform/simulated/SimulatedDesktop.h"

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

/// An application icon for the picture: a coloured rounded square with a letter.
QIcon letterIcon(QChar letter, QColor color) {
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
  return QIcon(pixmap);
}

void saveMenu(ns::Menu& menu, const std::string& path) {
  menu.update();
  qt::MenuWidget widget(menu);
  widget.ensurePolished();
  widget.resize(widget.sizeHint());
  save(widget, path);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: ostrel_pictures FOLDER SUFFIX\n";
    return 2;
  }
  const std::string folder = argv[1];
  const std::string suffix = argv[2];
  simulated::SimulatedDesktop desktop;
  simulated::Services services;
  services.mainBundleInfo["CFBundleShortVersionString"] = {std::string(OSTREL_VERSION)};
  services.loginItem.statusNow = 1;
  desktop.setDisplays(R"(
1 "Built-in Display" 0,0 1440x900 main 610/160/0
2 "Studio Panel" 1440,0 2560x1440 16/200/7
)");
  const auto app = ns::Application::sharedApplication();
  const auto delegate = std::make_shared<ostrel::AppDelegate>();
  delegate->applicationDidFinishLaunching();

  const auto controller = ostrel::OstrelController::create();
  const std::pair<const char*, QColor> applications[] = {{"Calculator", QColor(0x5E, 0x5C, 0xE6)},
                                                         {"Photos", QColor(0x30, 0xB0, 0x60)},
                                                         {"Writer", QColor(0xE0, 0x6A, 0x2B)}};
  for (const auto& [name, color] : applications) {
    const std::string path = std::string("/apps/") + name;
    desktop.workspace()->installedApplications[name] = path;
    desktop.workspace()->icons[path] = qt::imageWithIcon(letterIcon(QChar::fromLatin1(name[0]), color));
    controller->addExcludedApp({name, name});
  }
  auto& settings = delegate->settingsWindow();
  for (const auto tab : ostrel::allTabs) {
    settings.present(tab);
    settings.window()->setContentSize({700, 750});  // which fits the screens of most people, not the one here
    save(*settings.window(), folder + "/settings-" + std::string(rawValue(tab)) + suffix + ".png");
  }
  saveMenu(*services.statusItem->menu, folder + "/menu" + suffix + ".png");
  desktop.isTrusted = false;
  saveMenu(*services.statusItem->menu, folder + "/menu-access-needed" + suffix + ".png");

  qt::showConsentPrompt();
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    if (qobject_cast<QDialog*>(widget) && widget->isVisible()) save(*widget, folder + "/consent" + suffix + ".png");
  }
  delegate->applicationWillTerminate();
  return 0;
}
