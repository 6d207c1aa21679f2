// The message bus on which applications describe their windows.
#pragma once

#include <string>

#include "platform/linux/atspi/GLib.h"
#include "platform/linux/atspi/Task.h"

namespace atspi {

/// The other side did not answer in time, or the bus is gone: nothing more is to be had from it now.
struct Silence {};

/// An object that an application exports.
struct Address {
  std::string name;
  std::string path;
};

/// A connection together with the terms on which it is used. Belongs to the thread whose main context it was made on.
class AccessibilityBus {
 public:
  /// Starts the bus if the session can. Null when there is none. Cancelling ends the wait.
  static Task<Object<GDBusConnection>> connect(GCancellable* cancellable);

  /// `timeout` is in milliseconds and holds for each call; cancelling ends them all in silence.
  AccessibilityBus(GDBusConnection* connection, GCancellable* cancellable, int timeout);

  /// The reply, of the type `reply`; null when the other side answered with an error or with another type, and when
  /// `object` has no name that can be one.
  /// Takes `arguments` over if it is floating. Throws Silence.
  Task<Variant> call(const Address& object, const char* interface, const char* method, GVariant* arguments,
                     const char* reply) const;
  /// A property's text; empty when it has none.
  Task<std::string> text(const Address& object, const char* interface, const char* property) const;

 private:
  Object<GDBusConnection> connection_;
  Object<GCancellable> cancellable_;
  int timeout_;
};

}  // namespace atspi
