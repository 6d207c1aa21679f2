#include "platform/linux/qt/FocusOrder.h"

#include <algorithm>

#include "platform/linux/qt/Scrolling.h"
#include "platform/linux/qt/ViewWidget.h"

namespace qt {
namespace {

using Native = ns::View::Native;

void collect(Native& native, std::vector<Native*>& found) {
  // In a closed window, too: it may be about to be opened.
  if (!native.widget->isVisibleTo(native.widget->window())) return;
  if (native.canFocus()) found.push_back(&native);
  for (const auto& subview : native.subviews) collect(subview->native(), found);
}

/// The tabs of the window that `tab` is in: all of it, since the last one may stand apart from the others.
std::vector<Native*> tabsBeside(Native& tab) {
  std::vector<Native*> tabs;
  collect(tab.root(), tabs);
  std::erase_if(tabs, [](const Native* one) { return !one->isAccessibilityButton; });
  return tabs;
}

void reveal(const Native& native) {
  double top = native.frame.top();
  for (ns::View* above = native.superview; above; above = above->native().superview) {
    if (auto* scrolling = dynamic_cast<Scrolling*>(&above->native())) {
      scrolling->reveal(top, top + native.frame.height());
      return;
    }
    top += above->native().frame.top();
  }
}

Native* firstScrolling(const Native& native) {
  for (const auto& subview : native.subviews) {
    Native& below = subview->native();
    if (!below.widget->isVisible()) continue;
    if (dynamic_cast<Scrolling*>(&below)) return &below;
    if (Native* const found = firstScrolling(below)) return found;
  }
  return nullptr;
}

}  // namespace

bool hasFocus(const Native& native) {
  const QWidget* const owner = native.widget->window()->focusWidget();
  return owner && (owner == native.widget || native.widget->isAncestorOf(owner));
}

void focus(Native& native, Qt::FocusReason reason) {
  native.takeFocus(reason);
  reveal(native);
}

bool moveFocus(Native& root, bool forward) {
  std::vector<Native*> stops;
  collect(root, stops);
  if (stops.empty()) return false;
  const auto current = std::ranges::find_if(stops, [](const Native* stop) { return hasFocus(*stop); });
  const auto count = static_cast<std::ptrdiff_t>(stops.size());
  std::ptrdiff_t next = forward ? 0 : count - 1;
  if (current != stops.end()) next = (current - stops.begin() + (forward ? 1 : count - 1)) % count;
  Native& chosen = *stops[static_cast<std::size_t>(next)];
  focus(chosen, forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  return true;
}

void followChosenTab(Native& tab) {
  const auto tabs = tabsBeside(tab);
  const bool isAtOther = std::ranges::any_of(tabs, [&](const Native* one) { return one != &tab && hasFocus(*one); });
  if (isAtOther) focus(tab, Qt::OtherFocusReason);
}

bool chooseTabByKey(Native& tab, int key) {
  if (key != Qt::Key_Up && key != Qt::Key_Down) return false;
  const auto tabs = tabsBeside(tab);
  const auto current = std::ranges::find(tabs, &tab);
  if (current == tabs.end()) return false;
  const bool isEnd = key == Qt::Key_Up ? current == tabs.begin() : current + 1 == tabs.end();
  if (isEnd) return true;
  Native& chosen = **(key == Qt::Key_Up ? current - 1 : current + 1);
  focus(chosen, Qt::OtherFocusReason);
  chosen.press();
  return true;
}

bool scrollByKey(const Native& root, int key) {
  constexpr double line = 48;
  constexpr double all = 1e6;
  Native* const scrolling = firstScrolling(root);
  if (!scrolling) return false;
  // What was at the edge stays in sight.
  const double page = std::max(line, scrolling->frame.height() - line);
  switch (key) {
    case Qt::Key_Up:
      return scrolling->scrolled(line);
    case Qt::Key_Down:
      return scrolling->scrolled(-line);
    case Qt::Key_PageUp:
      return scrolling->scrolled(page);
    case Qt::Key_PageDown:
      return scrolling->scrolled(-page);
    case Qt::Key_Home:
      return scrolling->scrolled(all);
    case Qt::Key_End:
      return scrolling->scrolled(-all);
    default:
      return false;
  }
}

}  // namespace qt
