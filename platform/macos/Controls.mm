#include "platform/Controls.h"

#include <algorithm>
#include <utility>

#import "platform/macos/Bridge.h"
#import "platform/macos/ImageNative.h"
#import "platform/macos/ViewNative.h"

namespace ns {
namespace {

template <typename NativeView>
NativeView* nativeView(const View& view) {
  return static_cast<NativeView*>(view.native().view);
}

std::unique_ptr<View::Native> makeNative(NSView* view) {
  assertMainThread();
  return std::make_unique<View::Native>(view);
}

NSFont* toNSFont(const Font& font) {
  return [NSFont systemFontOfSize:font.pointSize weight:toNSFontWeight(font.weight)];
}

// Below it a view does not hold the window open: its text gives way, and the window keeps the size that the person or
// the program gave it.
const NSLayoutPriority givesWayToWindow = NSLayoutPriorityWindowSizeStayPut - 10;

void letShrink(NSView* view) {
  [view setContentCompressionResistancePriority:givesWayToWindow
                                 forOrientation:NSLayoutConstraintOrientationHorizontal];
}

// What the frameworks' views cannot give back as it was put in.
struct TextFieldNative final : View::Native {
  using Native::Native;
  Color textColor = Color::labelColor();
};
struct PopUpNative final : View::Native {
  using Native::Native;
  Menu menu;
};
struct ImageViewNative final : View::Native {
  using Native::Native;
  std::shared_ptr<Image> image;
};

template <typename Native>
Native& nativeOf(const View& view) {
  return static_cast<Native&>(view.native());
}

// Items of a pop-up have no action of their own: the pop-up sends its own when one is chosen.
void fillPopUp(NSPopUpButton* popUp, const Menu& menu) {
  const NSInteger selected = popUp.indexOfSelectedItem;
  [popUp.menu removeAllItems];
  for (const auto& item : menu.items()) {
    [popUp.menu addItem:[[NSMenuItem alloc] initWithTitle:toNSString(item->title()) action:nil keyEquivalent:@""]];
  }
  if (popUp.numberOfItems > 0) [popUp selectItemAtIndex:std::clamp<NSInteger>(selected, 0, popUp.numberOfItems - 1)];
}

}  // namespace

}  // namespace ns

/// Whole numbers alone: the framework's formatter takes an empty text for no value, which would read as 0.
@interface OstrelNumberFormatter : NSNumberFormatter
@end

@implementation OstrelNumberFormatter

- (BOOL)getObjectValue:(out id __autoreleasing*)object
             forString:(NSString*)string
      errorDescription:(out NSString* __autoreleasing*)error {
  return string.length > 0 && [super getObjectValue:object forString:string errorDescription:error];
}

@end

/// Tells a C++ delegate about the end of editing, of which there is none without a change: the framework also reports
/// it of a field that the keyboard has only passed through.
@interface OstrelTextFieldDelegate : NSObject <NSTextFieldDelegate> {
 @public
  ns::TextField* field;
  std::weak_ptr<ns::TextFieldDelegate> delegate;
  bool isEdited;
}
@end

@implementation OstrelTextFieldDelegate

// Escape gives the edit up; without this a text that the formatter refuses would keep the field until it is mended.
- (BOOL)control:(NSControl*)control textView:(NSTextView*)__unused editor doCommandBySelector:(SEL)command {
  if (command != @selector(cancelOperation:) || ![control abortEditing]) return NO;
  isEdited = false;
  return YES;
}

- (void)controlTextDidChange:(NSNotification*)__unused notification {
  isEdited = true;
}

- (void)controlTextDidEndEditing:(NSNotification*)__unused notification {
  if (!std::exchange(isEdited, false)) return;
  if (const auto strong = delegate.lock()) ns::callBack([&] { strong->controlTextDidEndEditing(*field); });
}

@end

namespace ns {

void Control::performClick() { [nativeView<NSControl>(*this) performClick:nil]; }

void Control::setAction(std::function<void()> action) {
  OstrelTarget* target = [[OstrelTarget alloc] initWithAction:std::move(action)];
  native().target = target;
  auto* control = nativeView<NSControl>(*this);
  control.target = target;
  control.action = OstrelTarget.action;
}

// --- TextField ------------------------------------------------------------------------------------------------------

std::shared_ptr<TextField> TextField::labelWithString(const std::string& text) {
  return std::shared_ptr<TextField>(
      new TextField(std::make_unique<TextFieldNative>([NSTextField labelWithString:toNSString(text)])));
}
std::shared_ptr<TextField> TextField::wrappingLabelWithString(const std::string& text) {
  NSTextField* label = [NSTextField wrappingLabelWithString:toNSString(text)];
  // Wrapping labels come selectable, which would make them swallow clicks and change the cursor.
  label.selectable = NO;
  letShrink(label);
  return std::shared_ptr<TextField>(new TextField(std::make_unique<TextFieldNative>(label)));
}
TextField::TextField() : Control(std::make_unique<TextFieldNative>([[NSTextField alloc] initWithFrame:NSZeroRect])) {
  nativeView<NSTextField>(*this).usesSingleLineMode = YES;
  // On Return alone; the delegate hears of every other end.
  nativeView<NSTextField>(*this).cell.sendsActionOnEndEditing = NO;
}

void TextField::setStringValue(const std::string& text) {
  nativeView<NSTextField>(*this).stringValue = toNSString(text);
}
std::string TextField::stringValue() const { return fromNSString(nativeView<NSTextField>(*this).stringValue); }
void TextField::setDoubleValue(double value) { nativeView<NSTextField>(*this).doubleValue = value; }
double TextField::doubleValue() const { return nativeView<NSTextField>(*this).doubleValue; }
void TextField::setFont(const Font& font) { nativeView<NSTextField>(*this).font = toNSFont(font); }
void TextField::setTextColor(Color color) {
  nativeOf<TextFieldNative>(*this).textColor = color;
  nativeView<NSTextField>(*this).textColor = toNSColor(color);
}
Color TextField::textColor() const { return nativeOf<TextFieldNative>(*this).textColor; }
void TextField::setAlignment(TextAlignment alignment) {
  nativeView<NSTextField>(*this).alignment =
      alignment == TextAlignment::Right ? NSTextAlignmentRight : NSTextAlignmentNatural;
}
void TextField::setLineBreakMode(LineBreakMode mode) {
  if (mode == LineBreakMode::TruncatingTail) letShrink(native().view);
  nativeView<NSTextField>(*this).lineBreakMode =
      mode == LineBreakMode::TruncatingTail ? NSLineBreakByTruncatingTail : NSLineBreakByWordWrapping;
}
void TextField::setFormatter(NumberFormatter formatter) {
  NSNumberFormatter* numberFormatter = [[OstrelNumberFormatter alloc] init];
  numberFormatter.numberStyle = NSNumberFormatterNoStyle;
  numberFormatter.minimum = @(formatter.minimum);
  numberFormatter.maximum = @(formatter.maximum);
  numberFormatter.allowsFloats = NO;
  nativeView<NSTextField>(*this).formatter = numberFormatter;
}
void TextField::setDelegate(std::weak_ptr<TextFieldDelegate> delegate) {
  OstrelTextFieldDelegate* bridge = [[OstrelTextFieldDelegate alloc] init];
  bridge->field = this;
  bridge->delegate = std::move(delegate);
  native().delegate = bridge;
  nativeView<NSTextField>(*this).delegate = bridge;
}

// --- Buttons --------------------------------------------------------------------------------------------------------

Button::Button(const std::string& title)
    : Control(makeNative([NSButton buttonWithTitle:toNSString(title) target:nil action:nil])) {
  nativeView<NSButton>(*this).bezelStyle = NSBezelStyleRounded;
}

std::shared_ptr<Button> Button::linkWithTitle(const std::string& title, const Font& font) {
  NSButton* link = [NSButton buttonWithTitle:toNSString(title) target:nil action:nil];
  link.bordered = NO;
  link.bezelStyle = NSBezelStyleInline;
  link.contentTintColor = NSColor.controlAccentColor;
  link.font = toNSFont(font);
  link.attributedTitle = [[NSAttributedString alloc] initWithString:toNSString(title)
                                                         attributes:@{
                                                           NSFontAttributeName : toNSFont(font),
                                                           NSForegroundColorAttributeName : NSColor.controlAccentColor,
                                                           NSUnderlineStyleAttributeName : @(NSUnderlineStyleSingle)
                                                         }];
  return std::shared_ptr<Button>(new Button(makeNative(link)));
}

std::string Button::title() const { return fromNSString(nativeView<NSButton>(*this).title); }
void Button::setControlSize(ControlSize size) {
  auto* button = nativeView<NSButton>(*this);
  button.controlSize = size == ControlSize::Small ? NSControlSizeSmall : NSControlSizeRegular;
  button.font = [NSFont systemFontOfSize:[NSFont systemFontSizeForControlSize:button.controlSize]];
}

Switch::Switch() : Control(makeNative([[NSSwitch alloc] initWithFrame:NSZeroRect])) {}
void Switch::setOn(bool on) { nativeView<NSSwitch>(*this).state = on ? NSControlStateValueOn : NSControlStateValueOff; }
bool Switch::isOn() const { return nativeView<NSSwitch>(*this).state == NSControlStateValueOn; }

Stepper::Stepper(double minimum, double maximum, double increment)
    : Control(makeNative([[NSStepper alloc] initWithFrame:NSZeroRect])) {
  auto* stepper = nativeView<NSStepper>(*this);
  stepper.minValue = minimum;
  stepper.maxValue = maximum;
  stepper.increment = increment;
}
void Stepper::setDoubleValue(double value) { nativeView<NSStepper>(*this).doubleValue = value; }
double Stepper::doubleValue() const { return nativeView<NSStepper>(*this).doubleValue; }
void Stepper::increment() { [nativeView<NSStepper>(*this) accessibilityPerformIncrement]; }
void Stepper::decrement() { [nativeView<NSStepper>(*this) accessibilityPerformDecrement]; }

// --- PopUpButton ----------------------------------------------------------------------------------------------------

PopUpButton::PopUpButton()
    : Control(std::make_unique<PopUpNative>([[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO])) {
  auto* popUp = nativeView<NSPopUpButton>(*this);
  popUp.menu.autoenablesItems = NO;
  letShrink(popUp);
  menu().setChangeHandler([this, popUp] { fillPopUp(popUp, menu()); });
}
void PopUpButton::removeAllItems() { menu().removeAllItems(); }
Menu& PopUpButton::menu() { return nativeOf<PopUpNative>(*this).menu; }
void PopUpButton::selectItemAtIndex(std::size_t index) {
  if (index < numberOfItems()) [nativeView<NSPopUpButton>(*this) selectItemAtIndex:static_cast<NSInteger>(index)];
}
std::shared_ptr<MenuItem> PopUpButton::selectedItem() const {
  const auto index = static_cast<std::size_t>(nativeView<NSPopUpButton>(*this).indexOfSelectedItem);
  const auto& items = nativeOf<PopUpNative>(*this).menu.items();
  return index < items.size() ? items[index] : nullptr;
}
std::size_t PopUpButton::numberOfItems() const { return nativeOf<PopUpNative>(*this).menu.items().size(); }

// --- Images and lines -----------------------------------------------------------------------------------------------

ImageView::ImageView() : View(std::make_unique<ImageViewNative>([[NSImageView alloc] initWithFrame:NSZeroRect])) {}
void ImageView::setImage(std::shared_ptr<Image> image) {
  nativeView<NSImageView>(*this).image = toNSImage(image);
  nativeOf<ImageViewNative>(*this).image = std::move(image);
}
std::shared_ptr<Image> ImageView::image() const { return nativeOf<ImageViewNative>(*this).image; }
void ImageView::setContentTintColor(Color color) { nativeView<NSImageView>(*this).contentTintColor = toNSColor(color); }
void ImageView::setImageScaling(ImageScaling scaling) {
  nativeView<NSImageView>(*this).imageScaling =
      scaling == ImageScaling::ProportionallyUpOrDown ? NSImageScaleProportionallyUpOrDown : NSImageScaleNone;
}

SeparatorBox::SeparatorBox() : View(makeNative([[NSBox alloc] initWithFrame:NSZeroRect])) {
  nativeView<NSBox>(*this).boxType = NSBoxSeparator;
}

}  // namespace ns
