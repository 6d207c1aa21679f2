// Views that show a value and send an action.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/Color.h"
#include "platform/Font.h"
#include "platform/Image.h"
#include "platform/Menu.h"
#include "platform/View.h"

namespace ns {

enum class ControlSize { Regular, Small };

/// A view with a target and an action. The target is held weakly: an action whose target is gone does nothing.
class Control : public View {
 public:
  /// `action` is called with this control, which must be a `Sender`, when the person uses it.
  template <typename Target, typename Sender>
  void setTarget(std::weak_ptr<Target> target, void (Target::*action)(Sender&)) {
    setAction([this, target = std::move(target), action] {
      if (const auto strong = target.lock()) ((*strong).*action)(static_cast<Sender&>(*this));
    });
  }
  /// What the person's use of the control would do, for tests and the keyboard.
  void performClick();

 protected:
  using View::View;

 private:
  void setAction(std::function<void()> action);
};

enum class TextAlignment { Natural, Right };
enum class LineBreakMode { WordWrapping, TruncatingTail };

/// Accepts whole numbers (floats not allowed) from minimum to maximum, without grouping.
struct NumberFormatter {
  double minimum;
  double maximum;
};

class TextField;

/// Told about editing in text fields. Held weakly.
class TextFieldDelegate {
 public:
  virtual ~TextFieldDelegate() = default;
  virtual void controlTextDidEndEditing(TextField& field) = 0;
};

/// A label, or a field to type in. As an editable field it sends its action on Return; text that its formatter refuses
/// is neither sent nor kept.
class TextField : public Control {
 public:
  static std::shared_ptr<TextField> labelWithString(const std::string& text);
  /// A label that breaks into as many lines as its width needs.
  static std::shared_ptr<TextField> wrappingLabelWithString(const std::string& text);
  /// An empty editable field.
  TextField();

  void setStringValue(const std::string& text);
  std::string stringValue() const;
  /// Shown through the formatter, when there is one, as a whole number.
  void setDoubleValue(double value);
  double doubleValue() const;
  void setFont(const Font& font);
  void setTextColor(Color color);
  Color textColor() const;
  void setAlignment(TextAlignment alignment);
  void setLineBreakMode(LineBreakMode mode);
  void setFormatter(NumberFormatter formatter);
  void setDelegate(std::weak_ptr<TextFieldDelegate> delegate);

 protected:
  using Control::Control;
};

/// A push button, or a link.
class Button : public Control {
 public:
  /// A push button with a rounded bezel.
  explicit Button(const std::string& title);
  /// A borderless button whose title is underlined and in the accent colour.
  static std::shared_ptr<Button> linkWithTitle(const std::string& title, const Font& font);

  std::string title() const;
  void setControlSize(ControlSize size);

 protected:
  using Control::Control;
};

class Switch : public Control {
 public:
  Switch();
  /// Sends no action.
  void setOn(bool on);
  bool isOn() const;
};

/// Counts between its ends; a step beyond one leads to the other.
class Stepper : public Control {
 public:
  Stepper(double minimum, double maximum, double increment);
  /// Kept within minimum and maximum. Sends no action.
  void setDoubleValue(double value);
  double doubleValue() const;
  /// What a press on the upper or lower half does, action included.
  void increment();
  void decrement();
};

/// A button that shows the chosen item of its menu.
class PopUpButton : public Control {
 public:
  PopUpButton();
  void removeAllItems();
  /// Items are added to this menu; the first one becomes the chosen one.
  Menu& menu();
  /// Does nothing for an index that has no item. Sends no action.
  void selectItemAtIndex(std::size_t index);
  /// Null when there is none.
  std::shared_ptr<MenuItem> selectedItem() const;
  std::size_t numberOfItems() const;
};

enum class ImageScaling { None, ProportionallyUpOrDown };

/// Shows an image, or nothing.
class ImageView : public View {
 public:
  ImageView();
  /// Null shows nothing.
  void setImage(std::shared_ptr<Image> image);
  std::shared_ptr<Image> image() const;
  void setContentTintColor(Color color);
  void setImageScaling(ImageScaling scaling);
};

/// A thin line; its direction follows its shape.
class SeparatorBox : public View {
 public:
  SeparatorBox();
};

}  // namespace ns
