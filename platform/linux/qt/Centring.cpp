#include "platform/linux/qt/Centring.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "platform/linux/qt/ToolkitConnection.h"
#include "platform/linux/qt/WorkArea.h"

namespace qt {
namespace {

/// A window manager that refuses a place says nothing. What moves the window later than this is the person.
constexpr qint64 patience = 1000;  // milliseconds
constexpr const char* extentsName = "_NET_FRAME_EXTENTS";

/// The edges of the window's frame in pixels; none while there is no frame.
std::optional<QMargins> frameExtents(xcb_connection_t* connection, xcb_window_t window) {
  const auto cookie = xcb_get_property(connection, 0, window, atom(connection, extentsName), XCB_ATOM_CARDINAL, 0,
                                       4);  // left, right, top, bottom
  const auto reply = owned(xcb_get_property_reply(connection, cookie, nullptr));
  if (!reply || reply->format != 32 || reply->value_len != 4) return std::nullopt;
  const auto* const edges = static_cast<const std::int32_t*>(xcb_get_property_value(reply.get()));
  return QMargins(edges[0], edges[2], edges[1], edges[3]);
}

int eventType(const xcb_generic_event_t& event) { return event.response_type & 0x7f; }

bool isFrameExtentsEvent(const xcb_generic_event_t& event) {
  static const xcb_atom_t extents = atom(toolkitConnection(), extentsName);
  return eventType(event) == XCB_PROPERTY_NOTIFY &&
         reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == extents;
}

/// Whether the window is in another one: the window manager has made a frame for it.
bool isFramed(xcb_connection_t* connection, xcb_window_t window) {
  const auto reply = owned(xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
  return reply && reply->parent != reply->root;
}

/// The window without its frame, in pixels of the root window; none while it is not mapped.
std::optional<QRect> mappedPlace(xcb_connection_t* connection, xcb_window_t window) {
  const auto attributesCookie = xcb_get_window_attributes(connection, window);
  const auto sizeCookie = xcb_get_geometry(connection, window);
  const auto originCookie = xcb_translate_coordinates(connection, window, rootWindow(connection), 0, 0);
  const auto attributes = owned(xcb_get_window_attributes_reply(connection, attributesCookie, nullptr));
  const auto size = owned(xcb_get_geometry_reply(connection, sizeCookie, nullptr));
  const auto origin = owned(xcb_translate_coordinates_reply(connection, originCookie, nullptr));
  if (!attributes || !size || !origin || attributes->map_state == XCB_MAP_STATE_UNMAPPED) return std::nullopt;
  return QRect(origin->dst_x, origin->dst_y, size->width, size->height);
}

/// Where a window of this size, without its frame, belongs.
QRect middleOf(const QRect& area, QSize size, QSize minimum, const QMargins& frame) {
  const QSize edges(frame.left() + frame.right(), frame.top() + frame.bottom());
  const QSize inner = size.boundedTo(area.size() - edges).expandedTo(minimum);
  const QSize space = (area.size() - inner - edges) / 2;
  const QPoint corner = area.topLeft() + QPoint(std::max(space.width(), 0), std::max(space.height(), 0));
  return {corner + QPoint(frame.left(), frame.top()), inner};
}

/// Whether only rounding is between the two.
bool isNear(const QRect& one, const QRect& other) {
  const QPoint off = one.topLeft() - other.topLeft();
  return one.size() == other.size() && std::abs(off.x()) <= 1 && std::abs(off.y()) <= 1;
}

/// The part of a screen that panels leave, in pixels. The corner of a screen is where it is at every scale.
QRect workAreaInPixels(const QScreen& screen) {
  const QRect area = workArea(screen);
  const QPoint origin = screen.geometry().topLeft();
  const qreal scale = screen.devicePixelRatio();
  return {origin + ((area.topLeft() - origin) * scale), area.size() * scale};
}

void askToMove(xcb_connection_t* connection, xcb_window_t window, const QRect& place, const QMargins& frame) {
  // Gravity north-west, all four values, as from a pager: then the position is the frame's with every window manager.
  constexpr std::uint32_t flags = 1U | 0xfU << 8U | 2U << 12U;
  const auto number = [](int value) { return static_cast<std::uint32_t>(value); };
  sendToWindowManager(connection, window, "_NET_MOVERESIZE_WINDOW",
                      {flags, number(place.x() - frame.left()), number(place.y() - frame.top()), number(place.width()),
                       number(place.height())});
}

}  // namespace

void Centring::start() {
  isUnderWay_ = !window_.isMaximized() && !window_.isFullScreen();
  if (!isUnderWay_) return;
  askedAt_ = askedFor_ = {};
  sinceMapped_.invalidate();
  if (window_.isVisible() && toolkitConnection() != nullptr) {
    correct();
  } else {
    const QRect place = middleOf(workArea(*window_.screen()), window_.size(), window_.minimumSize(), frame_);
    window_.resize(place.size());
    window_.move(place.topLeft() - QPoint(frame_.left(), frame_.top()));
  }
}

bool Centring::tellsOtherFrame(const xcb_generic_event_t& event) {
  if (!isFrameExtentsEvent(event)) return false;
  const QMargins before = frame_;
  if (const auto extents = frameExtents(toolkitConnection(), static_cast<xcb_window_t>(window_.winId()))) {
    frame_ = (QMarginsF(*extents) / window_.devicePixelRatio()).toMargins();
  }
  return frame_ != before;
}

void Centring::follow(const xcb_generic_event_t& event) {
  const int type = eventType(event);
  if (type == XCB_MAP_NOTIFY || type == XCB_CONFIGURE_NOTIFY || isFrameExtentsEvent(event)) correct();
}

void Centring::correct() {
  if (!isUnderWay_) return;
  xcb_connection_t* const connection = toolkitConnection();
  const auto window = static_cast<xcb_window_t>(window_.winId());
  const auto extents = frameExtents(connection, window);
  const auto place = mappedPlace(connection, window);
  // A frame that is not told yet is not ready.
  if (!place || (!extents && isFramed(connection, window))) return;
  if (!sinceMapped_.isValid()) sinceMapped_.start();
  const QMargins frame = extents.value_or(QMargins());
  const QSize minimum = window_.minimumSize() * window_.devicePixelRatio();
  const QRect wanted = middleOf(workAreaInPixels(*window_.screen()), place->size(), minimum, frame);
  if (isNear(*place, wanted) || sinceMapped_.hasExpired(patience)) {
    isUnderWay_ = false;
  } else if (*place != askedAt_ || wanted != askedFor_) {
    askedAt_ = *place;
    askedFor_ = wanted;
    askToMove(connection, window, wanted, frame);
  }
}

}  // namespace qt
