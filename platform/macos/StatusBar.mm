#include "platform/StatusBar.h"

#import "platform/macos/Bridge.h"
#import "platform/macos/ImageNative.h"
#import "platform/macos/MenuBridge.h"

namespace ns {
namespace {

class AppKitStatusBarButton final : public StatusBarButton {
 public:
  explicit AppKitStatusBarButton(NSStatusBarButton* button) : button_(button) {}
  void setImage(std::shared_ptr<Image> image) override {
    button_.image = toNSImage(image);
    button_.imagePosition = image ? NSImageOnly : NSNoImage;
  }
  void setTitle(const std::string& title) override { button_.title = toNSString(title); }
  void setToolTip(const std::string& toolTip) override { button_.toolTip = toNSString(toolTip); }

 private:
  NSStatusBarButton* button_;
};

class AppKitStatusItem final : public StatusItem {
 public:
  AppKitStatusItem()
      : item_([NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength]), button_(item_.button) {}
  ~AppKitStatusItem() override { [NSStatusBar.systemStatusBar removeStatusItem:item_]; }

  void setVisible(bool visible) override { item_.visible = visible; }
  void setMenu(std::shared_ptr<Menu> menu) override {
    menuBridge_ = [[OstrelMenuBridge alloc] initWithMenu:std::move(menu)];
    item_.menu = menuBridge_.nativeMenu;
  }
  StatusBarButton* button() override { return item_.button != nil ? &button_ : nullptr; }

 private:
  NSStatusItem* item_;
  AppKitStatusBarButton button_;
  OstrelMenuBridge* menuBridge_ = nil;
};

}  // namespace

std::shared_ptr<StatusItem> StatusBar::statusItemWithVariableLength() {
  assertMainThread();
  return std::make_shared<AppKitStatusItem>();
}

}  // namespace ns
