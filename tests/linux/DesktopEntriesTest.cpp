#include "platform/linux/freedesktop/DesktopEntries.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/linux/freedesktop/ApplicationIdentity.h"
#include "platform/linux/freedesktop/Files.h"
#include "tests/support/TemporaryFolder.h"

namespace freedesktop {
namespace {

std::string entryText(const std::string& name, const std::string& more = {}) {
  return "[Desktop Entry]\nType=Application\nName=" + name + "\n" + more;
}

TEST(DesktopEntryTest, ReadsWhatTheFormatAllows) {
  const auto entry = parseDesktopEntry(
      "# comment\n\n[Other]\nName=No\n[Desktop Entry]\r\nName[de]=Rechner\r\nName = Calc\\sone\nType=Application\n"
      "Exec=env A=1 \"/opt/my \\\\\"app\\\\\"/run\" --x %U\nIcon=calc\nStartupWMClass=Calc\nNoDisplay=true\n"
      "[Desktop Action new]\nName=Other\nExec=other\n",
      "en_GB.UTF-8");
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->name, "Calc one");
  EXPECT_EQ(entry->executable, "/opt/my \"app\"/run");
  EXPECT_EQ(entry->icon, "calc");
  EXPECT_EQ(entry->startupWMClass, "Calc");
  EXPECT_TRUE(entry->hidden);
}

TEST(DesktopEntryTest, TakesTheNameThatSuitsTheLocaleBest) {
  const std::string text = entryText("Base", "Name[sr]=sr\nName[sr@latin]=sr@latin\nName[sr_RS]=sr_RS\nName[de]=de\n");
  const std::pair<const char*, const char*> cases[] = {{"sr_RS.UTF-8@latin", "sr_RS"},
                                                       {"sr_ME@latin", "sr@latin"},
                                                       {"sr_ME", "sr"},
                                                       {"de_AT.UTF-8", "de"},
                                                       {"fr_FR", "Base"},
                                                       {"C", "Base"},
                                                       {"", "Base"}};
  for (const auto& [locale, name] : cases) EXPECT_EQ(parseDesktopEntry(text, locale)->name, name) << locale;
}

TEST(DesktopEntryTest, RefusesWhatIsNoApplication) {
  for (const std::string& text : {std::string(), std::string("[Desktop Entry]\nType=Link\nName=x\n"), entryText(""),
                                  entryText("x", "Hidden=true\n"), std::string("Type=Application\nName=x\n"),
                                  std::string("[Desktop Entry\nType=Application\nName=x"), std::string(4096, '=')}) {
    EXPECT_FALSE(parseDesktopEntry(text, "de")) << text.substr(0, 40);
  }
}

class InstalledApplicationsTest : public testing::Test {
 protected:
  /// A process as the kernel describes it, running `program`.
  void addProcess(pid_t pid, const std::string& program, const std::string& commandLine = {}) {
    const std::string process = "proc/" + std::to_string(pid);
    folder.write(process + "/cmdline", commandLine);
    std::filesystem::create_symlink(program, folder / (process + "/exe"));
  }
  std::string addProgram(const std::string& name) {
    const std::string path = folder.write("bin/" + name, "");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }
  void install(const std::string& id, const std::string& more = {}) {
    folder.write("user/" + id + ".desktop", entryText(id, more));
  }
  std::string identify(const WindowOwner& owner) { return identity.describe(owner).bundleIdentifier.value_or("none"); }

  const support::TemporaryFolder folder;
  DesktopEntries entries{{folder / "user", folder / "system"}, "C"};
  ApplicationIdentity identity{entries, folder / "proc"};
};

TEST_F(InstalledApplicationsTest, TheFirstFolderHidesTheLaterOnes) {
  folder.write("system/a.desktop", entryText("System A"));
  folder.write("system/b.desktop", entryText("System B"));
  folder.write("system/kde/c.desktop", entryText("C"));
  folder.write("user/a.desktop", entryText("User A"));
  folder.write("user/b.desktop", entryText("B", "Hidden=true\n"));
  ASSERT_NE(entries.entryWithId("a"), nullptr);
  EXPECT_EQ(entries.entryWithId("a")->name, "User A");
  EXPECT_EQ(entries.entryWithId("b"), nullptr);
  ASSERT_NE(entries.entryWithId("kde-c"), nullptr);
  EXPECT_EQ(entries.idForPath(entries.entryWithId("kde-c")->path), "kde-c");
  EXPECT_EQ(entries.idForPath("/elsewhere/a.desktop"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, SeesInstallationsAndRemovals) {
  EXPECT_TRUE(entries.entries().empty());  // not even the folders are there
  install("a");
  EXPECT_NE(entries.entryWithId("a"), nullptr);
  install("b");
  EXPECT_NE(entries.entryWithId("b"), nullptr);
  std::filesystem::remove(folder / "user/a.desktop");
  EXPECT_EQ(entries.entryWithId("a"), nullptr);
}

TEST_F(InstalledApplicationsTest, ALoopOfLinksAmongTheFoldersEnds) {
  install("a");
  std::filesystem::create_directory_symlink(folder / "user", folder / "user/loop");
  EXPECT_EQ(entries.entries().size(), 1U);
}

TEST_F(InstalledApplicationsTest, IdentifiesByTheSurestSignFirst) {
  for (const char* id : {"org.sandboxed", "org.gtk", "by-class", "Klass"}) install(id);
  folder.write("user/by-class.desktop", entryText("x", "StartupWMClass=Klass\n"));
  folder.write("user/by-program.desktop", entryText("x", "Exec=" + addProgram("program") + " %U\n"));
  addProcess(1, folder / "bin/program");
  folder.write("proc/1/root/.flatpak-info", "[Application]\nname=org.sandboxed\nruntime=x\n");
  addProcess(2, folder / "bin/program");
  folder.write("proc/3/attr/current", "snap.name.app (enforce)\n");

  EXPECT_EQ(identify({1, "org.gtk", "i", "Klass"}), "org.sandboxed");
  EXPECT_EQ(identify({2, "org.gtk", "i", "Klass"}), "org.gtk");
  EXPECT_EQ(identify({2, "org.unknown", "i", "Klass"}), "by-class");
  EXPECT_EQ(identify({2, "", "klass", "Other"}), "Klass");
  EXPECT_EQ(identify({2, "", "i", "Other"}), "by-program");
  EXPECT_EQ(identify({3, "", "i", "Klass"}), "by-class");  // the snap has no entry: the window may still tell
  EXPECT_EQ(identify({3, "", "i", "Other"}), "name_app");
  EXPECT_EQ(identify({99, "", "i", "Other"}), "none");
  EXPECT_EQ(identity.describe({99, "", "i", "Other"}).name, "Other");
}

TEST_F(InstalledApplicationsTest, AnInterpreterIsNotTheApplication) {
  folder.write("user/tool.desktop", entryText("x", "Exec=" + addProgram("tool") + "\n"));
  folder.write("user/shell.desktop", entryText("x", "Exec=" + addProgram("python3.11") + " -m x\n"));
  addProcess(1, folder / "bin/python3.11", std::string("python3\0-s\0", 11) + (folder / "bin/tool") + '\0');
  addProcess(2, folder / "bin/python3.11", std::string("python3\0relative.py\0", 20));
  EXPECT_EQ(identify({1, "", "", ""}), "tool");
  EXPECT_EQ(identify({2, "", "", ""}), "none");
}

TEST_F(InstalledApplicationsTest, AnAnswerHoldsUntilTheProcessEndsOrApplicationsChange) {
  install("one", "StartupWMClass=Klass\n");
  EXPECT_EQ(identify({1, "", "", "Klass"}), "one");
  EXPECT_EQ(identify({2, "", "", "New"}), "none");
  install("new");
  EXPECT_EQ(identify({2, "", "", "New"}), "new");
  folder.write("proc/1/root/.flatpak-info", "[Application]\nname=org.other\n");  // the number's next owner
  EXPECT_EQ(identify({1, "", "", "Klass"}), "one");
  identity.forget(1);
  EXPECT_EQ(identify({1, "", "", "Klass"}), "one");
  install("org.other");
  EXPECT_EQ(identify({1, "", "", "Klass"}), "org.other");
}

TEST(ExecutableTest, IsWhereItWasAfterAnUpdateInPlace) {
  const support::TemporaryFolder folder;
  std::filesystem::create_symlink("/opt/thing (deleted)", folder / "exe");
  EXPECT_EQ(executableOf(folder.path()), "/opt/thing");
  std::filesystem::remove(folder / "exe");
  std::filesystem::create_symlink(folder.write("odd (deleted)", ""), folder / "exe");
  EXPECT_EQ(executableOf(folder.path()), folder / "odd (deleted)") << "it is called so";
  EXPECT_EQ(executableOf(folder / "nobody"), "");
}

}  // namespace
}  // namespace freedesktop
