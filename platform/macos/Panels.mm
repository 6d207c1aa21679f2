#include "platform/Panels.h"

#import "platform/macos/Bridge.h"

namespace ns {

std::size_t Alert::runModal() {
  assertMainThread();
  NSAlert* alert = [[NSAlert alloc] init];
  alert.alertStyle = style_ == AlertStyle::Warning ? NSAlertStyleWarning : NSAlertStyleInformational;
  alert.messageText = toNSString(messageText_);
  alert.informativeText = toNSString(informativeText_);
  for (const std::string& title : buttonTitles_) [alert addButtonWithTitle:toNSString(title)];
  return static_cast<std::size_t>([alert runModal] - NSAlertFirstButtonReturn);
}

std::optional<std::string> OpenPanel::runModal() {
  assertMainThread();
  NSOpenPanel* panel = [NSOpenPanel openPanel];
  panel.canChooseFiles = YES;
  panel.canChooseDirectories = NO;
  panel.allowsMultipleSelection = NO;
  // The class is looked up because not every copy of the headers carries its declaration; AppKit always loads it.
  id applicationType = [NSClassFromString(@"UTType") valueForKey:@"class"];
  SEL typeWithIdentifier = NSSelectorFromString(@"typeWithIdentifier:");
  using TypeWithIdentifier = id (*)(id, SEL, NSString*);
  const auto makeType = reinterpret_cast<TypeWithIdentifier>([applicationType methodForSelector:typeWithIdentifier]);
  if (id type = makeType(applicationType, typeWithIdentifier, @"com.apple.application")) {
    panel.allowedContentTypes = @[ type ];
  }
  panel.directoryURL = [NSURL fileURLWithPath:toNSString(directory_)];
  panel.prompt = toNSString(prompt_);
  panel.message = toNSString(message_);
  if ([panel runModal] != NSModalResponseOK || panel.URL == nil) return std::nullopt;
  return fromNSString(panel.URL.path);
}

}  // namespace ns
