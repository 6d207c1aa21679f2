// Looks at update feeds: good, damaged and hostile ones.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>
#include <algorithm>

#include "platform/linux/qt/Updater.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace {

TEST(CompareVersions, GoesByNumbersFromLeftToRight) {
  const struct {
    const char* left;
    const char* right;
    int order;
  } cases[] = {
      {"1", "1", 0},         {"1.0", "1", 0},        {"1.10", "1.9", 1},
      {"2", "1.99.99", 1},   {"1.2.3", "1.2.4", -1}, {"01.2", "1.2", 0},
      {"", "0", 0},          {"", "1", -1},          {"1.0b2", "1.0", -1},
      {"1.0b2", "1.0b1", 1}, {"1.1b1", "1.0", 1},    {"99999999999999999999", "100000000000000000000", -1},
  };
  for (const auto& [left, right, order] : cases) {
    const auto sign = [](int value) { return (value > 0) - (value < 0); };
    EXPECT_EQ(sign(qt::compareVersions(left, right)), order) << left << " against " << right;
    EXPECT_EQ(sign(qt::compareVersions(right, left)), -order) << right << " against " << left;
  }
}

QByteArray feed(const QByteArray& items) {
  return "<?xml version=\"1.0\"?><rss version=\"2.0\" xmlns:s=\"urn:x\"><channel><title>Ostrel</title>" + items +
         "</channel></rss>";
}

TEST(Appcast, FindsTheNewestItemForThisSystem) {
  const auto items =
      qt::parseAppcast(feed("<item><s:version>7</s:version><s:shortVersionString> 1.7 </s:shortVersionString>"
                            "<link>https://ostrel.example/1.7</link></item>"
                            "<item><enclosure url='https://x.example/a' s:version='9' s:shortVersionString='1.9'/>"
                            "<link>file:///etc/passwd</link></item>"
                            "<item><enclosure s:version='99' s:os='macos'/></item>"
                            "<item><title>No version</title></item><item><s:version>8</s:version></item>"));
  ASSERT_TRUE(items);
  ASSERT_EQ(items->size(), 3U);
  EXPECT_EQ(items->at(0).displayVersion, "1.7");
  EXPECT_EQ(items->at(0).link, "https://ostrel.example/1.7");
  EXPECT_EQ(items->at(1).link, "");  // nothing but a web page is ever opened
  EXPECT_EQ(items->at(2).displayVersion, "8");
  EXPECT_EQ(qt::newestUpdate(*items, "1", "0.1"), &items->at(1));
  EXPECT_EQ(qt::newestUpdate(*items, "9", "0.1"), nullptr);

  for (const QByteArray& broken :
       {QByteArray(), QByteArray("no feed"), QByteArray("<html/>"), feed("<item>"), feed({}).chopped(3),
        feed("<item><s:version>1<b/></s:version></item>") + "<rss/>", feed("<item><t:version>9</t:version></item>"),
        QByteArray("<!DOCTYPE r [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;'>"
                   "<!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;'><!ENTITY d '&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;'>]>"
                   "<rss><channel><item><version>&d;</version></item></channel></rss>")}) {
    EXPECT_FALSE(qt::parseAppcast(broken)) << broken.toStdString();
  }
}

/// Keeps what the hooks were called with.
struct Journal final : spu::StandardUserDriverDelegate {
  bool supportsGentleScheduledUpdateReminders() const override { return true; }
  void standardUserDriverWillHandleShowingUpdate(bool handles, const spu::AppcastItem& update,
                                                 const spu::UserUpdateState& state) override {
    lines += QStringLiteral("will show %1 %2 %3")
                 .arg(QString::fromStdString(update.displayVersionString))
                 .arg(handles)
                 .arg(state.userInitiated);
  }
  void standardUserDriverDidReceiveUserAttentionForUpdate(const spu::AppcastItem& update) override {
    lines += QStringLiteral("attended %1").arg(QString::fromStdString(update.displayVersionString));
  }
  QStringList lines;
};

class UpdaterTest : public testing::Test {
 protected:
  static qt::MessageDialog* window() {
    for (auto* widget : QApplication::topLevelWidgets()) {
      if (auto* const found = qobject_cast<qt::MessageDialog*>(widget); found && found->isVisible()) return found;
    }
    return nullptr;
  }
  /// What the window says; a look that goes on is waited for.
  static QString said() {
    const auto text = [] { return window() ? window()->findChildren<QLabel*>().first()->text() : QString(); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return window() && !text().startsWith("Looking"); }, 10000));
    return window() ? text() + " " + window()->findChildren<QLabel*>().last()->text() : QString();
  }

  std::shared_ptr<qt::Updater> make(const QString& address, bool isStarted = false) {
    qt::UpdaterConfiguration configuration;
    configuration.feed = QUrl(address);
    configuration.interval = interval;
    configuration.runningBuild = "5";
    configuration.runningVersion = "1.5";
    configuration.stateFile = folder / "state/last-look";
    configuration.timeLimit = timeLimit;
    return std::make_shared<qt::Updater>(configuration, isStarted, journal);
  }
  QString write(const QByteArray& content) {
    return "file://" + QString::fromStdString(folder.write("feed.xml", content.toStdString()));
  }

  const support::TemporaryFolder folder;
  const std::shared_ptr<Journal> journal = std::make_shared<Journal>();
  std::chrono::milliseconds timeLimit = std::chrono::seconds(30);
  std::chrono::seconds interval = std::chrono::hours(24);
};

const QByteArray newer = feed("<item><version>6</version><shortVersionString>1.6</shortVersionString></item>");

TEST_F(UpdaterTest, SaysWhatCameOutWhenAsked) {
  const std::pair<QString, const char*> cases[] = {
      {"", "No update feed"},
      {"ftp://ostrel.example/feed.xml", "neither https: nor file:"},
      {"http://127.0.0.1:9/feed.xml", "neither https: nor file:"},
      {"file:///nowhere/feed.xml", "No such file"},
      {write(feed("<item><version>5</version></item>")), "up to date"},
  };
  for (const auto& [address, answer] : cases) {
    const auto updater = make(address);
    updater->checkForUpdates();
    EXPECT_TRUE(said().contains(answer)) << address.toStdString();
    QTest::keyClick(window(), Qt::Key_Return);
    EXPECT_EQ(window(), nullptr);
  }
  const auto updater = make(write(QByteArray(2 << 20, ' ')));
  updater->checkForUpdates();
  EXPECT_TRUE(said().contains("too large"));
  EXPECT_TRUE(journal->lines.isEmpty());
}

TEST_F(UpdaterTest, CallsTheHooksAroundItsWindow) {
  const auto updater = make(write(newer));
  updater->checkForUpdates();
  EXPECT_TRUE(said().contains("1.6"));
  EXPECT_EQ(journal->lines, QStringList{"will show 1.6 1 1"});
  QTest::keyClick(window(), Qt::Key_Escape);
  EXPECT_EQ(journal->lines, (QStringList{"will show 1.6 1 1", "attended 1.6"}));
}

TEST_F(UpdaterTest, LooksAgainEachTimeItIsAskedAndKeepsQuietAfterwards) {
  interval = std::chrono::seconds(1);
  const QByteArray same = feed("<item><version>5</version></item>");
  const auto updater = make(write(same), true);
  updater->checkForUpdates();
  EXPECT_TRUE(said().contains("up to date"));
  write(newer);
  updater->checkForUpdates();
  EXPECT_TRUE(said().contains("1.6"));
  write(same);
  updater->checkForUpdates();
  EXPECT_TRUE(said().contains("up to date"));
  EXPECT_EQ(journal->lines, (QStringList{"will show 1.6 1 1", "attended 1.6"}));
  window()->close();
  // Nobody asked for the look that comes next.
  write(newer);
  EXPECT_TRUE(said().contains("1.6"));
  EXPECT_EQ(journal->lines.last(), "will show 1.6 1 0");
}

TEST_F(UpdaterTest, LeavesNothingOfAReplacedWindowToAssistiveTechnology) {
  const auto updater = make(write(newer));
  updater->checkForUpdates();
  EXPECT_TRUE(said().contains("1.6"));
  const auto seen = QAccessible::uniqueId(QAccessible::queryAccessibleInterface(window()));
  EXPECT_NE(QAccessible::accessibleInterface(seen), nullptr);
  const QPointer<qt::MessageDialog> replaced = window();
  updater->checkForUpdates();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !replaced; }));
  // Whatever comes to lie at the same address would be taken for it.
  EXPECT_EQ(QAccessible::accessibleInterface(seen), nullptr);
}

TEST_F(UpdaterTest, LooksByItselfWhenItIsTimeAndThenOnlyTellsOfNews) {
  const auto first = make(write(newer), true);
  EXPECT_TRUE(said().contains("1.6"));
  EXPECT_EQ(journal->lines, QStringList{"will show 1.6 1 0"});
  window()->close();
  // The next start finds that look on record.
  const auto recorded = folder.read("state/last-look");
  const auto second = make(write(newer), true);
  EXPECT_FALSE(QTest::qWaitFor([] { return window() != nullptr; }, 300));
  EXPECT_EQ(folder.read("state/last-look"), recorded);
  // A damaged feed is no news.
  folder.write("state/last-look", "1000\n");
  const auto third = make(write("<rss>"), true);
  EXPECT_TRUE(QTest::qWaitFor([&] { return folder.read("state/last-look") != "1000\n"; }));
  EXPECT_FALSE(QTest::qWaitFor([] { return window() != nullptr; }, 300));
}

/// A server that speaks TLS with a certificate that this process trusts, and then anything.
class UpdaterServerTest : public UpdaterTest {
 protected:
  void SetUp() override {
    const std::string certificate = folder / "certificate";
    const std::string key = folder / "key";
    support::ChildProcess maker({"openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
                                 "-nodes", "-subj", "/CN=localhost", "-addext", "subjectAltName=DNS:localhost",
                                 "-keyout", key, "-out", certificate});
    ASSERT_EQ(maker.waitForExit(std::chrono::seconds(20)), 0);
    const auto certificates = QSslCertificate::fromPath(QString::fromStdString(certificate));
    ASSERT_EQ(certificates.size(), 1);
    auto trusting = QSslConfiguration::defaultConfiguration();
    trusting.setCaCertificates(certificates);
    QSslConfiguration::setDefaultConfiguration(trusting);
    QFile keyFile(QString::fromStdString(key));
    ASSERT_TRUE(keyFile.open(QIODevice::ReadOnly));
    auto serving = QSslConfiguration::defaultConfiguration();
    serving.setLocalCertificate(certificates.first());
    serving.setPrivateKey(QSslKey(keyFile.readAll(), QSsl::Ec));
    server.setSslConfiguration(serving);
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    QObject::connect(&server, &QTcpServer::pendingConnectionAvailable, &server, [this] {
      auto* const client = server.nextPendingConnection();
      ++connections;
      client->write(answer);
      if (!isEndless) return;
      auto* const pump = new QTimer(client);
      QObject::connect(pump, &QTimer::timeout, client, [this, client] {
        auto* const secure = static_cast<QSslSocket*>(client);
        if (secure->encryptedBytesToWrite() > 0) return;
        sent += std::max<qint64>(client->write(QByteArray(64 * 1024, 'x')), 0);
      });
      pump->start(0);
    });
  }
  QString address() const { return QStringLiteral("https://localhost:%1/feed.xml").arg(server.serverPort()); }
  QString saidAbout(const QByteArray& response) {
    answer = response;
    const auto updater = make(address());
    updater->checkForUpdates();
    const QString text = said();
    if (window()) window()->close();
    return text;
  }

  QSslServer server;
  QByteArray answer;
  bool isEndless = false;
  qint64 sent = 0;
  int connections = 0;
};

TEST_F(UpdaterServerTest, ReadsAFeedAndSaysWhyItCannot) {
  const auto whole = [](const QByteArray& status, const QByteArray& body) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
  };
  EXPECT_TRUE(saidAbout(whole("200 OK", newer)).contains("1.6"));
  EXPECT_TRUE(saidAbout(whole("404 Not Found", {})).contains("Not Found"));
  EXPECT_TRUE(saidAbout(whole("200 OK", "<rss>")).contains("damaged"));
  const int before = connections;
  const auto port = QByteArray::number(server.serverPort());
  EXPECT_TRUE(saidAbout("HTTP/1.1 302 Found\r\nLocation: http://localhost:" + port + "/\r\nContent-Length: 0\r\n\r\n")
                  .contains("not secure"));
  EXPECT_EQ(connections, before + 1);
  // A certificate that nobody vouches for.
  auto wary = QSslConfiguration::defaultConfiguration();
  wary.setCaCertificates({});
  QSslConfiguration::setDefaultConfiguration(wary);
  EXPECT_TRUE(saidAbout(whole("200 OK", newer)).contains("couldn’t"));
}

TEST_F(UpdaterServerTest, StopsReadingAnEndlessFeed) {
  isEndless = true;
  EXPECT_TRUE(saidAbout("HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n\r\n").contains("too large"));
  EXPECT_LT(sent, 16 << 20);  // what the sockets on both sides hold back
}

TEST_F(UpdaterServerTest, GivesUpOnAServerThatIsSilentOrSlow) {
  timeLimit = std::chrono::milliseconds(200);
  EXPECT_TRUE(saidAbout({}).contains("too long"));
  EXPECT_TRUE(saidAbout("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n<rss").contains("too long"));
}

TEST_F(UpdaterServerTest, CancelEndsTheLook) {
  const auto updater = make(address());
  updater->checkForUpdates();
  ASSERT_TRUE(QTest::qWaitFor([&] { return connections == 1; }, 10000));
  window()->findChild<QPushButton*>()->click();
  EXPECT_EQ(window(), nullptr);
  EXPECT_FALSE(QTest::qWaitFor([] { return window() != nullptr; }, 300));
}

}  // namespace
