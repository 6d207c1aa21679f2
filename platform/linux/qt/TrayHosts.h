// Which place the desktop has for status items, now.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>
#include <functional>
#include <optional>

namespace qt {

enum class TrayHost {
  None,
  /// A tray that windows are embedded in.
  XEmbed,
  /// A panel that shows items which it reads over the session bus. Preferred: it draws at the screen's own scale.
  StatusNotifier,
};

/// Knows it soon after its making, and from then on every change, by events alone. Main thread only.
class TrayHosts final : public QObject, public QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  /// `changed` is called later, whenever current() may have changed, also when a panel was replaced by one of the same
  /// kind.
  explicit TrayHosts(std::function<void()> changed);
  ~TrayHosts() override;
  TrayHost current() const;

  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

 private slots:
  void ask();

 private:
  void tell();

  std::function<void()> changed_;
  bool hasNotifierHost_ = false;
  /// While the bus has not answered yet, no tray is named: a desktop with both would show the item in one and then in
  /// the other.
  bool isAnswered_ = false;
};

/// Whether what shows through the corner of an embedded window is dark; none when that cannot be seen.
std::optional<bool> isDarkBehind(std::uint32_t window);

inline constexpr const char* notifierWatcher = "org.kde.StatusNotifierWatcher";

}  // namespace qt
