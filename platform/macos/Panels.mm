#include "platform/Panels.h"

#import "platform/macos/Bridge.h"

// What is used of the class of uniform types. It is found at run time, because not every copy of the headers declares
// it; AppKit always loads it.
@protocol OstrelUniformTypes
+ (id)typeWithIdentifier:(NSString*)identifier;
@end

namespace ns {

std::size_t Alert::runModal() {
  assertMainThread();
  NSAlert* alert = [[NSAlert alloc] init];
  alert.alertStyle = style_ == AlertStyle::Warning ? NSAlertStyleWarning : NSAlertStyleInformational;
  alert.messageText = toNSString(messageText_);
  alert.informativeText = toNSString(informativeText_);
  for (const std::string& title : buttonTitles_) [alert addButtonWithTitle:toNSString(title)];
  // A lone button keeps Return, which Escape would take from it.
  if (alert.buttons.count > 1) alert.buttons.lastObject.keyEquivalent = @"\x1b";
  const NSModalResponse response = [alert runModal];
  // A session that was ended from outside counts as Escape.
  if (response < NSAlertFirstButtonReturn) return buttonTitles_.empty() ? 0 : buttonTitles_.size() - 1;
  return static_cast<std::size_t>(response - NSAlertFirstButtonReturn);
}

std::optional<std::string> OpenPanel::runModal() {
  assertMainThread();
  NSOpenPanel* panel = [NSOpenPanel openPanel];
  panel.canChooseFiles = YES;
  panel.canChooseDirectories = NO;
  panel.allowsMultipleSelection = NO;
  const auto types = static_cast<Class<OstrelUniformTypes>>(NSClassFromString(@"UTType"));
  if (id application = [types typeWithIdentifier:@"com.apple.application"])
    panel.allowedContentTypes = @[ application ];
  panel.directoryURL = [NSURL fileURLWithPath:toNSString(directory_)];
  panel.prompt = toNSString(prompt_);
  panel.message = toNSString(message_);
  if ([panel runModal] != NSModalResponseOK || panel.URL == nil) return std::nullopt;
  return fromNSString(panel.URL.path);
}

}  // namespace ns
