// Menus and their items.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Image.h"
#include "platform/PropertyList.h"

namespace ns {

/// One entry of a menu. Plain state that the menu shows when it opens. Main thread only.
class MenuItem {
 public:
  static std::shared_ptr<MenuItem> separatorItem();
  /// `keyEquivalent` is pressed together with the command key (Control on Linux); empty for none.
  explicit MenuItem(std::string title, std::string keyEquivalent = {})
      : title_(std::move(title)), keyEquivalent_(std::move(keyEquivalent)) {}

  /// Held weakly; an item whose target is gone, or that never got one, is shown disabled.
  template <typename Target>
  void setTarget(std::weak_ptr<Target> target, void (Target::*action)()) {
    hasTarget_ = [target] { return !target.expired(); };
    action_ = [target = std::move(target), action] {
      if (const auto strong = target.lock()) ((*strong).*action)();
    };
  }
  void setImage(std::shared_ptr<Image> image) { image_ = std::move(image); }
  void setEnabled(bool enabled) { isEnabled_ = enabled; }
  void setRepresentedObject(PropertyList object) { representedObject_ = std::move(object); }

  const std::string& title() const { return title_; }
  const std::string& keyEquivalent() const { return keyEquivalent_; }
  /// Null for none.
  const std::shared_ptr<Image>& image() const { return image_; }
  const std::optional<PropertyList>& representedObject() const { return representedObject_; }
  bool isSeparator() const { return isSeparator_; }
  /// Whether it can be chosen from a menu now.
  bool isEnabled() const { return isEnabled_ && hasTarget_ && hasTarget_(); }
  /// What choosing it does.
  void performAction() const {
    if (action_) action_();
  }

 private:
  std::string title_;
  std::string keyEquivalent_;
  std::shared_ptr<Image> image_;
  std::optional<PropertyList> representedObject_;
  std::function<bool()> hasTarget_;
  std::function<void()> action_;
  bool isEnabled_ = true;
  bool isSeparator_ = false;
};

inline std::shared_ptr<MenuItem> MenuItem::separatorItem() {
  auto item = std::make_shared<MenuItem>("");
  item->isSeparator_ = true;
  return item;
}

class Menu;

/// Told before a menu opens, to bring its items up to date. Held weakly.
class MenuDelegate {
 public:
  virtual ~MenuDelegate() = default;
  virtual void menuNeedsUpdate(Menu& menu) = 0;
};

/// A list of items. Plain state, read by whatever shows the menu, each time it opens. Main thread only.
class Menu {
 public:
  void setDelegate(std::weak_ptr<MenuDelegate> delegate) { delegate_ = std::move(delegate); }
  void removeAllItems() {
    changed([this] { items_.clear(); });
  }
  void addItem(std::shared_ptr<MenuItem> item) {
    changed([&] { items_.push_back(std::move(item)); });
  }
  const std::vector<std::shared_ptr<MenuItem>>& items() const { return items_; }

  /// For what shows the menu: has the delegate bring the items up to date.
  void update() {
    if (const auto delegate = delegate_.lock()) delegate->menuNeedsUpdate(*this);
  }
  /// For what shows the menu all the time: called after every change of the items.
  void setChangeHandler(std::function<void()> handler) { changeHandler_ = std::move(handler); }

 private:
  template <typename Change>
  void changed(Change change) {
    change();
    if (changeHandler_) changeHandler_();
  }

  std::vector<std::shared_ptr<MenuItem>> items_;
  std::weak_ptr<MenuDelegate> delegate_;
  std::function<void()> changeHandler_;
};

}  // namespace ns
