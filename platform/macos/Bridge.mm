#import "platform/macos/Bridge.h"

namespace ns {

id toPropertyListObject(const PropertyList& value) {
  if (const auto* boolean = value.as<bool>()) return @(*boolean);
  if (const auto* integer = value.as<std::int64_t>()) return @(*integer);
  if (const auto* number = value.as<double>()) return @(*number);
  if (const auto* text = value.as<std::string>()) return toNSString(*text);
  if (const auto* array = value.as<Array>()) {
    NSMutableArray* objects = [NSMutableArray arrayWithCapacity:array->size()];
    for (const PropertyList& element : *array) [objects addObject:toPropertyListObject(element)];
    return objects;
  }
  NSMutableDictionary* objects = [NSMutableDictionary dictionary];
  for (const auto& [key, element] : *value.as<Dictionary>()) objects[toNSString(key)] = toPropertyListObject(element);
  return objects;
}

PropertyList fromPropertyListObject(id object) {
  if ([object isKindOfClass:NSString.class]) return {fromNSString(object)};
  if ([object isKindOfClass:NSNumber.class]) {
    const auto number = (__bridge CFNumberRef)object;
    if (CFGetTypeID(number) == CFBooleanGetTypeID()) return {static_cast<bool>([object boolValue])};
    if (CFNumberIsFloatType(number)) return {[object doubleValue]};
    return {static_cast<std::int64_t>([object longLongValue])};
  }
  if ([object isKindOfClass:NSArray.class]) {
    Array array;
    for (id element in object) array.push_back(fromPropertyListObject(element));
    return {std::move(array)};
  }
  if ([object isKindOfClass:NSDictionary.class]) {
    Dictionary dictionary;
    for (id key in object) {
      if ([key isKindOfClass:NSString.class]) dictionary[fromNSString(key)] = fromPropertyListObject(object[key]);
    }
    return {std::move(dictionary)};
  }
  return foreignValue();
}

}  // namespace ns

@implementation OstrelTarget {
  std::function<void()> _action;
}

- (instancetype)initWithAction:(std::function<void()>)action {
  if ((self = [super init])) _action = std::move(action);
  return self;
}

+ (SEL)action {
  return @selector(callClosure:);
}

- (void)callClosure:(id)sender {
  // The action may release what holds the closure, this target, and the control, which then still has a press to
  // finish: all of them stay until the run loop's next pass.
  id keptSender = sender;
  id keptSelf = self;
  const auto action = _action;
  ns::callBack(action);
  dispatch_async(dispatch_get_main_queue(), ^{
    (void)keptSender;
    (void)keptSelf;
  });
}

@end
