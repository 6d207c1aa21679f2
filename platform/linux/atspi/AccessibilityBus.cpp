#include "platform/linux/atspi/AccessibilityBus.h"

#include <cstdlib>

namespace atspi {

namespace {

/// The bus starts on demand, which takes a while on a busy machine.
constexpr int activationTimeout = 10'000;

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

/// Never GIO's own search, which may start a bus of its own and waits for it.
std::string sessionBusAddress() {
  if (auto address = variable("DBUS_SESSION_BUS_ADDRESS"); !address.empty()) return address;
  const auto folder = variable("XDG_RUNTIME_DIR");
  return folder.empty() ? "" : "unix:path=" + folder + "/bus";
}

Task<Object<GDBusConnection>> open(std::string address, GCancellable* cancellable) {
  if (address.empty()) co_return nullptr;
  constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                           G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  Operation opening([&](GAsyncReadyCallback callback, gpointer data) {
    g_dbus_connection_new_for_address(address.c_str(), flags, nullptr, cancellable, callback, data);
  });
  const auto result = co_await opening;
  co_return Object<GDBusConnection>(g_dbus_connection_new_for_address_finish(result.get(), nullptr));
}

}  // namespace

Task<Object<GDBusConnection>> AccessibilityBus::connect(GCancellable* cancellable) {
  auto address = variable("AT_SPI_BUS_ADDRESS");
  if (address.empty()) {
    const auto session = co_await open(sessionBusAddress(), cancellable);
    if (!session) co_return nullptr;
    const AccessibilityBus bus(session.get(), cancellable, activationTimeout);
    const Address launcher{"org.a11y.Bus", "/org/a11y/bus"};
    const auto reply = co_await bus.call(launcher, "org.a11y.Bus", "GetAddress", nullptr, "(s)");
    if (!reply) co_return nullptr;
    const char* found = nullptr;
    g_variant_get(reply.get(), "(&s)", &found);
    address = found;
  }
  co_return co_await open(std::move(address), cancellable);
}

AccessibilityBus::AccessibilityBus(GDBusConnection* connection, GCancellable* cancellable, int timeout)
    : connection_(retained(connection)), cancellable_(retained(cancellable)), timeout_(timeout) {}

Task<Variant> AccessibilityBus::call(const Address& object, const char* interface, const char* method,
                                     GVariant* arguments, const char* reply) const {
  const Variant owned(arguments ? g_variant_ref_sink(arguments) : nullptr);
  // GIO refuses such a name without ever calling back, and applications do give some: "no object" has none in GTK 4.
  if (!g_dbus_is_name(object.name.c_str())) co_return nullptr;
  Operation calling([&](GAsyncReadyCallback callback, gpointer data) {
    g_dbus_connection_call(connection_.get(), object.name.c_str(), object.path.c_str(), interface, method, arguments,
                           G_VARIANT_TYPE(reply), G_DBUS_CALL_FLAGS_NONE, timeout_, cancellable_.get(), callback, data);
  });
  const auto result = co_await calling;
  GError* raised = nullptr;
  Variant answer(g_dbus_connection_call_finish(connection_.get(), result.get(), &raised));
  const Error error(raised);
  if (error && (g_error_matches(raised, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) ||
                g_error_matches(raised, G_IO_ERROR, G_IO_ERROR_CLOSED) ||
                g_error_matches(raised, G_IO_ERROR, G_IO_ERROR_CANCELLED)))
    throw Silence{};
  co_return answer;
}

Task<std::string> AccessibilityBus::text(const Address& object, const char* interface, const char* property) const {
  const auto reply = co_await call(object, "org.freedesktop.DBus.Properties", "Get",
                                   g_variant_new("(ss)", interface, property), "(v)");
  if (!reply) co_return "";
  GVariant* boxed = nullptr;
  g_variant_get(reply.get(), "(v)", &boxed);
  const Variant value(boxed);
  if (!g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING)) co_return "";
  co_return g_variant_get_string(value.get(), nullptr);
}

}  // namespace atspi
