#import "tests/interface/Person.h"

#import "platform/macos/Bridge.h"
#import "platform/macos/ViewNative.h"

namespace person {
namespace {

NSTextField* fieldOf(const ns::TextField& field) { return static_cast<NSTextField*>(field.native().view); }
NSTextView* editorOf(const ns::TextField& field) { return static_cast<NSTextView*>(fieldOf(field).currentEditor); }

}  // namespace

void sitDown() {
  [NSApplication sharedApplication];
  // Every control takes the keyboard, and scrollers take no room.
  [NSUserDefaults.standardUserDefaults setVolatileDomain:@{
    @"AppleKeyboardUIMode" : @3,
    @"AppleShowScrollBars" : @"WhenScrolling"
  }
                                                 forName:NSArgumentDomain];
}

void visit(ns::TextField& field) { [fieldOf(field).window makeFirstResponder:fieldOf(field)]; }

void type(ns::TextField& field, const std::string& text) {
  visit(field);
  NSTextView* editor = editorOf(field);
  [editor selectAll:nil];
  [editor insertText:ns::toNSString(text) replacementRange:editor.selectedRange];
}

void enter(ns::TextField& field, const std::string& text) {
  type(field, text);
  [editorOf(field) doCommandBySelector:@selector(insertNewline:)];
  // A refused text stays in the field to be mended.
  [editorOf(field) doCommandBySelector:@selector(cancelOperation:)];
}

void leave(ns::TextField& field) { [fieldOf(field).window makeFirstResponder:nil]; }

void choose(ns::PopUpButton& button, std::size_t index) {
  auto* popUp = static_cast<NSPopUpButton*>(button.native().view);
  [popUp.menu performActionForItemAtIndex:static_cast<NSInteger>(index)];
}

CGRect edgesOf(const ns::View& view) {
  NSView* native = view.native().view;
  return [native alignmentRectForFrame:native.frame];
}

}  // namespace person
