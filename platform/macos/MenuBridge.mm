#import "platform/macos/MenuBridge.h"

#import "platform/macos/Bridge.h"
#import "platform/macos/ImageNative.h"

static NSMenuItem* makeItem(const std::shared_ptr<ns::MenuItem>& item) {
  if (item->isSeparator()) return [NSMenuItem separatorItem];
  NSMenuItem* nativeItem = [[NSMenuItem alloc] initWithTitle:ns::toNSString(item->title())
                                                      action:OstrelTarget.action
                                               keyEquivalent:ns::toNSString(item->keyEquivalent())];
  OstrelTarget* target = [[OstrelTarget alloc] initWithAction:[item] { item->performAction(); }];
  nativeItem.target = target;
  // A menu item holds its target weakly and its represented object strongly: this keeps the target alive with the item.
  nativeItem.representedObject = target;
  nativeItem.image = ns::toNSImage(item->image());
  nativeItem.enabled = item->isEnabled();
  return nativeItem;
}

@implementation OstrelMenuBridge {
  std::shared_ptr<ns::Menu> _menu;
}

- (instancetype)initWithMenu:(std::shared_ptr<ns::Menu>)menu {
  if ((self = [super init])) {
    _menu = std::move(menu);
    _nativeMenu = [[NSMenu alloc] init];
    _nativeMenu.autoenablesItems = NO;
    _nativeMenu.delegate = self;
  }
  return self;
}

- (void)menuNeedsUpdate:(NSMenu*)nativeMenu {
  ns::callBack([&] { _menu->update(); });
  [nativeMenu removeAllItems];
  for (const auto& item : _menu->items()) [nativeMenu addItem:makeItem(item)];
}

@end
