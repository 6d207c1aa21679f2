#include "platform/Workspace.h"

#include <map>

#import "platform/macos/Bridge.h"
#import "platform/macos/ImageNative.h"

namespace ns {
namespace {

class AppKitRunningApplication final : public RunningApplication {
 public:
  explicit AppKitRunningApplication(NSRunningApplication* application) : application_(application) {}
  pid_t processIdentifier() const override { return application_.processIdentifier; }
  std::optional<std::string> bundleIdentifier() const override {
    NSString* identifier = application_.bundleIdentifier;
    if (identifier == nil) return std::nullopt;
    return fromNSString(identifier);
  }
  bool hide() override { return [application_ hide]; }

 private:
  NSRunningApplication* application_;
};

class WorkspaceNotificationCenter final : public NotificationCenter {
 public:
  Observer addObserverForName(std::string_view name, std::function<void()> handler) override {
    id token = [center() addObserverForName:toNSString(name)
                                     object:nil
                                      queue:NSOperationQueue.mainQueue
                                 usingBlock:^(NSNotification*) {
                                   callBack(handler);
                                 }];
    tokens_.emplace(++last_, token);
    return last_;
  }
  void removeObserver(Observer observer) override {
    const auto token = tokens_.find(observer);
    if (token == tokens_.end()) return;
    [center() removeObserver:token->second];
    tokens_.erase(token);
  }

 private:
  static NSNotificationCenter* center() { return NSWorkspace.sharedWorkspace.notificationCenter; }

  std::map<Observer, id> tokens_;
  Observer last_ = 0;
};

class AppKitWorkspace final : public Workspace {
 public:
  std::vector<std::shared_ptr<RunningApplication>> runningApplications() override {
    std::vector<std::shared_ptr<RunningApplication>> applications;
    for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
      applications.push_back(std::make_shared<AppKitRunningApplication>(application));
    }
    return applications;
  }
  NotificationCenter& notificationCenter() override { return notificationCenter_; }

  bool openURL(const std::string& url) override {
    NSURL* address = [NSURL URLWithString:toNSString(url)];
    return address != nil && [NSWorkspace.sharedWorkspace openURL:address];
  }
  std::optional<std::string> URLForApplicationWithBundleIdentifier(const std::string& bundleIdentifier) override {
    NSURL* url = [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:toNSString(bundleIdentifier)];
    if (url == nil) return std::nullopt;
    return fromNSString(url.path);
  }
  std::shared_ptr<Image> iconForFile(const std::string& path) override {
    // A copy, since the workspace lends the same image to everyone and callers set its size.
    NSImage* icon = [[NSWorkspace.sharedWorkspace iconForFile:toNSString(path)] copy];
    return std::make_shared<Image>(std::make_unique<Image::Native>(Image::Native{icon}));
  }

 private:
  WorkspaceNotificationCenter notificationCenter_;
};

}  // namespace

std::shared_ptr<RunningApplication> RunningApplication::runningApplicationWithProcessIdentifier(pid_t pid) {
  NSRunningApplication* application = [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
  return application != nil ? std::make_shared<AppKitRunningApplication>(application) : nullptr;
}

std::shared_ptr<Workspace> Workspace::sharedWorkspace() {
  static const auto workspace = std::make_shared<AppKitWorkspace>();
  return workspace;
}

}  // namespace ns
