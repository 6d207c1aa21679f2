#include "platform/linux/qt/Appcast.h"

#include <QUrl>
#include <QXmlStreamReader>
#include <algorithm>

namespace qt {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// The digits at the front of `rest` without leading zeros, taken off it together with the dot behind them.
std::string_view takeNumber(std::string_view& rest) {
  std::size_t end = 0;
  while (end < rest.size() && isDigit(rest[end])) ++end;
  std::string_view number = rest.substr(0, end);
  rest.remove_prefix(end);
  if (!number.empty() && rest.size() > 1 && rest[0] == '.' && isDigit(rest[1])) rest.remove_prefix(1);
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

std::string webAddress(const QString& text) {
  const QUrl url(text, QUrl::StrictMode);
  const bool isWeb = url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http");
  return isWeb && url.isValid() && !url.host().isEmpty() ? url.toString(QUrl::FullyEncoded).toStdString()
                                                         : std::string();
}

/// Names are taken whatever their namespace: feeds differ in it.
std::optional<FeedItem> parseItem(QXmlStreamReader& reader) {
  FeedItem item;
  bool isForUs = true;
  const auto take = [](std::string& field, QStringView text) {
    if (field.empty()) field = text.trimmed().toString().toStdString();
  };
  while (reader.readNextStartElement()) {
    const auto name = reader.name();
    if (name == QLatin1String("enclosure")) {
      const auto attributes = reader.attributes();
      for (const auto& attribute : attributes) {
        if (attribute.name() == QLatin1String("version")) take(item.version, attribute.value());
        if (attribute.name() == QLatin1String("shortVersionString")) take(item.displayVersion, attribute.value());
        if (attribute.name() == QLatin1String("os")) isForUs = attribute.value() == QLatin1String("linux");
      }
      reader.skipCurrentElement();
    } else if (name == QLatin1String("version")) {
      take(item.version, reader.readElementText(QXmlStreamReader::SkipChildElements));
    } else if (name == QLatin1String("shortVersionString")) {
      take(item.displayVersion, reader.readElementText(QXmlStreamReader::SkipChildElements));
    } else if (name == QLatin1String("link")) {
      if (item.link.empty()) {
        item.link = webAddress(reader.readElementText(QXmlStreamReader::SkipChildElements).trimmed());
      } else {
        reader.skipCurrentElement();
      }
    } else {
      reader.skipCurrentElement();
    }
  }
  if (!isForUs || (item.version.empty() && item.displayVersion.empty())) return std::nullopt;
  if (item.displayVersion.empty()) item.displayVersion = item.version;
  return item;
}

}  // namespace

std::optional<std::vector<FeedItem>> parseAppcast(const QByteArray& document) {
  QXmlStreamReader reader(document);
  std::vector<FeedItem> items;
  if (!reader.readNextStartElement() || reader.name() != QLatin1String("rss")) return std::nullopt;
  while (reader.readNextStartElement()) {
    if (reader.name() != QLatin1String("channel")) {
      reader.skipCurrentElement();
      continue;
    }
    while (reader.readNextStartElement()) {
      if (reader.name() != QLatin1String("item")) {
        reader.skipCurrentElement();
      } else if (auto item = parseItem(reader)) {
        items.push_back(*std::move(item));
      }
    }
  }
  // The rest, to know that the document was whole.
  while (!reader.atEnd()) reader.readNext();
  if (reader.hasError()) return std::nullopt;
  return items;
}

int compareVersions(std::string_view left, std::string_view right) {
  while ((!left.empty() && isDigit(left[0])) || (!right.empty() && isDigit(right[0]))) {
    const std::string_view leftNumber = takeNumber(left);
    const std::string_view rightNumber = takeNumber(right);
    // Of any length, so compared as texts.
    if (leftNumber.size() != rightNumber.size()) return leftNumber.size() < rightNumber.size() ? -1 : 1;
    if (const int order = leftNumber.compare(rightNumber)) return order;
  }
  if (left.empty() != right.empty()) return left.empty() ? 1 : -1;
  return left.compare(right);
}

const FeedItem* newestUpdate(const std::vector<FeedItem>& items, std::string_view runningBuild,
                             std::string_view runningVersion) {
  const FeedItem* newest = nullptr;
  for (const FeedItem& item : items) {
    const bool isNewer = item.version.empty() ? compareVersions(item.displayVersion, runningVersion) > 0
                                              : compareVersions(item.version, runningBuild) > 0;
    if (!isNewer) continue;
    if (!newest || compareVersions(item.version, newest->version) > 0 ||
        (item.version == newest->version && compareVersions(item.displayVersion, newest->displayVersion) > 0)) {
      newest = &item;
    }
  }
  return newest;
}

}  // namespace qt
