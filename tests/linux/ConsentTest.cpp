#include "platform/linux/freedesktop/Consent.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/TemporaryFolder.h"

namespace freedesktop {
namespace {

TEST(ConsentTest, FollowsWhatAnotherProcessRecords) {
  const support::TemporaryFolder folder;
  const std::string path = folder / "data/ostrel/accessibility-consent";
  Consent running(path);
  Consent command(path);
  EXPECT_FALSE(running.isTrusted());
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(command.set(true), std::nullopt);
    EXPECT_TRUE(running.isTrusted());
    EXPECT_EQ(command.set(false), std::nullopt);
    EXPECT_FALSE(running.isTrusted());
  }
  EXPECT_EQ(command.set(false), std::nullopt);  // nothing to withdraw is no failure
}

TEST(ConsentTest, OnlyTheRecordOfThisUserGrants) {
  const support::TemporaryFolder folder;
  Consent consent(folder / "consent");
  for (const char* text : {"", "grant", "granted", "no\ngranted\n", "GRANTED\n"}) {
    folder.write("consent", text);
    EXPECT_FALSE(consent.isTrusted()) << text;
  }
  folder.write("consent", "granted\n");
  EXPECT_TRUE(consent.isTrusted());
  // Only a privileged test can give its file to someone else.
  const bool isAnothers = chown((folder / "consent").c_str(), 65534, 65534) == 0;
  EXPECT_EQ(consent.isTrusted(), !isAnothers);
  std::filesystem::remove(folder / "consent");
  std::filesystem::create_directory(folder / "consent");
  EXPECT_FALSE(consent.isTrusted());
}

TEST(ConsentTest, APersonIsAskedUntilThereIsAnAnswer) {
  const support::TemporaryFolder folder;
  Consent consent(folder / "consent");
  int questions = 0;
  consent.setPrompt([&] { ++questions; });
  consent.promptOnce();
  consent.promptOnce();
  EXPECT_EQ(questions, 2) << "the first was left open";
  for (const bool granted : {false, true, false}) {
    EXPECT_EQ(consent.set(granted), std::nullopt);
    consent.promptOnce();
    EXPECT_EQ(questions, 2);
  }
  consent.prompt();
  EXPECT_EQ(questions, 3) << "when the person wants it";
}

TEST(ConsentTest, ARecordThatCannotBeWrittenIsReportedInTheSystemsWords) {
  const support::TemporaryFolder folder;
  folder.write("file", "");
  Consent consent(folder / "file/consent");
  const auto problem = consent.set(true);
  ASSERT_TRUE(problem);
  EXPECT_NE(problem->find("Not a directory"), std::string::npos) << *problem;
  EXPECT_FALSE(consent.isTrusted());
}

}  // namespace
}  // namespace freedesktop
