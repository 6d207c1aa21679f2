// A framework menu made from one of ours.
#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "platform/Menu.h"

/// Keeps a framework menu equal to one of ours, whose delegate it asks each time before the menu opens.
@interface OstrelMenuBridge : NSObject <NSMenuDelegate>
- (instancetype)initWithMenu:(std::shared_ptr<ns::Menu>)menu;
@property(readonly) NSMenu* nativeMenu;
@end
