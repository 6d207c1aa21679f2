#include "platform/Window.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFocusEvent>
#include <QWidget>
#include <utility>

#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/Centring.h"
#include "platform/linux/qt/FocusOrder.h"
#include "platform/linux/qt/TaskBar.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace qt {
namespace {

/// What the window manager is asked for. openbox draws a minimise and a zoom button all the same: it lets no hint take
/// buttons away, and the one window type without them is that of a torn-off menu.
Qt::WindowFlags flagsOf(ns::WindowStyleMask mask) {
  Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint;
  if (mask & ns::WindowStyleMaskTitled) flags |= Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
  if (mask & ns::WindowStyleMaskClosable) flags |= Qt::WindowCloseButtonHint;
  if (mask & ns::WindowStyleMaskMiniaturizable) flags |= Qt::WindowMinimizeButtonHint;
  if (mask & ns::WindowStyleMaskResizable) flags |= Qt::WindowMaximizeButtonHint;
  return flags;
}

QSize rounded(CGSize size) { return {qRound(size.width), qRound(size.height)}; }

class WindowWidget final : public QWidget {
 public:
  explicit WindowWidget(Qt::WindowFlags flags) : QWidget(nullptr, flags) {
    // The window itself first: no control shows a focus ring before the person uses the keyboard.
    setFocusPolicy(Qt::ClickFocus);
    setFocus();
    setAttribute(Qt::WA_OpaquePaintEvent, false);
  }

  void adopt(std::shared_ptr<ns::View> view) {
    if (content) content->native().widget->leave();
    content = std::move(view);
    if (!content) return;
    content->native().widget->setParent(this);
    content->native().widget->show();
    layOutContent();
  }

  void updateMinimum() {
    QSize least = contentMinimum;
    const QMargins& frame = centring.frame();
    least = least.expandedTo(windowMinimum - QSize(frame.left() + frame.right(), frame.top() + frame.bottom()));
    if (minimumSize() != least) setMinimumSize(least);
  }

  void center() {
    // A closed window has lost the place that it would go back to.
    if (!isVisible() && (isMaximized() || isFullScreen())) {
      setWindowState(Qt::WindowNoState);
      resize(contentSize);
    }
    centring.start();
  }

  std::shared_ptr<ns::View> content;
  std::weak_ptr<ns::WindowDelegate> delegate;
  /// As the program set it last.
  QSize contentSize{0, 0};
  QSize contentMinimum{0, 0};
  QSize windowMinimum{0, 0};
  Centring centring{*this};

 protected:
  bool event(QEvent* event) override {
    if (event->type() == QEvent::WindowActivate) {
      if (const auto strong = delegate.lock()) strong->windowDidBecomeKey();
    }
    return QWidget::event(event);
  }
  void resizeEvent(QResizeEvent*) override { layOutContent(); }
  void showEvent(QShowEvent*) override { layOutContent(); }
  bool nativeEvent(const QByteArray&, void* message, qintptr*) override {
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    if (centring.tellsOtherFrame(event)) updateMinimum();
    centring.follow(event);
    return false;
  }
  void closeEvent(QCloseEvent*) override {
    endEditing();
    if (const auto strong = delegate.lock()) strong->windowWillClose();
  }
  void keyPressEvent(QKeyEvent* event) override {
    const bool isCommandW = event->key() == Qt::Key_W && event->modifiers() == Qt::ControlModifier;
    if (event->key() == Qt::Key_Escape || isCommandW) {
      close();
    } else if (!content || !scrollByKey(content->native(), event->key())) {
      QWidget::keyPressEvent(event);
    }
  }
  bool focusNextPrevChild(bool next) override { return content && moveFocus(content->native(), next); }

 private:
  /// As a click elsewhere does.
  void endEditing() {
    if (QWidget* const editor = focusWidget(); editor && editor != this) {
      // In a window without the keyboard the toolkit takes the focus away from a field without a word.
      QFocusEvent leaving(QEvent::FocusOut, Qt::OtherFocusReason);
      QCoreApplication::sendEvent(editor, &leaving);
    }
    setFocus();
  }

  void layOutContent() {
    if (!content) return;
    auto& native = content->native();
    if (std::exchange(native.rootSize, QSizeF(size())) != QSizeF(size())) native.needsLayout = true;
    layOut(native);
  }
};

}  // namespace
}  // namespace qt

namespace ns {

struct Window::Native {
  explicit Native(WindowStyleMask mask) : widget(qt::flagsOf(mask)) {}

  qt::WindowWidget widget;
};

Window::Window(CGRect contentRect, WindowStyleMask styleMask) : native_(std::make_unique<Native>(styleMask)) {
  setContentSize(contentRect.size);
}

Window::~Window() { setContentView(nullptr); }

void Window::setTitle(const std::string& title) { native_->widget.setWindowTitle(QString::fromStdString(title)); }

void Window::setDelegate(std::weak_ptr<WindowDelegate> delegate) { native_->widget.delegate = std::move(delegate); }

void Window::setContentView(const std::shared_ptr<View>& view) { native_->widget.adopt(view); }

std::shared_ptr<View> Window::contentView() const { return native_->widget.content; }

void Window::setContentSize(CGSize size) {
  native_->widget.contentSize = qt::rounded(size);
  native_->widget.resize(native_->widget.contentSize);
}

void Window::setContentMinSize(CGSize size) {
  native_->widget.contentMinimum = qt::rounded(size);
  native_->widget.updateMinimum();
}

void Window::setMinSize(CGSize size) {
  native_->widget.windowMinimum = qt::rounded(size);
  native_->widget.updateMinimum();
}

void Window::center() { native_->widget.center(); }

void Window::makeKeyAndOrderFront() {
  auto& widget = native_->widget;
  qt::applyTaskBarPolicy(widget);
  if (widget.isMinimized()) widget.showNormal();
  widget.show();
  widget.raise();
  widget.activateWindow();
}

void Window::close() { native_->widget.close(); }

bool Window::isFirstResponder(const View& view) const { return qt::hasFocus(view.native()); }

void Window::makeFirstResponder(View& view) {
  view.layoutSubtreeIfNeeded();
  qt::focus(view.native(), Qt::OtherFocusReason);
}

bool Window::isVisible() const { return native_->widget.isVisible(); }

}  // namespace ns
