#include "platform/Image.h"

#import "platform/macos/Bridge.h"
#import "platform/macos/ImageNative.h"

namespace ns {

NSFontWeight toNSFontWeight(FontWeight weight) {
  switch (weight) {
    case FontWeight::Regular:
      return NSFontWeightRegular;
    case FontWeight::Medium:
      return NSFontWeightMedium;
    case FontWeight::Semibold:
      return NSFontWeightSemibold;
  }
  return NSFontWeightRegular;
}

std::shared_ptr<Image> Image::imageWithSystemSymbolName(const std::string& name,
                                                        const std::string& accessibilityDescription) {
  NSImage* image =
      [NSImage imageWithSystemSymbolName:toNSString(name)
                accessibilityDescription:accessibilityDescription.empty() ? nil : toNSString(accessibilityDescription)];
  return image != nil ? std::make_shared<Image>(std::make_unique<Native>(Native{image})) : nullptr;
}

Image::Image(std::unique_ptr<Native> native) : native_(std::move(native)) {}
Image::~Image() = default;

std::shared_ptr<Image> Image::imageWithSymbolConfiguration(SymbolConfiguration configuration) const {
  NSImage* image = [native_->image
      imageWithSymbolConfiguration:[NSImageSymbolConfiguration
                                       configurationWithPointSize:configuration.pointSize
                                                           weight:toNSFontWeight(configuration.weight)]];
  return image != nil ? std::make_shared<Image>(std::make_unique<Native>(Native{image})) : nullptr;
}

void Image::setTemplate(bool isTemplate) { [native_->image setTemplate:isTemplate]; }
bool Image::isTemplate() const { return native_->image.isTemplate; }
void Image::setSize(CGSize size) { native_->image.size = size; }
CGSize Image::size() const { return native_->image.size; }
std::string Image::accessibilityDescription() const { return fromNSString(native_->image.accessibilityDescription); }

}  // namespace ns
