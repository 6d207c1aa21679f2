// A process with an event tap, for tests that stop or kill one. Prints a line for what happens to it.
#include <signal.h>

#include <QCoreApplication>
#include <cstdio>
#include <string>

#include "platform/HelperProcess.h"
#include "platform/RunLoop.h"
#include "platform/linux/x11/EventTap.h"

namespace {

void say(const char* line) {
  std::puts(line);
  std::fflush(stdout);
}

}  // namespace

/// What its first press does to it: "pass", "stop" (SIGSTOP before an answer that swallows it and an action), "kill"
/// (SIGKILL before the answer) or "hang" (the tap's own thread never comes back).
int main(int argc, char** argv) {
  ns::becomeHelperProcess(argv[0]);
  ns::startHelperProcess();
  const QCoreApplication application(argc, argv);
  std::string mode = argc > 1 ? argv[1] : "pass";
  std::unique_ptr<desktop::EventTap> tap;
  tap = x11::EventTap::create(
      CGEventMaskBit(kCGEventLeftMouseDown),
      [&](const desktop::MouseDown& event) {
        say(event.type == kCGEventLeftMouseDown ? "press" : "notice");
        if (event.type != kCGEventLeftMouseDown) tap->setEnabled(true);
        if (mode == "kill") raise(SIGKILL);
        if (mode == "stop") {
          mode = "pass";
          ns::dispatchAsyncOnMainQueue([] { say("action"); });
          raise(SIGSTOP);
          return false;
        }
        return true;
      },
      [&](xcb_window_t, CGPoint) {
        while (mode == "hang") pause();
        return true;
      });
  if (!tap) return 1;
  tap->setEnabled(true);
  say("ready");
  return QCoreApplication::exec();
}
