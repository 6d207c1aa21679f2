#include "platform/linux/freedesktop/JSONUserDefaults.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace freedesktop {
namespace {

using ns::PropertyList;

class JSONUserDefaultsTest : public testing::Test {
 protected:
  JSONUserDefaults open(ReplaceFile replace = replaceFile) {
    return {folder / "ostrel/preferences.json", {folder / "first.json", folder / "second.json"}, std::move(replace)};
  }
  std::string write(const std::string& text) { return folder.write("ostrel/preferences.json", text); }
  std::string stored() { return folder.read("ostrel/preferences.json"); }
  /// The content of the one file that was kept aside; empty when there is none or several.
  std::string keptAside() {
    std::string name;
    int count = 0;
    for (const auto& item : std::filesystem::directory_iterator(folder / "ostrel")) {
      if (item.path().filename() == "preferences.json") continue;
      ++count;
      name = item.path().filename();
    }
    return count == 1 && name.starts_with("preferences.json.damaged-2") ? folder.read("ostrel/" + name) : "";
  }

  const support::TemporaryFolder folder;
  int argumentCount = 1;
  char program[5] = "test";
  char* arguments[2] = {program, nullptr};
  QCoreApplication application{argumentCount, arguments};
};

/// A disk that does as it is told: keeps a journal of writes, holds them up and fails them.
struct Disk {
  int write(const std::string& path, std::string_view content) {
    contents.push_back(nlohmann::json::parse(content));
    ++writes;
    mayGoOn.wait(false);
    return error != 0 ? error.load() : replaceFile(path, content);
  }
  ReplaceFile replace() {
    return [this](const std::string& path, std::string_view content) { return write(path, content); };
  }
  void stall() { mayGoOn = false; }
  void goOn() {
    mayGoOn = true;
    mayGoOn.notify_all();
  }

  /// Of the writes so far; to be looked at after a flush.
  std::vector<nlohmann::json> contents;
  std::atomic<int> writes = 0;
  std::atomic<int> error = 0;
  std::atomic<bool> mayGoOn = true;
};

TEST_F(JSONUserDefaultsTest, KeepsValuesOfEveryKindAcrossProcesses) {
  const PropertyList apps{ns::Array{
      {ns::Dictionary{{"bundleID", {std::string("org.a")}}, {"name", {std::string("\"Ä\"\n")}}}}, {ns::Array{}}}};
  auto writer = open();
  writer.setObject(apps, "behavior.excludedApps");
  writer.setDouble(12.5, "margins.left");
  writer.setBool(false, "behavior.greenButtonEnabled");
  writer.setObject({std::numeric_limits<std::int64_t>::min()}, "number");
  writer.flush();
  const auto reader = open();
  EXPECT_EQ(reader.objectForKey("behavior.excludedApps"), apps);
  EXPECT_EQ(reader.objectForKey("margins.left"), PropertyList{12.5});
  EXPECT_EQ(reader.objectForKey("behavior.greenButtonEnabled"), PropertyList{false});
  EXPECT_EQ(reader.objectForKey("number"), PropertyList{std::numeric_limits<std::int64_t>::min()});
  struct stat status {};
  ASSERT_EQ(stat((folder / "ostrel/preferences.json").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(JSONUserDefaultsTest, UnknownKeysAndTheirOrderSurviveAChange) {
  write(
      R"({"zebra": {"y": 1, "a": [null, {"deep": 1.5}]}, "margins.top": 3, "ant": null, "big": 18446744073709551615})");
  open().setDouble(4, "margins.top");
  EXPECT_EQ(nlohmann::ordered_json::parse(stored()).dump(),
            R"({"zebra":{"y":1,"a":[null,{"deep":1.5}]},"margins.top":4.0,"ant":null,"big":18446744073709551615})");
}

TEST_F(JSONUserDefaultsTest, TheUsersFileComesBeforeTheSystems) {
  folder.write("second.json", R"({"a": 2, "b": 2, "c": 2, "d": 2})");
  folder.write("first.json", R"({"a": 1, "b": 1, "d": 1})");
  write(R"({"a": 0, "d": null})");
  auto defaults = open();
  EXPECT_EQ(defaults.doubleForKey("a"), 0);
  EXPECT_EQ(defaults.doubleForKey("b"), 1);
  EXPECT_EQ(defaults.doubleForKey("c"), 2);
  EXPECT_EQ(defaults.doubleForKey("d"), 1);  // null is no value
  defaults.setDouble(7, "c");
  EXPECT_EQ(defaults.doubleForKey("c"), 7);
  EXPECT_EQ(folder.read("second.json"), R"({"a": 2, "b": 2, "c": 2, "d": 2})");
}

TEST_F(JSONUserDefaultsTest, SeesChangesOfOtherProgramsAtTheNextRead) {
  const auto defaults = open();
  EXPECT_EQ(defaults.objectForKey("a"), std::nullopt);
  // In place, with the same length and, in one tick of the file system's clock, with the same times.
  for (int i = 0; i < 9; ++i) {
    std::string text = "{\"a\": 0}";
    text[text.find('0')] = static_cast<char>('0' + i);
    write(text);
    EXPECT_EQ(defaults.doubleForKey("a"), i);
  }
  std::filesystem::remove(folder / "ostrel/preferences.json");
  EXPECT_EQ(defaults.objectForKey("a"), std::nullopt);
}

TEST_F(JSONUserDefaultsTest, ADamagedFileIsNeverOverwritten) {
  const std::string deep(100'000, '[');
  std::string wide = "{\"a\": {";
  for (int i = 0; i < 100'000; ++i) wide.append("\"").append(std::to_string(i)).append("\": 0, ");
  wide += "\"last\": 0}}";
  const std::string cases[] = {R"({"a": 1,})",
                               "",
                               "[1]",
                               "null",
                               R"({"a": 1e999})",
                               "{\"a\": \"\xFF\"}",
                               R"({"a": )" + deep,
                               "{\"a\": " + deep + std::string(deep.size(), ']') + "}",
                               wide};
  for (const std::string& damaged : cases) {
    SCOPED_TRACE(damaged.substr(0, 20));
    std::filesystem::remove_all(folder / "ostrel");
    write(damaged);
    folder.write("first.json", R"({"a": 5})");
    auto defaults = open();
    EXPECT_EQ(defaults.doubleForKey("a"), 5);
    EXPECT_EQ(stored(), damaged);  // its owner may still mend it
    defaults.setDouble(6, "a");
    defaults.flush();
    EXPECT_EQ(open().doubleForKey("a"), 6);
    EXPECT_EQ(keptAside(), damaged);
  }
}

TEST_F(JSONUserDefaultsTest, AMendedFileCountsAgain) {
  write(R"({"a": 1,})");
  const auto defaults = open();
  EXPECT_EQ(defaults.objectForKey("a"), std::nullopt);
  write(R"({"a": 1})");
  EXPECT_EQ(defaults.doubleForKey("a"), 1);
}

TEST_F(JSONUserDefaultsTest, TheLastOfDuplicateKeysCounts) {
  write(R"({"a": 1, "b": 2, "a": 3})");
  EXPECT_EQ(open().doubleForKey("a"), 3);
}

TEST_F(JSONUserDefaultsTest, AFullDiskLosesNothingThatWasStored) {
  const std::string before = R"({"a": 1})";
  for (const std::string& content : {before, std::string("{damaged")}) {
    write(content);
    auto defaults = open();
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit none{0, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
    const auto value = defaults.objectForKey("a");
    defaults.setDouble(2, "a");
    defaults.flush();
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(stored(), content);
    EXPECT_EQ(defaults.objectForKey("a"), value) << "memory is as the file";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "ostrel"), {}),
              1);  // nothing left lying about
  }
}

TEST_F(JSONUserDefaultsTest, AFileThatCannotBeReadIsLeftAlone) {
  std::filesystem::create_directories(folder / "ostrel/preferences.json/inner");
  auto defaults = open();
  defaults.setDouble(2, "a");
  defaults.flush();
  EXPECT_EQ(defaults.objectForKey("a"), std::nullopt);
  EXPECT_TRUE(std::filesystem::is_directory(folder / "ostrel/preferences.json/inner"));

  std::filesystem::remove_all(folder / "ostrel/preferences.json");
  ASSERT_EQ(mkfifo((folder / "ostrel/preferences.json").c_str(), 0600), 0);  // nobody writes to it: reading would wait
  defaults.setDouble(2, "a");
  defaults.flush();
  EXPECT_TRUE(std::filesystem::is_fifo(folder / "ostrel/preferences.json"));
}

TEST_F(JSONUserDefaultsTest, LinksAreFollowed) {
  folder.write("dotfiles/prefs", "{damaged");
  std::filesystem::create_directories(folder / "ostrel");
  std::filesystem::create_symlink("../dotfiles/prefs", folder / "ostrel/preferences.json");
  open().setDouble(2, "a");
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "ostrel/preferences.json"));
  EXPECT_EQ(nlohmann::json::parse(folder.read("dotfiles/prefs")), nlohmann::json({{"a", 2.0}}));
  bool isKept = false;
  for (const auto& item : std::filesystem::directory_iterator(folder / "dotfiles")) {
    isKept |= folder.read("dotfiles/" + item.path().filename().string()) == "{damaged";
  }
  EXPECT_TRUE(isKept);
}

TEST_F(JSONUserDefaultsTest, WhatCouldNotBeReadBackIsNotStored) {
  write(R"({"a": 1})");
  auto defaults = open();
  defaults.setDouble(std::numeric_limits<double>::quiet_NaN(), "a");
  defaults.setDouble(std::numeric_limits<double>::infinity(), "a");
  ns::Array many(5000, {ns::Dictionary{{"bundleID", {std::string("x")}}, {"name", {std::string("x")}}}});
  defaults.setObject({std::move(many)}, "b");
  defaults.flush();
  EXPECT_EQ(stored(), R"({"a": 1})");
  defaults.setObject({std::string("\xFF")}, "c");
  defaults.flush();
  EXPECT_EQ(open().objectForKey("c"), PropertyList{std::string("\xEF\xBF\xBD")});
}

TEST_F(JSONUserDefaultsTest, AnEditIsOneWriteAndNobodyWaitsForTheDisk) {
  Disk disk;
  auto defaults = open(disk.replace());
  const auto edit = [&](double value) {
    for (const char* key : {"top", "left", "right", "bottom"}) defaults.setDouble(value, key);
  };
  disk.stall();
  edit(1);
  while (disk.writes == 0) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  // The disk is busy with the first edit: further ones are taken all the same, and are one write after it.
  for (const double value : {2.0, 3.0}) {
    edit(value);
    EXPECT_EQ(defaults.doubleForKey("bottom"), value);
    QCoreApplication::processEvents();
  }
  EXPECT_EQ(stored(), "");
  disk.goOn();
  defaults.flush();
  const auto allAre = [](double value) {
    return nlohmann::json({{"top", value}, {"left", value}, {"right", value}, {"bottom", value}});
  };
  EXPECT_EQ(disk.contents, (std::vector{allAre(1), allAre(3)}));
  EXPECT_EQ(nlohmann::json::parse(stored()), allAre(3));
}

TEST_F(JSONUserDefaultsTest, WhatOthersWriteMeanwhileIsKept) {
  write(R"({"theirs": 1})");
  auto defaults = open();
  defaults.setDouble(2, "ours");
  write(R"({"theirs": 3})");
  EXPECT_EQ(defaults.doubleForKey("theirs"), 3);
  EXPECT_EQ(defaults.doubleForKey("ours"), 2);
  defaults.flush();
  EXPECT_EQ(nlohmann::json::parse(stored()), nlohmann::json({{"theirs", 3}, {"ours", 2}}));
}

TEST_F(JSONUserDefaultsTest, ARefusedChangeIsTakenBackAndTold) {
  Disk disk;
  write(R"({"a": 1})");
  auto defaults = open(disk.replace());
  std::vector<std::string> told;
  defaults.setRefusalHandler([&](const std::string& reason) {
    told.push_back(reason);
    EXPECT_EQ(defaults.doubleForKey("a"), 1) << "memory is as the file by now";
  });
  disk.error = ENOSPC;
  defaults.setDouble(2, "a");
  while (told.empty()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  EXPECT_EQ(told, std::vector<std::string>{folder / "ostrel/preferences.json: No space left on device"});
  EXPECT_EQ(stored(), R"({"a": 1})");
  EXPECT_EQ(defaults.objectForKey("b"), std::nullopt);

  disk.error = 0;
  defaults.setDouble(3, "b");
  defaults.flush();
  EXPECT_EQ(nlohmann::json::parse(stored()), nlohmann::json({{"a", 1}, {"b", 3}}));
}

TEST_F(JSONUserDefaultsTest, WhatIsLeftIsWrittenAtTheEnd) {
  open().setDouble(4, "a");  // no turn of the main loop in between
  EXPECT_EQ(open().doubleForKey("a"), 4);
}

}  // namespace
}  // namespace freedesktop
