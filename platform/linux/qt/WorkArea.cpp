#include "platform/linux/qt/WorkArea.h"

#include <QGuiApplication>
#include <QRectF>
#include <QScreen>
#include <cstdint>

#include "platform/linux/qt/ToolkitConnection.h"

namespace qt {

QRect workArea(const QScreen& screen) {
  xcb_connection_t* const connection = toolkitConnection();
  if (!connection || QGuiApplication::screens().size() > 1) return screen.geometry();
  const auto cookie = xcb_get_property(connection, 0, rootWindow(connection), atom(connection, "_NET_WORKAREA"),
                                       XCB_ATOM_CARDINAL, 0, 4);  // the first virtual desktop's
  const auto reply = owned(xcb_get_property_reply(connection, cookie, nullptr));
  if (!reply || reply->format != 32 || reply->value_len != 4) return screen.geometry();
  const auto* const values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  const qreal scale = screen.devicePixelRatio();
  const QRectF area(values[0] / scale, values[1] / scale, values[2] / scale, values[3] / scale);
  return area.toAlignedRect().intersected(screen.geometry());
}

}  // namespace qt
