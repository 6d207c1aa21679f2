// The application's item in the menu bar or system tray.
#pragma once

#include <memory>
#include <string>

#include "platform/Image.h"
#include "platform/Menu.h"

namespace ns {

/// The visible part of a status item. Setting an image shows the image only; without one the title shows.
class StatusBarButton {
 public:
  virtual ~StatusBarButton() = default;
  /// Null removes the image.
  virtual void setImage(std::shared_ptr<Image> image) = 0;
  virtual void setTitle(const std::string& title) = 0;
  virtual void setToolTip(const std::string& toolTip) = 0;
};

/// One item; it leaves the bar when released. Main thread only.
class StatusItem {
 public:
  virtual ~StatusItem() = default;
  virtual void setVisible(bool visible) = 0;
  /// The menu opens when the item is clicked; its delegate is asked just before.
  virtual void setMenu(std::shared_ptr<Menu> menu) = 0;
  /// Null when the desktop has no place for one.
  virtual StatusBarButton* button() = 0;
};

class StatusBar {
 public:
  /// A new item as wide as its content. It is there whenever the desktop shows such items, also when its panel comes
  /// later.
  static std::shared_ptr<StatusItem> statusItemWithVariableLength();
};

}  // namespace ns
