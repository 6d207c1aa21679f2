// The contract on a virtual X server, with openbox and an ordinary Qt application.
#include <QCoreApplication>
#include <chrono>
#include <memory>
#include <stdexcept>

#include "platform/Consent.h"
#include "platform/Workspace.h"
#include "tests/contract/Backing.h"
#include "tests/desktop/XClient.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class X11Backing final : public contract::Backing {
 public:
  X11Backing() {
    if (ns::setAccessibilityGranted(true)) throw std::runtime_error("consent cannot be recorded");
    // A window that is mapped in the middle of openbox's start is never seen by it.
    if (!session_.windowManager.readLine(support::patience)) throw std::runtime_error("no window manager");
  }

  pid_t launch() override {
    application_ = std::make_unique<support::ChildProcess>(std::vector<std::string>{OSTREL_QT_WINDOW});
    const pid_t pid = application_->pid();
    const auto isUp = [&] {
      const auto clients = x_.clients();
      if (clients.size() != 1) return false;
      window_ = clients[0];
      const auto extents = x_.property(window_, "_NET_FRAME_EXTENTS");
      if (extents.size() != 4 || extents[2] == 0 || x_.isIconic(window_)) return false;
      buttonHeight_ = extents[2] / 2.0;
      const auto seen = x_.attributes(window_);
      return seen && seen->map_state == XCB_MAP_STATE_VIEWABLE &&
             ns::RunningApplication::runningApplicationWithProcessIdentifier(pid) != nullptr;
    };
    if (!waitFor(isUp)) throw std::runtime_error("the application does not come up");
    return pid;
  }
  void quit() override { application_.reset(); }
  std::string bundleIdentifier() const override { return "org.example.window"; }
  CGRect frame() override {
    const auto frame = x_.frame(window_).value_or(desktoptest::Frame{});
    return CGRectMake(frame.x, frame.y, frame.width, frame.height);
  }
  double buttonHeight() override { return buttonHeight_; }
  bool minimizesToHide() const override { return true; }
  /// No sooner than the last click has gone wherever it goes: no person is that fast.
  void click(CGPoint place) override {
    if (!waitFor([this] { return x_.isPointerFree(); })) throw std::runtime_error("the pointer is held");
    x_.click({static_cast<int>(place.x), static_cast<int>(place.y)});
  }
  bool waitFor(const std::function<bool()>& holds) override {
    const auto deadline = std::chrono::steady_clock::now() + support::patience;
    while (!holds()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
  }

 private:
  /// A session of its own, with nobody's settings; outlives the connections to it.
  struct Session {
    Session() {
      for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR"}) {
        setenv(name, folder.path().c_str(), 1);
      }
      setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + (folder / "no-bus")).c_str(), 1);
      folder.write("applications/org.example.window.desktop",
                   "[Desktop Entry]\nType=Application\nName=Window\nStartupWMClass=qt_window\n");
    }
    support::TemporaryFolder folder;
    support::XvfbSession server;
    support::ChildProcess windowManager{{"openbox", "--startup", "echo started"}};
  };

  Session session_;
  int argumentCount_ = 1;
  char name_[9] = "contract";
  char* arguments_[2] = {name_, nullptr};
  QCoreApplication application_object_{argumentCount_, arguments_};
  desktoptest::XClient x_;
  std::unique_ptr<support::ChildProcess> application_;
  desktoptest::Window window_ = 0;
  double buttonHeight_ = 0;
};

}  // namespace

contract::Backing& contract::Backing::current() {
  static X11Backing backing;
  return backing;
}
