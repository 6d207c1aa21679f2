// An application with one window, to be clicked on from outside. Writes "ready" when the window is there and "press"
// for each left press that reaches it.
//
//   application_window X Y [keep]      with its top-left corner there; "keep" keeps the presses from the window
#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const bool keepsPresses = argc > 3 && std::strcmp(argv[3], "keep") == 0;
  @autoreleasepool {
    [NSApplication sharedApplication];
    NSApp.activationPolicy = NSApplicationActivationPolicyRegular;
    NSWindow* window =
        [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 480, 320)
                                    styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                              NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable
                                      backing:NSBackingStoreBuffered
                                        defer:NO];
    window.releasedWhenClosed = NO;
    const CGFloat height = NSScreen.screens.firstObject.frame.size.height;
    [window setFrameTopLeftPoint:NSMakePoint(std::atof(argv[1]), height - std::atof(argv[2]))];
    [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown
                                          handler:^NSEvent*(NSEvent* event) {
                                            std::puts("press");
                                            std::fflush(stdout);
                                            return keepsPresses ? nil : event;
                                          }];
    dispatch_async(dispatch_get_main_queue(), ^{
      [NSApp activateIgnoringOtherApps:YES];
      [window makeKeyAndOrderFront:nil];
      [window orderFrontRegardless];
      std::puts("ready");
      std::fflush(stdout);
    });
    [NSApp run];
  }
}
