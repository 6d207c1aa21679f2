// Looks at the update feed and tells of a new version. Never downloads or installs one.
#pragma once

#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <memory>
#include <string>

#include "platform/Updater.h"
#include "platform/linux/qt/Appcast.h"
#include "platform/linux/qt/FeedReader.h"
#include "platform/linux/qt/MessageDialog.h"

namespace qt {

struct UpdaterConfiguration {
  /// Empty when there is no feed.
  QUrl feed;
  /// Between two looks that nobody asked for; zero for none.
  std::chrono::seconds interval{0};
  std::string runningBuild;
  std::string runningVersion;
  /// Remembers the last look from one start to the next.
  std::string stateFile;
  std::chrono::milliseconds timeLimit = std::chrono::seconds(30);
};

class Updater final : public spu::StandardUpdaterController {
 public:
  /// Begins with the looks that nobody asked for when `isStarted`.
  Updater(UpdaterConfiguration configuration, bool isStarted,
          std::weak_ptr<spu::StandardUserDriverDelegate> userDriverDelegate);
  ~Updater() override;
  void checkForUpdates() override;

 private:
  void scheduleNext();
  void look();
  void looked(const FeedReader::Result& result);
  void offer(const FeedItem& item);
  void tell(const MessageContent& content, std::function<void(std::size_t)> chosen);
  void tellWhenAsked(const char* symbol, const QString& message, const QString& informative);

  const UpdaterConfiguration configuration_;
  const std::weak_ptr<spu::StandardUserDriverDelegate> delegate_;
  FeedReader reader_;
  QTimer next_;
  bool isLooking_ = false;
  /// Whether the person asked for the look that goes on.
  bool isAsked_ = false;
  /// The one window that the updater shows.
  QPointer<MessageDialog> window_;
};

}  // namespace qt
