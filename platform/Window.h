// Windows.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/View.h"

namespace ns {

/// Told what happens to a window. Held weakly.
class WindowDelegate {
 public:
  virtual ~WindowDelegate() = default;
  virtual void windowWillClose() = 0;
  virtual void windowDidBecomeKey() = 0;
};

using WindowStyleMask = std::uint32_t;
inline constexpr WindowStyleMask WindowStyleMaskTitled = 1;
inline constexpr WindowStyleMask WindowStyleMaskClosable = 2;
inline constexpr WindowStyleMask WindowStyleMaskMiniaturizable = 4;
inline constexpr WindowStyleMask WindowStyleMaskResizable = 8;

/// A window; closing hides it, releasing it destroys it. Sizes in points. Main thread only.
class Window {
 public:
  struct Native;

  Window(CGRect contentRect, WindowStyleMask styleMask);
  ~Window();

  void setTitle(const std::string& title);
  void setDelegate(std::weak_ptr<WindowDelegate> delegate);
  /// Takes the window's content size and follows it.
  void setContentView(const std::shared_ptr<View>& view);
  std::shared_ptr<View> contentView() const;
  void setContentSize(CGSize size);
  void setContentMinSize(CGSize size);
  /// The least size with its title bar; of the two minima the larger holds.
  void setMinSize(CGSize size);
  /// Onto the middle of its screen.
  void center();
  void makeKeyAndOrderFront();
  /// As the person's click on its close button. Ends editing, as a click elsewhere does.
  void close();
  bool isVisible() const;
  /// Whether the view has the keyboard.
  bool isFirstResponder(const View& view) const;
  /// Gives the keyboard to a view of this window.
  void makeFirstResponder(View& view);

  Native& native() const { return *native_; }

 private:
  std::unique_ptr<Native> native_;
};

}  // namespace ns
