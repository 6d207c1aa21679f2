// Putting a window onto the middle of its screen, with a frame that only the window manager knows.
#pragma once

#include <xcb/xcb.h>

#include <QElapsedTimer>
#include <QMargins>
#include <QRect>

class QWidget;

namespace qt {

/// The toolkit's own figures are of no use for it: while a frame is being made they are those of a window without one,
/// or nonsense. So it asks the X server where the window is once it is mapped, and the window manager to move it, until
/// it is there; from then on the window stays where the person puts it. Main thread only.
class Centring {
 public:
  /// `window`, a top-level one, outlives this.
  explicit Centring(QWidget& window) : window_(window) {}

  /// Puts the window onto the middle, and a hidden one when it is shown; no larger than the screen, as far as its
  /// minimum allows, and then at least with its title bar in sight. A maximised window stays.
  void start();
  /// To be told of each event of the window, of which there are none without an X server. True when the frame has
  /// become another one.
  bool tellsOtherFrame(const xcb_generic_event_t& event);
  /// To be told of each event as well, once the window's minimum suits its frame.
  void follow(const xcb_generic_event_t& event);
  /// The frame around the window, before there was one what is to be expected. In the toolkit's units.
  const QMargins& frame() const { return frame_; }

 private:
  void correct();

  QWidget& window_;
  QMargins frame_{0, 28, 0, 0};
  bool isUnderWay_ = false;
  /// Where the window, without its frame, was when the window manager was asked to move it, and whereto; in pixels.
  QRect askedAt_;
  QRect askedFor_;
  QElapsedTimer sinceMapped_;
};

}  // namespace qt
