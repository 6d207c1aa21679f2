// Images: system symbols by name, and icons of files.
#pragma once

#include <memory>
#include <string>

#include "platform/ApplicationServices.h"
#include "platform/Font.h"

namespace ns {

/// The size and weight at which a symbol is drawn.
struct SymbolConfiguration {
  double pointSize;
  FontWeight weight = FontWeight::Regular;
};

/// An image. Main thread only. `Native` is the backing's picture.
class Image {
 public:
  struct Native;

  /// The system symbol of this name at its default size; null when there is none.
  static std::shared_ptr<Image> imageWithSystemSymbolName(const std::string& name,
                                                          const std::string& accessibilityDescription = {});
  explicit Image(std::unique_ptr<Native> native);
  ~Image();

  /// The same symbol at another size and weight; null when the image is no symbol.
  std::shared_ptr<Image> imageWithSymbolConfiguration(SymbolConfiguration configuration) const;

  /// A template image is drawn in the tint of the place that shows it.
  void setTemplate(bool isTemplate);
  bool isTemplate() const;
  /// In points.
  void setSize(CGSize size);
  CGSize size() const;
  /// Empty when none was given.
  std::string accessibilityDescription() const;

  Native& native() const { return *native_; }

 private:
  std::unique_ptr<Native> native_;
};

}  // namespace ns
