#include "platform/SingleInstance.h"

#include "platform/CFRef.h"

#import "platform/macos/Bridge.h"
#import "platform/macos/Reopening.h"

namespace ns {
namespace {

/// Half of the second that a question may take, for each way.
constexpr CFTimeInterval patience = 0.5;
// Requests and answers are told apart by their direction; the port has one kind of message.
constexpr SInt32 messageID = 0;

/// One in each login session, for each bundle identifier.
CFRef<CFStringRef> portName() {
  NSString* identifier = NSBundle.mainBundle.bundleIdentifier;
  NSString* name = [identifier != nil ? identifier : @"Ostrel" stringByAppendingString:@".instance"];
  return CFRef<CFStringRef>::adopt(static_cast<CFStringRef>(CFBridgingRetain(name)));
}

CFRef<CFDataRef> toData(std::string_view text) {
  return CFRef<CFDataRef>::adopt(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                              static_cast<CFIndex>(text.size())));
}

std::string fromData(CFDataRef data) {
  if (data == nullptr) return {};
  return {reinterpret_cast<const char*>(CFDataGetBytePtr(data)), static_cast<std::size_t>(CFDataGetLength(data))};
}

/// Null when no instance runs.
CFRef<CFMessagePortRef> runningPort() {
  return CFRef<CFMessagePortRef>::adopt(CFMessagePortCreateRemote(kCFAllocatorDefault, portName().get()));
}

class PortInstance;
/// The claim of this process, for the reopening; null without one.
PortInstance* claimed = nullptr;

/// Launch Services keeps to one instance of an application by itself, but knows nothing of programs that a terminal
/// starts: the name of a local port, which the system gives away once, decides for both.
class PortInstance final : public SingleInstance {
 public:
  explicit PortInstance(Handler handler) : handler_(std::move(handler)) { claimed = this; }
  ~PortInstance() override {
    claimed = nullptr;
    if (port_) CFMessagePortInvalidate(port_.get());
  }

  /// False when the name is taken, or refused.
  bool open() {
    CFMessagePortContext context{0, this, nullptr, nullptr, nullptr};
    port_ = CFRef<CFMessagePortRef>::adopt(
        CFMessagePortCreateLocal(kCFAllocatorDefault, portName().get(), answerMessage, &context, nullptr));
    if (!port_) return false;
    const auto source =
        CFRef<CFRunLoopSourceRef>::adopt(CFMessagePortCreateRunLoopSource(kCFAllocatorDefault, port_.get(), 0));
    // The common modes have it answer while a menu or a panel is open.
    CFRunLoopAddSource(CFRunLoopGetMain(), source.get(), kCFRunLoopCommonModes);
    return true;
  }

  std::string answer(const std::string& request) const {
    std::string text;
    callBack([&] { text = handler_(request); });
    return text;
  }

 private:
  /// The caller releases what this returns.
  static CFDataRef answerMessage(CFMessagePortRef, SInt32, CFDataRef data, void* info) {
    return toData(static_cast<const PortInstance*>(info)->answer(fromData(data))).release();
  }

  const Handler handler_;
  CFRef<CFMessagePortRef> port_;
};

}  // namespace

std::unique_ptr<SingleInstance> SingleInstance::claim(Handler handler) {
  assertMainThread();
  auto instance = std::make_unique<PortInstance>(std::move(handler));
  if (!instance->open() && runningPort()) return nullptr;
  return instance;
}

InstanceReply askRunningInstance(std::string_view request) {
  const auto port = runningPort();
  if (!port) return {};
  CFDataRef answer = nullptr;
  const SInt32 outcome = CFMessagePortSendRequest(port.get(), messageID, toData(request).get(), patience, patience,
                                                  kCFRunLoopDefaultMode, &answer);
  const auto owned = CFRef<CFDataRef>::adopt(answer);
  switch (outcome) {
    case kCFMessagePortSuccess:
      return {InstanceReply::Status::Answered, fromData(answer)};
    case kCFMessagePortSendTimeout:
    case kCFMessagePortReceiveTimeout:
      return {InstanceReply::Status::Silent, {}};
    default:
      return {};  // it ended in the meantime
  }
}

void reopen() {
  if (claimed != nullptr) claimed->answer({});
}

}  // namespace ns
