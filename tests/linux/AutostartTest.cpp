#include "platform/linux/freedesktop/Autostart.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/linux/freedesktop/DesktopEntries.h"
#include "tests/support/TemporaryFolder.h"

namespace freedesktop {
namespace {

class AutostartTest : public testing::Test {
 protected:
  AutostartTest() {
    folder.write("bin/the \"100%\" $app\\", "");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  }
  void switchOff(const std::string& line) {
    folder.write("user/" OSTREL_APPLICATION_ID ".desktop",
                 folder.read("user/" OSTREL_APPLICATION_ID ".desktop") + line);
  }

  const support::TemporaryFolder folder;
  const std::string program = folder / "bin/the \"100%\" $app\\";
  Autostart service{{folder / "user", folder / "system"}, program};
};

TEST_F(AutostartTest, RegistersAProgramWhateverItsPath) {
  EXPECT_EQ(service.status(), 0);
  service.registerItem();
  EXPECT_EQ(service.status(), 1);
  EXPECT_EQ(parseDesktopEntry(folder.read("user/" OSTREL_APPLICATION_ID ".desktop"), "")->executable, program);
  service.unregisterItem();
  EXPECT_EQ(service.status(), 0);
  service.unregisterItem();
  EXPECT_EQ(service.status(), 0);
}

TEST_F(AutostartTest, AnEntryThatWasSwitchedOffWaitsForApproval) {
  for (const char* line : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
    service.registerItem();
    switchOff(line);
    EXPECT_EQ(service.status(), 2) << line;
    service.registerItem();
    EXPECT_EQ(service.status(), 1) << line;
  }
}

TEST_F(AutostartTest, AMovedProgramIsNotFound) {
  service.registerItem();
  std::filesystem::remove(program);
  EXPECT_EQ(service.status(), 3);
  std::filesystem::remove(folder / "user/" OSTREL_APPLICATION_ID ".desktop");
  EXPECT_EQ(service.status(), 3);
  EXPECT_THROW(service.registerItem(), sm::Error);
  EXPECT_FALSE(std::filesystem::exists(folder / "user/" OSTREL_APPLICATION_ID ".desktop"));
}

TEST_F(AutostartTest, AnEntryOfTheSystemIsHiddenNotRemoved) {
  service.registerItem();
  std::filesystem::create_directory(folder / "system");
  std::filesystem::rename(folder / "user/" OSTREL_APPLICATION_ID ".desktop",
                          folder / "system/" OSTREL_APPLICATION_ID ".desktop");
  EXPECT_EQ(service.status(), 1);
  service.unregisterItem();
  EXPECT_EQ(service.status(), 0) << "the person's own choice";
  EXPECT_EQ(desktopEntryValue(folder.read("user/" OSTREL_APPLICATION_ID ".desktop"), "Hidden"), "true");
  EXPECT_TRUE(std::filesystem::exists(folder / "system/" OSTREL_APPLICATION_ID ".desktop"));
  service.registerItem();
  EXPECT_EQ(service.status(), 1);
}

TEST_F(AutostartTest, AFolderThatRefusesIsReportedInTheSystemsWords) {
  folder.write("user", "a file, not a folder");
  try {
    service.registerItem();
    FAIL() << "no error";
  } catch (const sm::Error& error) {
    EXPECT_NE(std::string(error.what()).find("Not a directory"), std::string::npos) << error.what();
  }
  EXPECT_EQ(service.status(), 0);
}

}  // namespace
}  // namespace freedesktop
