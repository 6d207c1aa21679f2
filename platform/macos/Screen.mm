#include "platform/Screen.h"

#import "platform/macos/Bridge.h"

namespace ns {

std::vector<Screen> Screen::screens() {
  assertMainThread();
  std::vector<Screen> screens;
  for (NSScreen* screen in NSScreen.screens) {
    Screen description{fromNSString(screen.localizedName), {}, screen.backingScaleFactor};
    id number = screen.deviceDescription[@"NSScreenNumber"];
    if (number != nil) description.deviceDescription["NSScreenNumber"] = fromPropertyListObject(number);
    screens.push_back(std::move(description));
  }
  return screens;
}

}  // namespace ns
