#include <gtest/gtest.h>

#include <QImage>
#include <cstdlib>

#include "platform/Application.h"
#include "platform/linux/qt/Session.h"
#include "tests/interface/qt/DialogsHome.h"
#include "tests/support/TemporaryFolder.h"

const std::string& dialogs::home() {
  static const support::TemporaryFolder folder;
  return folder.path();
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const std::string& home = dialogs::home();
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("XDG_DATA_HOME", (home + "/share").c_str(), 1);
  setenv("XDG_DATA_DIRS", (home + "/nowhere").c_str(), 1);
  setenv("XDG_CONFIG_HOME", (home + "/config").c_str(), 1);
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  const auto entry = [&](const std::string& file, const std::string& name, const std::string& more) {
    const std::string path = home + "/share/" + file;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path) << "[Desktop Entry]\nType=Application\nExec=true\nName=" << name << '\n' << more;
  };
  entry("applications/gamma.desktop", "Gamma", "Icon=" + home + "/red.png\n");
  entry("applications/alpha.desktop", "alpha", "Icon=not-in-any-theme\n");
  entry("applications/hidden.desktop", "Also hidden", "NoDisplay=true\n");
  entry("flatpak/exports/share/applications/org.beta.desktop", "Beta (Flatpak)", {});
  QImage red(32, 32, QImage::Format_RGB32);
  red.fill(Qt::red);
  red.save(QString::fromStdString(home + "/red.png"));
  const auto app = ns::Application::sharedApplication();
  qt::joinSession();
  return RUN_ALL_TESTS();
}
