#include "platform/Bundle.h"

#import "platform/macos/Bridge.h"

namespace ns {
namespace {

class FoundationBundle final : public Bundle {
 public:
  explicit FoundationBundle(NSBundle* bundle) : bundle_(bundle) {}
  std::optional<std::string> bundleIdentifier() const override {
    NSString* identifier = bundle_.bundleIdentifier;
    if (identifier == nil) return std::nullopt;
    return fromNSString(identifier);
  }
  std::string bundlePath() const override { return fromNSString(bundle_.bundlePath); }
  std::optional<PropertyList> objectForInfoDictionaryKey(std::string_view key) const override {
    id object = bundle_.infoDictionary[toNSString(key)];
    if (object == nil) return std::nullopt;
    return fromPropertyListObject(object);
  }

 private:
  NSBundle* bundle_;
};

}  // namespace

std::shared_ptr<Bundle> Bundle::mainBundle() { return std::make_shared<FoundationBundle>(NSBundle.mainBundle); }

std::shared_ptr<Bundle> Bundle::bundleWithPath(const std::string& path) {
  NSBundle* bundle = [NSBundle bundleWithPath:toNSString(path)];
  return bundle != nil ? std::make_shared<FoundationBundle>(bundle) : nullptr;
}

std::string displayNameAtPath(const std::string& path) {
  return fromNSString([NSFileManager.defaultManager displayNameAtPath:toNSString(path)]);
}

}  // namespace ns
