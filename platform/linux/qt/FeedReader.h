// Reads the update feed, from a file or from a server that may be anything.
#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <functional>
#include <memory>

class QNetworkReply;

namespace qt {

/// Takes part in one exchange at a time. Of a server at most a megabyte is read and half a minute waited for; a
/// redirection away from https is refused. Main thread only.
class FeedReader final : public QObject {
  Q_OBJECT

 public:
  struct Result {
    QByteArray document;
    /// For the person; empty on success.
    QString error;
  };
  /// `timeLimit` is for the whole exchange.
  explicit FeedReader(std::chrono::milliseconds timeLimit = std::chrono::seconds(30));
  ~FeedReader() override;

  /// Calls `done` once, later. Addresses other than file: and https: are refused.
  void read(const QUrl& address, std::function<void(const Result&)> done);
  /// `done` is not called any more.
  void cancel();

 private:
  void readServer(const QUrl& address);
  void receive();
  void finish(const Result& result);

  const std::chrono::milliseconds timeLimit_;
  std::unique_ptr<QNetworkAccessManager> network_;
  QPointer<QNetworkReply> reply_;
  QTimer deadline_;
  QByteArray received_;
  std::function<void(const Result&)> done_;
};

}  // namespace qt
