#include "platform/linux/qt/Updater.h"

#include <QDateTime>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/Bundle.h"
#include "platform/Workspace.h"
#include "platform/linux/freedesktop/BaseFolders.h"
#include "platform/linux/freedesktop/Files.h"

namespace qt {
namespace {

/// Timers count milliseconds in an int.
constexpr std::chrono::seconds longestWait = std::chrono::hours(24 * 20);

/// Seconds since 1970; 0 when no look is on record.
qint64 lastLook(const std::string& stateFile) {
  return std::strtoll(freedesktop::readFile(stateFile, 64).text.c_str(), nullptr, 10);
}

}  // namespace

Updater::Updater(UpdaterConfiguration configuration, bool isStarted,
                 std::weak_ptr<spu::StandardUserDriverDelegate> userDriverDelegate)
    : configuration_(std::move(configuration)),
      delegate_(std::move(userDriverDelegate)),
      reader_(configuration_.timeLimit) {
  next_.setSingleShot(true);
  next_.setTimerType(Qt::VeryCoarseTimer);
  QObject::connect(&next_, &QTimer::timeout, &next_, [this] {
    const qint64 due = lastLook(configuration_.stateFile) + configuration_.interval.count();
    // A look while the window of the last one is still open would only repeat it.
    if (QDateTime::currentSecsSinceEpoch() >= due && !isLooking_ && !window_) look();
    scheduleNext();
  });
  if (isStarted) scheduleNext();
}

Updater::~Updater() { delete window_; }

void Updater::scheduleNext() {
  if (configuration_.feed.isEmpty() || configuration_.interval.count() <= 0) return;
  const qint64 now = QDateTime::currentSecsSinceEpoch();
  // A last look in the future is a clock that was put right.
  const qint64 last = std::min<qint64>(lastLook(configuration_.stateFile), now);
  const std::chrono::seconds wait(last + configuration_.interval.count() - now);
  next_.start(std::clamp<std::chrono::milliseconds>(wait, std::chrono::seconds(0), longestWait));
}

void Updater::checkForUpdates() {
  if (window_ && isLooking_) {
    window_->raise();
    window_->activateWindow();
    return;
  }
  // What it tells may be old.
  if (window_) window_->close();
  isAsked_ = true;
  if (configuration_.feed.isEmpty()) {
    tellWhenAsked(
        "info.circle.fill", QStringLiteral("No update feed is configured."),
        QStringLiteral("This build of Ostrel (%1) has no place to look for new versions. They come from where "
                       "you got this one.")
            .arg(QString::fromStdString(configuration_.runningVersion)));
    return;
  }
  MessageContent content;
  content.symbol = "arrow.triangle.2.circlepath";
  content.symbolColor = ns::Color::systemBlueColor();
  content.message = QStringLiteral("Looking for updates…");
  content.buttons = {QStringLiteral("Cancel")};
  content.hasDefaultButton = false;
  tell(content, [this](std::size_t) {
    reader_.cancel();
    isLooking_ = false;
    isAsked_ = false;
  });
  if (!isLooking_) look();
}

void Updater::look() {
  isLooking_ = true;
  // Before the answer: a feed that cannot be read is not to be asked again and again.
  const int error =
      freedesktop::replaceFile(configuration_.stateFile, std::to_string(QDateTime::currentSecsSinceEpoch()) + '\n');
  if (error != 0) freedesktop::logWarning(configuration_.stateFile + ": " + std::strerror(error));
  reader_.read(configuration_.feed, [this](const FeedReader::Result& result) { looked(result); });
}

void Updater::looked(const FeedReader::Result& result) {
  isLooking_ = false;
  if (!result.error.isEmpty()) {
    tellWhenAsked("exclamationmark.triangle.fill", QStringLiteral("Ostrel couldn’t look for updates."), result.error);
  } else if (const auto items = parseAppcast(result.document); !items) {
    tellWhenAsked("exclamationmark.triangle.fill", QStringLiteral("Ostrel couldn’t look for updates."),
                  QStringLiteral("The update feed is damaged."));
  } else if (const auto* item = newestUpdate(*items, configuration_.runningBuild, configuration_.runningVersion)) {
    offer(*item);
  } else {
    tellWhenAsked(
        "info.circle.fill", QStringLiteral("Ostrel is up to date."),
        QStringLiteral("Version %1 is the newest one.").arg(QString::fromStdString(configuration_.runningVersion)));
  }
  isAsked_ = false;
}

void Updater::offer(const FeedItem& item) {
  const spu::AppcastItem update{item.displayVersion};
  if (const auto delegate = delegate_.lock()) {
    delegate->standardUserDriverWillHandleShowingUpdate(true, update, {isAsked_});
  }
  MessageContent content;
  content.symbol = "arrow.triangle.2.circlepath";
  content.symbolColor = ns::Color::systemBlueColor();
  content.message = QStringLiteral("A new version of Ostrel is available.");
  content.informative =
      QStringLiteral("Ostrel %1 is out; you have %2.")
          .arg(QString::fromStdString(item.displayVersion), QString::fromStdString(configuration_.runningVersion));
  if (!item.link.empty()) content.buttons += QStringLiteral("Learn More…");
  content.buttons += item.link.empty() ? QStringLiteral("OK") : QStringLiteral("Later");
  // A window that comes by itself takes no key that was meant for another one.
  content.hasDefaultButton = isAsked_;
  tell(content, [this, update, link = item.link](std::size_t button) {
    if (const auto delegate = delegate_.lock()) delegate->standardUserDriverDidReceiveUserAttentionForUpdate(update);
    if (button == 0 && !link.empty()) ns::Workspace::sharedWorkspace()->openURL(link);
  });
}

void Updater::tell(const MessageContent& content, std::function<void(std::size_t)> chosen) {
  if (window_) {
    // What it would do on its end is settled. No other signal: the toolkit's accessibility listens to its destruction.
    QObject::disconnect(window_, &QDialog::finished, nullptr, nullptr);
    window_->close();
  }
  window_ = new MessageDialog(content);
  window_->showAndTell([this, chosen = std::move(chosen)](std::size_t button) {
    window_ = nullptr;
    chosen(button);
  });
}

void Updater::tellWhenAsked(const char* symbol, const QString& message, const QString& informative) {
  if (!isAsked_) return;
  isAsked_ = false;
  MessageContent content;
  content.symbol = symbol;
  content.symbolColor =
      std::strcmp(symbol, "info.circle.fill") == 0 ? ns::Color::systemBlueColor() : ns::Color::systemOrangeColor();
  content.message = message;
  content.informative = informative;
  content.buttons = {QStringLiteral("OK")};
  tell(content, [](std::size_t) {});
}

}  // namespace qt

std::shared_ptr<spu::StandardUpdaterController> spu::StandardUpdaterController::make(
    bool startingUpdater, std::weak_ptr<StandardUserDriverDelegate> userDriverDelegate) {
  const auto bundle = ns::Bundle::mainBundle();
  const auto text = [&](const char* key) {
    const auto value = bundle->objectForInfoDictionaryKey(key);
    const auto* string = value ? value->as<std::string>() : nullptr;
    return string ? *string : std::string();
  };
  const auto interval = bundle->objectForInfoDictionaryKey("SUScheduledCheckInterval");
  const auto* seconds = interval ? interval->as<std::int64_t>() : nullptr;
  qt::UpdaterConfiguration configuration;
  configuration.feed = QUrl(QString::fromStdString(text("SUFeedURL")), QUrl::StrictMode);
  configuration.interval = std::chrono::seconds(seconds ? *seconds : 0);
  configuration.runningBuild = text("CFBundleVersion");
  configuration.runningVersion = text("CFBundleShortVersionString");
  configuration.stateFile = freedesktop::dataHome() + "/ostrel/last-update-look";
  return std::make_shared<qt::Updater>(std::move(configuration), startingUpdater, std::move(userDriverDelegate));
}
