// The title-bar buttons of windows that draw their own decorations (GTK 3, GTK 4, libadwaita).
//
// Such a window has no button windows that the X server could tell about; only the application knows where its buttons
// are, and says so over AT-SPI. An application may take long to answer, or never, so nobody asks at a click: the
// buttons of every window told of are looked up beforehand, on a thread of their own, and a click compares numbers.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/portable/ApplicationServices.h"

namespace atspi {

enum class ButtonRole { Minimize, Zoom, Close };

struct TitleBarButton {
  ButtonRole role = ButtonRole::Minimize;
  /// Where clicks reach the button, in pixels from the top-left corner of the window's visible frame.
  CGRect rect{};
  /// False while the application shows the button but lets nobody press it.
  bool enabled = true;
};
bool operator==(const TitleBarButton& one, const TitleBarButton& other);

/// A client-side decorated window, as its owner sees it from outside. Rectangles are in pixels of the root window.
struct Window {
  std::uint32_t id = 0;
  pid_t pid = 0;
  /// What the person sees: the client window without the margins of _GTK_FRAME_EXTENTS.
  CGRect frame{};
  /// The client window itself, invisible shadow included.
  CGRect client{};
  /// Maximised or full screen, wholly or in one direction. Any change of it makes the application rebuild its buttons.
  bool maximized = false;
  /// Tells windows of one application and one size apart; may be empty.
  std::string title;
};

/// Finds and remembers. Every member may be called on any thread and returns at once.
class TitleBarButtons {
 public:
  struct Options {
    /// GTK's setting of this name; consulted for applications whose language has no catalogue installed here.
    std::string decorationLayout = "menu:minimize,maximize,close";
    /// How long the application has for each answer, in milliseconds.
    int callTimeout = 500;
    /// How long it may be asked about one window in all, in milliseconds.
    unsigned conversationTimeout = 10'000;
  };
  /// Called on the lookup thread after the answer of buttons(window) has changed. It must not wait for a thread that
  /// is destroying this object.
  using ChangeHandler = std::function<void(std::uint32_t window)>;

  explicit TitleBarButtons(ChangeHandler changed);
  TitleBarButtons(ChangeHandler changed, Options options);
  /// Waits for the lookup thread, which waits for nobody. No call of the handler follows.
  ~TitleBarButtons();
  TitleBarButtons(const TitleBarButtons&) = delete;
  TitleBarButtons& operator=(const TitleBarButtons&) = delete;

  /// Tells of a new window, or of anything new about a known one. A move keeps what is known. A new size, a new margin
  /// or a new `maximized` forgets it until the application has been asked again.
  void update(const Window& window);
  /// Asks again although nothing was seen to change; until then the old answer stands. Good when a window becomes
  /// active: a button can be made insensitive without anything to see from outside.
  void refresh(std::uint32_t window);
  void remove(std::uint32_t window);

  /// What is known of the window now; empty while unknown and when it has none.
  std::vector<TitleBarButton> buttons(std::uint32_t window) const;

 private:
  class Worker;
  std::unique_ptr<Worker> worker_;
};

}  // namespace atspi
