// Writes a picture of each tab of the settings window: ostrel_pictures FOLDER SUFFIX. Light or dark, and the scale, are
// what the toolkit's environment says.
#include <QFileIconProvider>
#include <QPixmap>
#include <QWidget>
#include <iostream>
#include <string>

#include "Ostrel/SettingsWindowController.h"
#include "platform/Application.h"
#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"
#include "platform/simulated/Services.h"
#include "platform/simulated/SimulatedDesktop.h"

namespace {

bool save(ns::Window& window, const std::string& path) {
  const auto content = window.contentView();
  content->layoutSubtreeIfNeeded();
  if (content->native().widget->window()->grab().save(QString::fromStdString(path))) return true;
  std::cerr << "cannot write " << path << '\n';
  return false;
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
  const auto controller = ostrel::OstrelController::create();
  for (const char* const name : {"Calculator", "Image Viewer", "Terminal"}) {
    const std::string path = std::string("/apps/") + name;
    desktop.workspace()->installedApplications[name] = path;
    desktop.workspace()->icons[path] = qt::imageWithIcon(QFileIconProvider().icon(QFileIconProvider::Computer));
    controller->addExcludedApp({name, name});
  }
  controller->addExcludedApp({"gone", "Something uninstalled"});
  const auto settings = std::make_shared<ostrel::SettingsWindowController>(controller, [] {});
  for (const auto tab : ostrel::allTabs) {
    settings->present(tab);
    if (!save(*settings->window(), folder + "/settings-" + std::string(rawValue(tab)) + suffix + ".png")) return 1;
  }
  desktop.isTrusted = false;
  services.loginItem.statusNow = 2;
  settings->present(ostrel::Tab::General);
  return save(*settings->window(), folder + "/settings-general-missing" + suffix + ".png") ? 0 : 1;
}
