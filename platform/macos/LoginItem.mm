#include "platform/LoginItem.h"

#import <ServiceManagement/ServiceManagement.h>

#import "platform/macos/Bridge.h"

namespace sm {
namespace {

class MainAppService final : public AppService {
 public:
  int status() const override { return static_cast<int>(SMAppService.mainAppService.status); }
  void registerItem() override {
    NSError* error = nil;
    if (![SMAppService.mainAppService registerAndReturnError:&error]) throw toError(error);
  }
  void unregisterItem() override {
    NSError* error = nil;
    if (![SMAppService.mainAppService unregisterAndReturnError:&error]) throw toError(error);
  }

 private:
  static Error toError(NSError* error) { return Error(ns::fromNSString(error.localizedDescription)); }
};

}  // namespace

AppService& AppService::mainAppService() {
  static MainAppService service;
  return service;
}

}  // namespace sm
