#include "platform/UserDefaults.h"

#import "platform/macos/Bridge.h"

namespace ns {
namespace {

class FoundationUserDefaults final : public UserDefaults {
 public:
  std::optional<PropertyList> objectForKey(std::string_view key) const override {
    id object = [NSUserDefaults.standardUserDefaults objectForKey:toNSString(key)];
    if (object == nil) return std::nullopt;
    return fromPropertyListObject(object);
  }
  void setObject(PropertyList value, std::string_view key) override {
    [NSUserDefaults.standardUserDefaults setObject:toPropertyListObject(value) forKey:toNSString(key)];
  }
};

}  // namespace

std::shared_ptr<UserDefaults> UserDefaults::standardUserDefaults() {
  static const auto defaults = std::make_shared<FoundationUserDefaults>();
  return defaults;
}

bool UserDefaults::boolForKey(std::string_view key) const {
  return [NSUserDefaults.standardUserDefaults boolForKey:toNSString(key)];
}

double UserDefaults::doubleForKey(std::string_view key) const {
  return [NSUserDefaults.standardUserDefaults doubleForKey:toNSString(key)];
}

std::optional<Array> UserDefaults::arrayForKey(std::string_view key) const {
  NSArray* array = [NSUserDefaults.standardUserDefaults arrayForKey:toNSString(key)];
  if (array == nil) return std::nullopt;
  return *fromPropertyListObject(array).as<Array>();
}

}  // namespace ns
