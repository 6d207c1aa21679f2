#import "platform/macos/ViewNative.h"

namespace ns {

static NSColor* namedColor(ColorName name) {
  switch (name) {
    case ColorName::Clear:
      return NSColor.clearColor;
    case ColorName::Black:
      return NSColor.blackColor;
    case ColorName::White:
      return NSColor.whiteColor;
    case ColorName::Label:
      return NSColor.labelColor;
    case ColorName::SecondaryLabel:
      return NSColor.secondaryLabelColor;
    case ColorName::Separator:
      return NSColor.separatorColor;
    case ColorName::WindowBackground:
      return NSColor.windowBackgroundColor;
    case ColorName::ControlBackground:
      return NSColor.controlBackgroundColor;
    case ColorName::ControlAccent:
      return NSColor.controlAccentColor;
    case ColorName::SystemBlue:
      return NSColor.systemBlueColor;
    case ColorName::SystemOrange:
      return NSColor.systemOrangeColor;
  }
  return NSColor.clearColor;
}

NSColor* toNSColor(const Color& color) {
  NSColor* named = namedColor(color.name());
  const double opacity = color.alphaComponent();
  if (opacity == 1) return named;
  // Some named colours are translucent themselves, each look of the desktop has its own components, and setting an
  // alpha fixes those of the moment.
  return [NSColor colorWithName:nil
                dynamicProvider:^(NSAppearance* appearance) {
                  __block NSColor* components = named;
                  [appearance performAsCurrentDrawingAppearance:^{
                    components = [named colorUsingColorSpace:NSColorSpace.sRGBColorSpace];
                  }];
                  return [components colorWithAlphaComponent:components.alphaComponent * opacity];
                }];
}

}  // namespace ns
