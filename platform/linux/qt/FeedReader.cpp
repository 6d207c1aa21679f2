#include "platform/linux/qt/FeedReader.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/linux/freedesktop/Files.h"

namespace qt {
namespace {

constexpr qsizetype largestFeed = 1024 * 1024;
const auto tooLarge = QStringLiteral("The update feed is far too large to be one.");

FeedReader::Result readFile(const QUrl& address) {
  const auto content = freedesktop::readFile(address.toLocalFile().toStdString(), largestFeed);
  if (content.error == EFBIG) return {{}, tooLarge};
  if (content.error != 0) {
    return {{},
            QStringLiteral("%1: %2").arg(address.toLocalFile(), QString::fromLocal8Bit(std::strerror(content.error)))};
  }
  return {QByteArray::fromStdString(content.text), {}};
}

}  // namespace

FeedReader::FeedReader(std::chrono::milliseconds timeLimit) : timeLimit_(timeLimit) {
  deadline_.setSingleShot(true);
  connect(&deadline_, &QTimer::timeout, this, [this] {
    finish({{}, QStringLiteral("The server took too long to answer.")});
  });
}

FeedReader::~FeedReader() { cancel(); }

void FeedReader::read(const QUrl& address, std::function<void(const Result&)> done) {
  cancel();
  done_ = std::move(done);
  if (address.scheme() == QLatin1String("https")) {
    readServer(address);
    return;
  }
  const Result result = address.isLocalFile()
                            ? readFile(address)
                            : Result{{}, QStringLiteral("The address of the update feed is neither https: nor file:.")};
  QMetaObject::invokeMethod(
      this, [this, result] { finish(result); }, Qt::QueuedConnection);
}

void FeedReader::readServer(const QUrl& address) {
  network_ = std::make_unique<QNetworkAccessManager>();
  QNetworkRequest request(address);
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
  request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
  request.setMaximumRedirectsAllowed(5);
  request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Ostrel"));
  reply_ = network_->get(request);
  reply_->setReadBufferSize(64 * 1024);
  connect(reply_, &QNetworkReply::readyRead, this, &FeedReader::receive);
  connect(reply_, &QNetworkReply::finished, this, [this] {
    receive();
    if (!reply_) return;
    const bool isInsecure = reply_->error() == QNetworkReply::InsecureRedirectError;
    const QString error = isInsecure ? QStringLiteral("The server redirects to an address that is not secure.")
                          : reply_->error() != QNetworkReply::NoError ? reply_->errorString()
                                                                      : QString();
    finish({error.isEmpty() ? received_ : QByteArray(), error});
  });
  deadline_.start(timeLimit_);
}

void FeedReader::receive() {
  if (!reply_) return;
  received_ += reply_->read(largestFeed + 1 - received_.size());
  if (received_.size() > largestFeed) finish({{}, tooLarge});
}

void FeedReader::finish(const Result& result) {
  const auto done = std::exchange(done_, nullptr);
  cancel();
  if (done) done(result);
}

void FeedReader::cancel() {
  done_ = nullptr;
  deadline_.stop();
  received_.clear();
  if (reply_) {
    reply_->disconnect(this);
    reply_->abort();
  }
  reply_ = nullptr;
  // This may run in one of its signals.
  if (network_) network_.release()->deleteLater();
}

}  // namespace qt

#include "moc_FeedReader.cpp"
