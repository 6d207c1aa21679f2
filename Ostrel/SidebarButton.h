// One entry of the settings window's sidebar.
#pragma once

#include <functional>
#include <memory>

#include "Ostrel/Tab.h"
#include "platform/Controls.h"
#include "platform/View.h"

namespace ostrel {

/// Reacts when the mouse goes down, without waiting for the release. Main thread only.
class SidebarButton : public ns::View {
 public:
  using Handler = std::function<void(SidebarButton&)>;
  SidebarButton(Tab tab, Handler handler);

  Tab tab() const { return tab_; }
  bool isSelected() const { return isSelected_; }
  /// Shows after the next updateAppearance().
  void setSelected(bool isSelected) { isSelected_ = isSelected; }
  void updateAppearance();

  void mouseDown(const ns::MouseEvent& event) override;
  void resetCursorRects() override;

 private:
  const Tab tab_;
  const Handler handler_;
  const std::shared_ptr<ns::ImageView> iconView_;
  const std::shared_ptr<ns::TextField> titleLabel_;
  bool isSelected_ = false;
};

}  // namespace ostrel
