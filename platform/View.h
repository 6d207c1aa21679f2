// Views: rectangles on screen that hold other views, laid out by constraints.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/ApplicationServices.h"
#include "platform/Layer.h"
#include "platform/Layout.h"

namespace ns {

/// A press of the left button in a view; the location is in the view's own coordinates.
struct MouseEvent {
  CGPoint location;
};

enum class Cursor { Arrow, PointingHand };

/// A view. Made with std::make_shared and owned by its superview and by whoever keeps it. Main thread only, as for
/// every class derived from it. Coordinates are points, origin at the top-left when isFlipped() and at the bottom-left
/// otherwise.
class View : public std::enable_shared_from_this<View> {
 public:
  struct Native;

  View();
  /// With an initial frame; as the content view of a window it takes that window's size.
  explicit View(CGRect frame);
  virtual ~View();
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  /// Moves `view` here from wherever it was.
  void addSubview(const std::shared_ptr<View>& view);
  /// Constraints to views outside go with it.
  void removeFromSuperview();
  const std::vector<std::shared_ptr<View>>& subviews() const;
  /// Null at the top.
  View* superview() const;

  /// In the superview's coordinates, after the last layout.
  CGRect frame() const;
  CGRect bounds() const;
  /// Solves and applies pending layout of this view's whole tree.
  void layoutSubtreeIfNeeded();

  LayoutExpression leading() { return {this, LayoutAttribute::Leading}; }
  LayoutExpression trailing() { return {this, LayoutAttribute::Trailing}; }
  LayoutExpression top() { return {this, LayoutAttribute::Top}; }
  LayoutExpression bottom() { return {this, LayoutAttribute::Bottom}; }
  LayoutExpression width() { return {this, LayoutAttribute::Width}; }
  LayoutExpression height() { return {this, LayoutAttribute::Height}; }
  LayoutExpression centerX() { return {this, LayoutAttribute::CenterX}; }
  LayoutExpression centerY() { return {this, LayoutAttribute::CenterY}; }
  /// How strongly the view resists growing beyond its content.
  void setContentHuggingPriority(LayoutPriority priority, LayoutOrientation orientation);
  /// How strongly the view resists shrinking below its content.
  void setContentCompressionResistancePriority(LayoutPriority priority, LayoutOrientation orientation);

  void setHidden(bool hidden);
  bool isHidden() const;
  /// Draws `layer` behind the content from now on.
  void setLayer(const Layer& layer);
  const Layer& layer() const;
  /// Names the view for its owner; empty for none.
  void setIdentifier(const std::string& identifier);
  const std::string& identifier() const;
  /// What assistive technology calls the view.
  void setAccessibilityLabel(const std::string& label);
  /// Makes the view a button for assistive technology and the keyboard: pressing it calls mouseDown().
  void setAccessibilityButton(bool selected);

  /// Called for a left press that no subview takes. Does nothing here.
  virtual void mouseDown(const MouseEvent& event);
  /// Called after the view got its size. Overrides call the base.
  virtual void layout();
  virtual bool isFlipped() const;
  /// Called when cursor rectangles are due; overrides call addCursorRect().
  virtual void resetCursorRects();
  void addCursorRect(CGRect rect, Cursor cursor);

  Native& native() const { return *native_; }

 protected:
  /// For the backing's own controls.
  explicit View(std::unique_ptr<Native> native);

 private:
  std::unique_ptr<Native> native_;
};

}  // namespace ns
