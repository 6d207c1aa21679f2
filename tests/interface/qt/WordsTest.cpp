// What the settings say on this desktop.
#include "platform/linux/qt/Words.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

#include "platform/linux/qt/ViewNative.h"
#include "tests/interface/Fixture.h"

namespace {

/// All of the application's sources, texts in several pieces put together.
std::string applicationSources() {
  std::string all;
  for (const auto& file : std::filesystem::directory_iterator(OSTREL_SOURCES)) {
    std::ifstream stream(file.path());
    all.append(std::istreambuf_iterator<char>(stream), {});
  }
  return std::regex_replace(all, std::regex("\"\\s*\n\\s*\""), "");
}

TEST(WordsTest, EveryRowIsForATextThatTheApplicationStillHas) {
  const std::string sources = applicationSources();
  for (const auto& [text, here] : qt::wordings()) {
    EXPECT_NE(sources.find('"' + std::string(text) + '"'), std::string::npos) << text;
    EXPECT_NE(text, here);
  }
}

class WordsInTheSettings : public SettingsTest {
 protected:
  /// What assistive technology reads of the tab, which is what is drawn.
  QString heard() {
    QString all;
    for (auto* const view : allOf<ns::View>(root())) all += view->native().accessibleFacts().name + QLatin1Char('\n');
    return all;
  }
};

TEST_F(WordsInTheSettings, NameNothingThatOnlyAMacHas) {
  const QStringList foreign{QStringLiteral("Mac"),    QStringLiteral("Dock"),  QStringLiteral("System Settings"),
                            QStringLiteral("yellow"), QStringLiteral("green"), QStringLiteral("red button"),
                            QStringLiteral("⌘"),      QStringLiteral("⌥"),     QStringLiteral("Applications folder")};
  for (const int loginItem : {0, 1, 2, 3}) {
    services.loginItem.statusNow = loginItem;
    for (const auto tab : ostrel::allTabs) {
      present(tab);
      const QString text = heard();
      for (const QString& word : foreign) {
        EXPECT_FALSE(text.contains(word, Qt::CaseInsensitive)) << word.toStdString() << " in " << text.toStdString();
      }
    }
  }
  present(ostrel::Tab::General);
  EXPECT_TRUE(heard().contains(QStringLiteral("Minimize button centers the window")));
  EXPECT_NE(labelSaying(document(), "Yellow button centers the window"), nullptr) << "the application's own text stays";
}

}  // namespace
