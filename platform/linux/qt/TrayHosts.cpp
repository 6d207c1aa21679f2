#include "platform/linux/qt/TrayHosts.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <QRgb>
#include <utility>

#include "platform/linux/qt/SessionBus.h"
#include "platform/linux/qt/ToolkitConnection.h"

namespace qt {
namespace {

const auto watcherService = QString::fromLatin1(notifierWatcher);
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");

/// Qt shows items on the first screen only, and that is the one that every tray of today serves.
bool hasEmbeddingTray() {
  xcb_connection_t* const x11 = toolkitConnection();
  if (!x11) return false;
  static const xcb_atom_t selection = atom(x11, "_NET_SYSTEM_TRAY_S0");
  const auto reply = owned(xcb_get_selection_owner_reply(x11, xcb_get_selection_owner(x11, selection), nullptr));
  return reply && reply->owner != XCB_WINDOW_NONE;
}

}  // namespace

TrayHosts::TrayHosts(std::function<void()> changed) : changed_(std::move(changed)) {
  qGuiApp->installNativeEventFilter(this);
  if (!hasSessionBus()) {
    isAnswered_ = true;
    tell();
    return;
  }
  auto bus = QDBusConnection::sessionBus();
  const auto* services = new QDBusServiceWatcher(watcherService, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
  connect(services, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayHosts::ask);
  for (const auto* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
    bus.connect(watcherService, watcherPath, watcherService, QLatin1String(signal), this, SLOT(ask()));
  }
  ask();
}

TrayHosts::~TrayHosts() { qGuiApp->removeNativeEventFilter(this); }

TrayHost TrayHosts::current() const {
  if (!isAnswered_) return TrayHost::None;
  if (hasNotifierHost_) return TrayHost::StatusNotifier;
  return hasEmbeddingTray() ? TrayHost::XEmbed : TrayHost::None;
}

void TrayHosts::ask() {
  auto message = QDBusMessage::createMethodCall(
      watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  message << watcherService << QStringLiteral("IsStatusNotifierHostRegistered");
  message.setAutoStartService(false);
  // The deadline is for a watcher that hangs: then the other kind of tray is looked for.
  const auto* call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message, 3000), this);
  connect(call, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
    finished->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *finished;
    hasNotifierHost_ = !reply.isError() && reply.value().variant().toBool();
    isAnswered_ = true;
    changed_();
  });
}

bool TrayHosts::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
  if (type != "xcb_generic_event_t") return false;
  const auto* const event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7FU) != XCB_CLIENT_MESSAGE) return false;
  // A tray that comes announces itself to the root window.
  static const xcb_atom_t manager = atom(toolkitConnection(), "MANAGER");
  static const xcb_atom_t selection = atom(toolkitConnection(), "_NET_SYSTEM_TRAY_S0");
  const auto* const announcement = reinterpret_cast<const xcb_client_message_event_t*>(event);
  if (announcement->type == manager && announcement->data.data32[1] == selection) tell();
  return false;
}

void TrayHosts::tell() {
  QMetaObject::invokeMethod(
      this, [this] { changed_(); }, Qt::QueuedConnection);
}

std::optional<bool> isDarkBehind(std::uint32_t window) {
  xcb_connection_t* const x11 = toolkitConnection();
  if (!x11) return std::nullopt;
  // Read from the screen: the window's own pixels may be transparent ones.
  const xcb_window_t root = rootWindow(x11);
  const auto place =
      owned(xcb_translate_coordinates_reply(x11, xcb_translate_coordinates(x11, window, root, 0, 0), nullptr));
  if (!place) return std::nullopt;
  const auto cookie = xcb_get_image(x11, XCB_IMAGE_FORMAT_Z_PIXMAP, root, place->dst_x, place->dst_y, 1, 1, ~0U);
  const auto image = owned(xcb_get_image_reply(x11, cookie, nullptr));
  if (!image || image->depth < 24 || xcb_get_image_data_length(image.get()) < 4) return std::nullopt;
  const std::uint8_t* const pixel = xcb_get_image_data(image.get());
  return qGray(pixel[2], pixel[1], pixel[0]) < 128;
}

}  // namespace qt

#include "moc_TrayHosts.cpp"
