#import "platform/macos/ViewNative.h"

namespace ns {

NSColor* toNSColor(const Color& color) {
  NSColor* named = nil;
  switch (color.name()) {
    case ColorName::Clear:
      named = NSColor.clearColor;
      break;
    case ColorName::Black:
      named = NSColor.blackColor;
      break;
    case ColorName::White:
      named = NSColor.whiteColor;
      break;
    case ColorName::Label:
      named = NSColor.labelColor;
      break;
    case ColorName::SecondaryLabel:
      named = NSColor.secondaryLabelColor;
      break;
    case ColorName::Separator:
      named = NSColor.separatorColor;
      break;
    case ColorName::WindowBackground:
      named = NSColor.windowBackgroundColor;
      break;
    case ColorName::ControlBackground:
      named = NSColor.controlBackgroundColor;
      break;
    case ColorName::ControlAccent:
      named = NSColor.controlAccentColor;
      break;
    case ColorName::SystemBlue:
      named = NSColor.systemBlueColor;
      break;
    case ColorName::SystemOrange:
      named = NSColor.systemOrangeColor;
      break;
  }
  // Setting the alpha of a dynamic colour fixes its components, so it is left alone where there is nothing to set.
  return color.alphaComponent() == 1 ? named : [named colorWithAlphaComponent:color.alphaComponent()];
}

}  // namespace ns
