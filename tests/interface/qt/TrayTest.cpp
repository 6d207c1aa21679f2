// The status item on a virtual X server: in a real tray, with a panel that reads it over the session bus, and with
// none.
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QTest>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <tuple>

#include "platform/Application.h"
#include "platform/StatusBar.h"
#include "platform/linux/qt/MenuWidget.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/XvfbSession.h"

namespace {

constexpr int bound = 20000;

/// What a panel has on the bus.
class Watcher : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
  Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)

 public:
  bool hasHost() const { return true; }
  QStringList items;

 public slots:
  void RegisterStatusNotifierItem(const QString& service) { items += service; }
};

struct Session {
  support::XvfbSession server;
  support::ChildProcess bus{{"dbus-daemon", "--session", "--nofork", "--print-address"}};
  std::unique_ptr<support::ChildProcess> windowManager;
  support::TemporaryFolder folder;

  Session() {
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.readLine(support::patience).value().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    setenv("XDG_DATA_HOME", folder.path().c_str(), 1);
    windowManager = std::make_unique<support::ChildProcess>(std::vector<std::string>{"openbox"});
    folder.write("tint2rc",
                 "panel_items = S\npanel_size = 600 40\npanel_position = bottom center\npanel_background_id = 0\n"
                 "systray_padding = 4 4 4\nsystray_icon_size = 24\n");
    application = ns::Application::sharedApplication();
  }
  std::unique_ptr<support::ChildProcess> startTint2() {
    return std::make_unique<support::ChildProcess>(std::vector<std::string>{"tint2", "-c", folder / "tint2rc"});
  }

  std::shared_ptr<ns::Application> application;  // the first to go
};

/// From before the first test to after the last: static objects end too late for a toolkit.
std::unique_ptr<Session> running;

struct MenuSource final : ns::MenuDelegate, std::enable_shared_from_this<MenuSource> {
  void menuNeedsUpdate(ns::Menu& menu) override {
    ++updates;
    menu.removeAllItems();
    const auto item = std::make_shared<ns::MenuItem>("Number " + std::to_string(updates), "k");
    item->setTarget<MenuSource>(weak_from_this(), &MenuSource::choose);
    menu.addItem(item);
  }
  void choose() { ++choices; }
  int updates = 0;
  int choices = 0;
};

class TrayTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { running = std::make_unique<Session>(); }
  static void TearDownTestSuite() { running.reset(); }

  TrayTest() {
    menu->setDelegate(source);
    item->setMenu(menu);
    item->button()->setImage(ns::Image::imageWithSystemSymbolName("gear"));
    item->button()->setToolTip("Ostrel");
    item->setVisible(true);
  }
  ~TrayTest() override {
    if (auto* const open = popup()) open->close();
  }

  static QMenu* popup() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
  /// Where a widget's window is on the X11 screen, in pixels.
  QRect pixelsOf(const QWidget& widget) {
    xcb_connection_t* const x11 = hands.connection().get();
    const auto window = static_cast<xcb_window_t>(widget.winId());
    const std::unique_ptr<xcb_translate_coordinates_reply_t, decltype(&std::free)> place(
        xcb_translate_coordinates_reply(x11, xcb_translate_coordinates(x11, window, hands.connection().root(), 0, 0),
                                        nullptr),
        std::free);
    return {QPoint(place->dst_x, place->dst_y), widget.size() * widget.devicePixelRatio()};
  }
  /// The middle of the item's window in the tray; none while it is in none.
  std::optional<QPoint> iconCenter() {
    for (auto* widget : QApplication::topLevelWidgets()) {
      if (!widget->inherits("QSystemTrayIconSys") || !widget->isVisible()) continue;
      xcb_connection_t* const x11 = hands.connection().get();
      const auto window = static_cast<xcb_window_t>(widget->winId());
      using Tree = std::unique_ptr<xcb_query_tree_reply_t, decltype(&std::free)>;
      const Tree tree(xcb_query_tree_reply(x11, xcb_query_tree(x11, window), nullptr), std::free);
      const auto attributes = std::unique_ptr<xcb_get_window_attributes_reply_t, decltype(&std::free)>(
          xcb_get_window_attributes_reply(x11, xcb_get_window_attributes(x11, window), nullptr), std::free);
      if (!tree || tree->parent == hands.connection().root() || !attributes ||
          attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
        continue;
      }
      return pixelsOf(*widget).center();
    }
    return std::nullopt;
  }
  bool isDocked() {
    return QTest::qWaitFor([&] { return iconCenter().has_value(); }, bound);
  }
  /// Whether the pointer, moved to the icon, is over it.
  bool pointAtIcon() {
    const auto center = iconCenter();
    if (!center) return false;
    hands.move(center->x() + 1, center->y());
    hands.move(center->x(), center->y());
    return std::ranges::any_of(QApplication::topLevelWidgets(), [](auto* widget) {
      return widget->inherits("QSystemTrayIconSys") && widget->underMouse();
    });
  }
  /// Clicks the icon and closes the menu that opens.
  void expectMenuOnClick(int button) {
    const int before = source->updates;
    // A tray that has just come may still move its icons.
    ASSERT_TRUE(QTest::qWaitFor([&] { return pointAtIcon(); }, bound));
    hands.click(button);
    ASSERT_TRUE(QTest::qWaitFor([] { return popup() != nullptr; }, bound)) << "button " << button;
    EXPECT_EQ(source->updates, before + 1);
    EXPECT_EQ(popup()->actions().front()->text(), QString("Number %1").arg(before + 1));
    EXPECT_TRUE(QTest::qWaitForWindowExposed(popup()));
    const QRect place = pixelsOf(*popup());
    const QPoint click = *iconCenter();
    EXPECT_NEAR(place.left(), click.x(), 2);
    EXPECT_LE(place.bottom(), click.y()) << "above the panel";
    EXPECT_GE(place.bottom(), click.y() - 40) << "at its edge";
    EXPECT_FALSE(popup()->mask().contains(QPoint(0, 0))) << "its corners are round, though nobody blends windows here";
    EXPECT_TRUE(popup()->mask().contains(popup()->rect().center()));
    hands.tapKey(0xFF1B);  // Escape
    EXPECT_TRUE(QTest::qWaitFor([] { return popup() == nullptr; }, bound));
  }

  Session& session = *running;
  support::Hands hands;
  const std::shared_ptr<MenuSource> source = std::make_shared<MenuSource>();
  const std::shared_ptr<ns::Menu> menu = std::make_shared<ns::Menu>();
  const std::shared_ptr<ns::StatusItem> item = ns::StatusBar::statusItemWithVariableLength();
};

TEST_F(TrayTest, ComesAndGoesWithATrayAndOpensItsMenu) {
  EXPECT_FALSE(QTest::qWaitFor([&] { return iconCenter().has_value(); }, 300));
  auto tray = session.startTint2();
  ASSERT_TRUE(isDocked());
  expectMenuOnClick(1);
  expectMenuOnClick(3);

  // A key equivalent in the open menu.
  hands.click();
  ASSERT_TRUE(QTest::qWaitFor([] { return popup() != nullptr; }, bound));
  EXPECT_TRUE(QTest::qWaitForWindowExposed(popup()));
  hands.keyDown(0xFFE3);  // Control
  hands.tapKey('k');
  hands.keyUp(0xFFE3);
  EXPECT_TRUE(QTest::qWaitFor([&] { return source->choices == 1; }, bound));
  EXPECT_EQ(popup(), nullptr);

  tray.reset();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !iconCenter(); }, bound));
  tray = session.startTint2();
  ASSERT_TRUE(isDocked());
  expectMenuOnClick(1);
  item->setVisible(false);
  EXPECT_FALSE(iconCenter());
}

TEST_F(TrayTest, PrefersAPanelOnTheBusAndReturnsToTheTrayWhenItGoes) {
  const auto tray = session.startTint2();
  ASSERT_TRUE(isDocked());
  auto panel = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "panel");
  const QString service = "org.kde.StatusNotifierWatcher";
  const auto serve = [&](Watcher& watcher) {
    panel.registerObject("/StatusNotifierWatcher", &watcher,
                         QDBusConnection::ExportAllProperties | QDBusConnection::ExportAllSlots);
    panel.registerService(service);
  };
  for (int start = 0; start < 2; ++start) {
    Watcher watcher;
    serve(watcher);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !watcher.items.isEmpty(); }, bound));
    EXPECT_FALSE(iconCenter());
    const QString name = watcher.items.first();
    auto all = QDBusMessage::createMethodCall(name, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "GetAll");
    all << "org.kde.StatusNotifierItem";
    QDBusPendingReply<QVariantMap> facts = panel.asyncCall(all);
    ASSERT_TRUE(QTest::qWaitFor([&] { return facts.isFinished(); }, bound));
    EXPECT_EQ(facts.value()["Title"], "Ostrel");
    EXPECT_EQ(facts.value()["Status"], "Active");
    QList<QSize> sizes;
    const auto pixmaps = facts.value()["IconPixmap"].value<QDBusArgument>();
    for (pixmaps.beginArray(); !pixmaps.atEnd();) {
      int width = 0;
      int height = 0;
      QByteArray bytes;
      pixmaps.beginStructure();
      pixmaps >> width >> height >> bytes;
      pixmaps.endStructure();
      EXPECT_EQ(bytes.size(), width * height * 4);
      EXPECT_GT(std::ranges::count_if(bytes, [](char byte) { return byte != 0; }), width);
      sizes += QSize(width, height);
    }
    pixmaps.endArray();  // or the reader of the array is never freed
    EXPECT_TRUE(sizes.contains(QSize(22, 22)));
    // A panel tells pixels, or points of its own; a key is pressed wherever the pointer is.
    const int scale = qRound(qApp->devicePixelRatio());
    const QPoint place(400, 300);
    hands.move(place.x(), place.y());
    const std::tuple<const char*, QPoint, QPoint> clicks[] = {
        {"Activate", place, place}, {"ContextMenu", place / scale, place}, {"Activate", {900, 100}, {900, 100}}};
    for (const auto& [click, told, wanted] : clicks) {
      auto message = QDBusMessage::createMethodCall(name, "/StatusNotifierItem", "org.kde.StatusNotifierItem", click);
      message << told.x() << told.y();
      panel.asyncCall(message);
      ASSERT_TRUE(QTest::qWaitFor([] { return popup() != nullptr; }, bound)) << click;
      EXPECT_TRUE(QTest::qWaitForWindowExposed(popup()));
      EXPECT_EQ(pixelsOf(*popup()).topLeft(), wanted) << click;
      popup()->close();
    }
    panel.unregisterService(service);
    panel.unregisterObject("/StatusNotifierWatcher");
    EXPECT_TRUE(isDocked());
  }
  expectMenuOnClick(1);
}

}  // namespace

#include "TrayTest.moc"
