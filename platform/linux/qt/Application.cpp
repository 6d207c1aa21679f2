#include "platform/Application.h"

#include <signal.h>
#include <sys/eventfd.h>

#include <QApplication>
#include <QByteArray>
#include <QSocketNotifier>
#include <QWidget>
#include <utility>
#include <vector>

#include "platform/linux/qt/AccessibleView.h"
#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/ClickEvents.h"
#include "platform/linux/qt/Launch.h"
#include "platform/linux/qt/SessionBus.h"
#include "platform/linux/qt/TaskBar.h"
#include "platform/linux/x11/Scale.h"

namespace ns {
namespace {

/// Written to by the handler of the signals that end a program.
const int signalled = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);

std::function<void()>& taskAtLaunch() {
  static std::function<void()> task;
  return task;
}

/// What has to be settled before the toolkit starts. A program that mostly sits in the tray loads neither OpenGL nor a
/// desktop's theme plug-ins, which would bring a second toolkit into the process.
void prepareToolkit() {
  qt::startNoSessionBus();
  qputenv("QT_XCB_GL_INTEGRATION", "none");
  QGuiApplication::setDesktopSettingsAware(false);
  QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

/// Has the toolkit draw at the scale that windows and displays are told at, whatever it makes of the desktop's settings
/// by itself. It asks the environment when it starts; what is started from here is to find the environment as it was.
class ToolkitScale {
 public:
  ToolkitScale() {
    // Without an X server the environment is all there is.
    if (const QByteArray platform = qgetenv("QT_QPA_PLATFORM"); !platform.isEmpty() && platform != "xcb") return;
    put("QT_SCALE_FACTOR", QByteArray::number(x11::scaleOfThisProcess(), 'g', 17));
    put("QT_FONT_DPI", "96");
    for (const char* other : {"QT_SCREEN_SCALE_FACTORS", "QT_USE_PHYSICAL_DPI"}) put(other, {});
  }
  ~ToolkitScale() {
    for (const auto& [name, value] : before_) set(name, value);
  }
  ToolkitScale(const ToolkitScale&) = delete;
  ToolkitScale& operator=(const ToolkitScale&) = delete;

 private:
  void put(const char* name, const QByteArray& value) {
    before_.emplace_back(name, qgetenv(name));
    set(name, value);
  }
  static void set(const char* name, const QByteArray& value) {
    if (value.isNull()) {
      qunsetenv(name);
    } else {
      qputenv(name, value);
    }
  }

  std::vector<std::pair<const char*, QByteArray>> before_;
};

class QtApplication final : public Application {
 public:
  QtApplication() {
    QApplication::setDesktopFileName(QStringLiteral(OSTREL_APPLICATION_ID));
    QApplication::setQuitOnLastWindowClosed(false);
    qt::ignoreClicksElsewhere();
    qt::installAccessibleViews();
    qt::startAppearance();
  }

  void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override { delegate_ = std::move(delegate); }

  void setActivationPolicy(ActivationPolicy policy) override {
    if (std::exchange(policy_, policy) == policy) return;
    for (auto* const window : qt::shownWindows()) qt::applyTaskBarPolicy(*window);
  }
  ActivationPolicy activationPolicy() const override { return policy_; }

  void activateIgnoringOtherApps() override {
    for (auto* const window : qt::shownWindows()) {
      window->raise();
      window->activateWindow();
    }
  }

  void run() override {
    terminateOnSignals();
    QMetaObject::invokeMethod(
        &application_,
        [this] {
          if (const auto delegate = delegate_.lock()) delegate->applicationDidFinishLaunching();
          if (const auto task = std::exchange(taskAtLaunch(), {})) task();
        },
        Qt::QueuedConnection);
    QApplication::exec();
    if (const auto delegate = delegate_.lock()) delegate->applicationWillTerminate();
  }

  void terminate() override { QCoreApplication::quit(); }

 private:
  /// The session's end arrives as a signal; it is to end the application as its menu does. Handlers, because a blocked
  /// signal would stay blocked in every program that is started from here.
  void terminateOnSignals() {
    struct sigaction action {};
    action.sa_handler = [](int) { eventfd_write(signalled, 1); };
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaction(number, &action, nullptr);
    const auto* notifier = new QSocketNotifier(signalled, QSocketNotifier::Read, &application_);
    QObject::connect(notifier, &QSocketNotifier::activated, &application_, [this] { terminate(); });
  }

  // The buttons are those of an X11 session, so the interface is, too, whatever the toolkit would prefer.
  int argumentCount_ = qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ? 3 : 1;
  char name_[7] = "ostrel";
  char option_[10] = "-platform";
  char platform_[4] = "xcb";
  char* arguments_[4] = {name_, option_, platform_, nullptr};
  QApplication application_{argumentCount_, arguments_};
  std::weak_ptr<ApplicationDelegate> delegate_;
  ActivationPolicy policy_ = ActivationPolicy::Regular;
};

}  // namespace

std::shared_ptr<Application> Application::sharedApplication() {
  // Held by main(), and not by a static: the toolkit has to give back what it keeps for the main thread before the
  // objects of its libraries end. Left to them it warns, and from Qt 6.8 on may crash.
  static std::weak_ptr<QtApplication> shared;
  auto application = shared.lock();
  if (!application) {
    prepareToolkit();
    const ToolkitScale scale;
    shared = application = std::make_shared<QtApplication>();
  }
  return application;
}

}  // namespace ns

void qt::whenLaunched(std::function<void()> task) { ns::taskAtLaunch() = std::move(task); }
