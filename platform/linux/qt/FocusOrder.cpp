#include "platform/linux/qt/FocusOrder.h"

#include <algorithm>

#include "platform/linux/qt/Scrolling.h"
#include "platform/linux/qt/ViewWidget.h"

namespace qt {
namespace {

using Native = ns::View::Native;

void collect(Native& native, std::vector<Native*>& found) {
  if (!native.widget->isVisible()) return;
  if (native.canFocus()) found.push_back(&native);
  for (const auto& subview : native.subviews) collect(subview->native(), found);
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

}  // namespace

bool moveFocus(Native& root, bool forward) {
  std::vector<Native*> stops;
  collect(root, stops);
  if (stops.empty()) return false;
  const QWidget* const owner = root.widget->window()->focusWidget();
  const auto current = std::find_if(stops.begin(), stops.end(), [&](const Native* stop) {
    return owner && (stop->widget == owner || stop->widget->isAncestorOf(owner));
  });
  const auto count = static_cast<std::ptrdiff_t>(stops.size());
  std::ptrdiff_t next = forward ? 0 : count - 1;
  if (current != stops.end()) next = (current - stops.begin() + (forward ? 1 : count - 1)) % count;
  Native& chosen = *stops[static_cast<std::size_t>(next)];
  chosen.takeFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  reveal(chosen);
  return true;
}

}  // namespace qt
