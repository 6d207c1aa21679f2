// Opening the application at login.
#pragma once

#include <stdexcept>

namespace sm {

/// What a refused registration is reported with; what() is the system's own description.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The registration of an application as a login item. The desktop keeps it; nothing is cached here. Abstract because
/// tests keep one in memory. Main thread only.
class AppService {
 public:
  /// The service of the running application; lives as long as the process.
  static AppService& mainAppService();
  virtual ~AppService() = default;

  /// 0 not registered, 1 enabled, 2 requires approval (switched off by the person or the desktop), 3 not found (there
  /// is no program where the registration would point).
  virtual int status() const = 0;
  /// Both throw Error and then have changed nothing.
  virtual void registerItem() = 0;
  virtual void unregisterItem() = 0;
};

}  // namespace sm
