// The application object, on Qt's.
#include "platform/Application.h"

#include <signal.h>
#include <sys/eventfd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <utility>

namespace ns {
namespace {

/// Written to by the handler of the signals that end a program.
const int signalled = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);

class QtApplication final : public Application {
 public:
  QtApplication() : application_(argumentCount_, arguments_) {}

  void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override { delegate_ = std::move(delegate); }
  void setActivationPolicy(ActivationPolicy policy) override { policy_ = policy; }
  ActivationPolicy activationPolicy() const override { return policy_; }
  void activateIgnoringOtherApps() override {}

  void run() override {
    QTimer::singleShot(0, &application_, [this] {
      if (const auto delegate = delegate_.lock()) delegate->applicationDidFinishLaunching();
    });
    terminateOnSignals();
    QCoreApplication::exec();
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

  int argumentCount_ = 1;
  char name_[7] = "ostrel";
  char* arguments_[2] = {name_, nullptr};
  QCoreApplication application_;
  std::weak_ptr<ApplicationDelegate> delegate_;
  ActivationPolicy policy_ = ActivationPolicy::Regular;
};

}  // namespace

std::shared_ptr<Application> Application::sharedApplication() {
  static const std::shared_ptr<Application> application = std::make_shared<QtApplication>();
  return application;
}

}  // namespace ns
