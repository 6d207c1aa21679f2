// A whole desktop of its own for one test: X server, session bus, window manager, applications, Ostrel, and a home
// folder that goes away with it.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "tests/desktop/XClient.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace desktoptest {

enum class WindowManager { Openbox, Xfwm4, Metacity };
std::string name(WindowManager windowManager);

enum class Button { Minimise, Zoom, Close };

using Arguments = std::vector<std::string>;

struct CommandResult {
  int status = -1;
  std::string output;
};

struct Monitor {
  std::string name;
  Frame bounds;
};

/// Throws std::runtime_error when something does not come up within its bound.
class DesktopSession {
 public:
  explicit DesktopSession(WindowManager windowManager, int width = 1440, int height = 900);
  /// With any window manager, which this command starts. Where its buttons are, only the tester knows.
  explicit DesktopSession(const Arguments& windowManager, int width = 1440, int height = 900);
  ~DesktopSession();
  DesktopSession(const DesktopSession&) = delete;
  DesktopSession& operator=(const DesktopSession&) = delete;

  XClient& x() { return *x_; }
  const support::TemporaryFolder& home() const { return home_; }
  const std::string& displayName() const { return server_->displayName(); }
  /// What a program needs in its environment to be on this desktop.
  const Arguments& environment() const { return environment_; }

  /// Starts the window manager, in place of one that runs.
  void restartWindowManager();
  void stopServer() { server_.reset(); }
  /// Changes metacity's setting of the buttons in title bars.
  void arrangeTitleBars(const std::string& layout);
  /// Starts a panel.
  void startPanel(const Arguments& arguments) { panel_ = start(arguments, "panel.log"); }
  void stopPanel() { panel_.reset(); }
  /// Starts an application and waits for its window, which it then places, if a frame is given.
  Window open(const Arguments& arguments);
  Window open(const Arguments& arguments, const Frame& frame);
  /// The process of the application that was opened last.
  support::ChildProcess& application() { return *applications_.back(); }
  /// What it has written to its outputs.
  std::string applicationLog() const;
  /// Gives the window a frame and waits until it has that position.
  void place(Window window, const Frame& frame);

  /// Divides the screen into monitors; the first is the primary one.
  void setMonitors(const std::vector<Monitor>& monitors);

  /// Runs a program of this desktop to its end.
  CommandResult command(const Arguments& arguments);
  /// The text of the preference file; empty when there is none.
  std::string preferences() const { return home_.read("CONFIG_HOME/ostrel/preferences.json"); }
  /// Replaces the preference file by this JSON object.
  void writePreferences(const std::string& object);
  /// Runs `ostrel` with these arguments to its end.
  CommandResult ostrelCommand(const Arguments& arguments);
  /// Gives consent, starts Ostrel with these arguments and waits until it watches the mouse.
  void startOstrel(const Arguments& arguments = {});
  void stopOstrel() { ostrel_.reset(); }
  support::ChildProcess& ostrel() { return *ostrel_; }
  /// What Ostrel has written to its outputs.
  std::string ostrelLog() const;

  /// The centre of a window's button, found as a person would: on the screen. Throws when the window has no such
  /// button.
  Point button(Window window, Button button);
  /// Clicks it once everybody knows where things are.
  void click(Window window, Button which, int mouseButton = 1);
  /// Waits until no process of this desktop has anything to do, as is the case long before a person's next click.
  void settle();
  /// A point of the title bar without a button.
  Point titleBar(Window window);

 private:
  bool isIdle() const;
  /// Starts a process of this desktop that writes both outputs to the log of that name.
  std::unique_ptr<support::ChildProcess> start(const Arguments& arguments, const std::string& log);
  std::vector<Window> decoration(Window window);
  Point clientSideButton(Window window, Button button);

  const Arguments windowManager_;
  support::TemporaryFolder home_;
  Arguments environment_;
  std::unique_ptr<support::XvfbSession> server_;
  std::unique_ptr<XClient> x_;
  std::unique_ptr<support::ChildProcess> bus_;
  std::unique_ptr<support::ChildProcess> windowManagerProcess_;
  std::unique_ptr<support::ChildProcess> panel_;
  std::vector<std::unique_ptr<support::ChildProcess>> applications_;
  std::unique_ptr<support::ChildProcess> ostrel_;
};

}  // namespace desktoptest
