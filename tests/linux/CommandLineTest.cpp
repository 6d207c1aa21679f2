#include "Ostrel/CommandLine.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>

#include "Ostrel/JSONText.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/XvfbSession.h"

namespace ostrel {
namespace {

using Command = CommandLine::Command;

Command commandOf(const std::vector<std::string>& arguments) { return parseCommandLine(arguments).command; }

TEST(CommandLineParsingTest, TakesOnlyWholeCommands) {
  EXPECT_EQ(parseCommandLine({}), CommandLine{});
  const std::vector<std::string> exclude{"settings", "exclude"};
  EXPECT_EQ(parseCommandLine(exclude), (CommandLine{Command::Settings, "exclude"}));
  EXPECT_EQ(commandOf({"accessibility", "revoke"}), Command::Revoke);
  EXPECT_EQ(commandOf({"buttons"}), Command::Buttons);
  const std::vector<std::string> forget{"buttons", "forget", "A class"};
  EXPECT_EQ(parseCommandLine(forget), (CommandLine{Command::ForgetButtons, "A class"}));
  for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{{""},
                                                                                     {"Settings"},
                                                                                     {"settings", "General"},
                                                                                     {"settings", ""},
                                                                                     {"settings", "about", "x"},
                                                                                     {"accessibility"},
                                                                                     {"accessibility", "grant", "x"},
                                                                                     {"displays", "x"},
                                                                                     {"buttons", "learn"},
                                                                                     {"buttons", "forget", ""},
                                                                                     {"buttons", "forget", "a", "b"},
                                                                                     {"--version", "--help"},
                                                                                     {"--verbose"}}) {
    const CommandLine parsed = parseCommandLine(wrong);
    EXPECT_EQ(parsed.command, Command::Invalid) << wrong[0];
    EXPECT_FALSE(parsed.argument.empty());
  }
}

TEST(CommandLineParsingTest, LeavesTheToolkitsArgumentsAlone) {
  const std::vector<std::string> settings{"-AppleLanguages", "(de)", "settings", "-psn_0_1234",
                                          "-session",        "1a_2", "about"};
  EXPECT_EQ(parseCommandLine(settings), (CommandLine{Command::Settings, "about"}));
  EXPECT_EQ(commandOf({"-NSDocumentRevisionsDebugMode", "YES"}), Command::Run);
  EXPECT_EQ(commandOf({"-NSQuitAlwaysKeepsWindows", "-ApplePersistence", "NO", "doctor"}), Command::Doctor);
  EXPECT_EQ(commandOf({"-n", "settings"}), Command::Invalid);
}

TEST(JSONTextTest, IsReadBackByAnyReader) {
  std::string everyByte;
  for (int c = 1; c < 0x80; ++c) everyByte += static_cast<char>(c);
  for (const std::string& text : {everyByte, std::string("\0\"\\/", 4), std::string("Écran 27″ 🖥")}) {
    EXPECT_EQ(nlohmann::json::parse(jsonText(text)), text);
  }
  EXPECT_EQ(nlohmann::json::parse(jsonText("a\xFF\xC3")), "a\uFFFD\uFFFD");
  for (const double number : {0.0, -1200.0, 12.5, 0.1, 1e300})
    EXPECT_EQ(nlohmann::json::parse(jsonNumber(number)), number);
  EXPECT_EQ(jsonNumber(1440), "1440");
}

struct Result {
  int status = -1;
  std::string output;
};

/// The program in a home of its own, as a shell would start it.
class ProgramTest : public testing::Test {
 protected:
  std::vector<std::string> environment() const {
    return {"HOME=" + folder.path(), "XDG_RUNTIME_DIR=" + folder.path(), "XDG_CONFIG_HOME=" + folder / "config",
            "XDG_DATA_HOME=" + folder / "data"};
  }
  Result run(const std::string& arguments, const std::string& extraEnvironment = {}) const {
    std::string command = "exec timeout 20 env ";
    for (const std::string& variable : environment()) command += variable + " ";
    command += "env " + extraEnvironment + " " OSTREL_PROGRAM " " + arguments + " 2>&1 </dev/null";
    Result result;
    FILE* const pipe = popen(command.c_str(), "r");
    char buffer[4096];
    while (const std::size_t length = fread(buffer, 1, sizeof buffer, pipe)) result.output.append(buffer, length);
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
  }

  const support::TemporaryFolder folder;
};

constexpr const char* noDisplay = "-u DISPLAY -u WAYLAND_DISPLAY";

TEST_F(ProgramTest, WorksWithoutADisplayWhereNoneIsNeeded) {
  const std::string version = run("--version", noDisplay).output;
  EXPECT_TRUE(std::regex_match(version, std::regex("Ostrel " OSTREL_VERSION "( \\([0-9a-f]{10,}(-dirty)?\\))?\n")))
      << version;
  const Result unknown = run("frobnicate", noDisplay);
  EXPECT_EQ(unknown.status, 2);
  EXPECT_NE(unknown.output.find("frobnicate"), std::string::npos);

  const auto consent = [&] {
    const Result result = run("accessibility status", noDisplay);
    return result.output + std::to_string(result.status);
  };
  EXPECT_EQ(consent(), "missing\n1");
  EXPECT_EQ(run("accessibility grant", noDisplay).status, 0);
  EXPECT_EQ(consent(), "granted\n0");
  EXPECT_EQ(run("accessibility revoke", noDisplay).status, 0);
  EXPECT_EQ(consent(), "missing\n1");
  folder.write("data-is-a-file", "");
  EXPECT_EQ(run("accessibility grant", "XDG_DATA_HOME=" + folder / "data-is-a-file").status, 1);
}

TEST_F(ProgramTest, SaysWhyItCannotWorkWithoutAnXServer) {
  for (const char* arguments : {"", "displays", "settings about", "doctor", "buttons forget"}) {
    const Result none = run(arguments, noDisplay);
    EXPECT_EQ(none.status, 1);
    EXPECT_NE(none.output.find("DISPLAY is not set"), std::string::npos) << none.output;
    const Result wayland = run(arguments, "-u DISPLAY WAYLAND_DISPLAY=wayland-0");
    EXPECT_EQ(wayland.status, 1);
    EXPECT_NE(wayland.output.find("Wayland session without X11"), std::string::npos) << wayland.output;
  }
  EXPECT_EQ(run("", "DISPLAY=:64999").status, 1);
}

class ProgramOnDesktopTest : public ProgramTest {
 protected:
  /// True once the running instance's part of the diagnosis holds this text.
  bool doctorComesToSay(const std::string& text) const {
    const auto deadline = std::chrono::steady_clock::now() + support::patience;
    while (std::chrono::steady_clock::now() < deadline) {
      if (run("doctor").output.find(text) != std::string::npos) return true;
    }
    return false;
  }

  const support::XvfbSession session;
};

TEST_F(ProgramOnDesktopTest, ListsDisplaysWithTheMarginsInEffect) {
  const Result before = run("displays");
  ASSERT_EQ(before.status, 0) << before.output;
  const auto catalogue = nlohmann::json::parse(before.output);
  ASSERT_EQ(catalogue.at("displays").size(), 1U);
  const auto& display = catalogue.at("displays")[0];
  EXPECT_EQ(catalogue.at("key"), display.at("identityKey"));
  EXPECT_EQ(catalogue.at("label"), display.at("name"));
  EXPECT_EQ(display.at("bounds"), nlohmann::json({{"x", 0}, {"y", 0}, {"width", 1440}, {"height", 900}}));
  EXPECT_EQ(display.at("scale"), 1);
  EXPECT_EQ(display.at("margins"), nlohmann::json({{"top", 56}, {"left", 32}, {"right", 32}, {"bottom", 32}}));

  nlohmann::json preferences{{"margins.left", "12.5"}};
  preferences["margins.configuration." + catalogue.at("key").get<std::string>() + ".display." +
              display.at("identityKey").get<std::string>() + ".top"] = 5000;
  folder.write("config/ostrel/preferences.json", preferences.dump());
  EXPECT_EQ(nlohmann::json::parse(run("displays").output).at("displays")[0].at("margins"),
            nlohmann::json({{"top", 1000}, {"left", 12.5}, {"right", 32}, {"bottom", 32}}));
}

TEST_F(ProgramOnDesktopTest, LaterStartsTalkToTheRunningInstance) {
  EXPECT_NE(run("doctor").output.find("not running"), std::string::npos);
  folder.write("config/ostrel/preferences.json",
               R"({"behavior.excludedApps": [{"bundleID": "org.a", "name": "Two\nlines\u001b[31m\u009b\u007f"}]})");
  const support::ChildProcess instance({OSTREL_PROGRAM}, environment());
  EXPECT_TRUE(doctorComesToSay("waiting for Accessibility"));
  EXPECT_NE(run("doctor").output.find("Two lines [31m  \n"), std::string::npos) << "no instructions to the terminal";
  ASSERT_EQ(run("accessibility grant").status, 0);
  EXPECT_TRUE(doctorComesToSay("installed\n"));
  EXPECT_TRUE(doctorComesToSay("Watchdog            running\n"));
  EXPECT_TRUE(doctorComesToSay("Title bars          none learned yet\n"));

  EXPECT_EQ(run("").status, 0);
  EXPECT_EQ(run("settings displays").status, 0);
  instance.signal(SIGSTOP);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(run("settings").status, 1);
  EXPECT_NE(run("doctor").output.find("does not answer"), std::string::npos);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(6));  // two questions, one second each
  instance.signal(SIGKILL);
  EXPECT_TRUE(doctorComesToSay("not running"));
}

TEST_F(ProgramOnDesktopTest, DiagnosisEndsWithWhatIsMissing) {
  const auto missing = [&](const std::string& extraEnvironment = {}) {
    const Result result = run("doctor", extraEnvironment);
    EXPECT_EQ(result.status, 1);
    const auto first = result.output.find("\n\nMissing: ");
    return first == std::string::npos ? "nothing" : result.output.substr(first + 2);
  };
  const std::string all = missing("WAYLAND_DISPLAY=wayland-0");
  for (const char* lack :
       {"may not handle clicks: allow", "not running: start", "Wayland session", "no window manager", "no panel"}) {
    EXPECT_NE(all.find(lack), std::string::npos) << lack << " in " << all;
  }
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 5) << all;

  ASSERT_EQ(run("accessibility grant").status, 0);
  const support::ChildProcess instance({OSTREL_PROGRAM}, environment());
  ASSERT_TRUE(doctorComesToSay("installed\n"));
  EXPECT_EQ(missing().find("Ostrel"), missing().rfind("Ostrel"))
      << "only where it speaks of the panel's item: " << missing();
  // One that has another runtime folder knows nothing of the first, which has the mouse.
  std::filesystem::create_directory(folder / "runtime");
  std::filesystem::permissions(folder / "runtime", std::filesystem::perms::owner_all);
  auto other = environment();
  const std::string runtime = "XDG_RUNTIME_DIR=" + folder / "runtime";
  other.push_back(runtime);
  const support::ChildProcess second({OSTREL_PROGRAM}, other);
  const auto deadline = std::chrono::steady_clock::now() + support::patience;
  while (missing(runtime).find("another program takes") == std::string::npos) {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << missing(runtime);
  }
}

TEST_F(ProgramOnDesktopTest, TellsAServiceManagerWhenItIsReady) {
  const std::string path = folder / "notify";
  const int manager = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strcpy(address.sun_path, path.c_str());
  ASSERT_EQ(bind(manager, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  const timeval patience{.tv_sec = std::chrono::seconds(support::patience).count(), .tv_usec = 0};
  setsockopt(manager, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  auto variables = environment();
  variables.push_back("NOTIFY_SOCKET=" + path);
  support::ChildProcess instance({OSTREL_PROGRAM}, variables);
  char message[64]{};
  EXPECT_EQ(recv(manager, message, sizeof message - 1, 0), 7);
  EXPECT_STREQ(message, "READY=1");
  EXPECT_NE(run("doctor").output.find("waiting for Accessibility"), std::string::npos) << "ready is ready";
  instance.signal(SIGTERM);
  EXPECT_EQ(instance.waitForExit(support::patience), 0);
  close(manager);
}

TEST_F(ProgramOnDesktopTest, KeepsToItselfWhatItStoresAndOpensNoConnection) {
  ASSERT_EQ(run("accessibility grant").status, 0);
  const std::string calls = folder / "calls";
  support::ChildProcess instance({"strace", "-f", "-e", "trace=socket", "-o", calls, OSTREL_PROGRAM}, environment());
  ASSERT_TRUE(doctorComesToSay("installed\n"));
  ASSERT_EQ(run("settings displays").status, 0);
  int stored = 0;
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder.path())) {
    if (!item.is_regular_file() || item.path() == calls) continue;
    ++stored;
    using std::filesystem::perms;
    EXPECT_EQ(item.status().permissions() & (perms::group_all | perms::others_all), perms::none) << item.path();
  }
  EXPECT_GE(stored, 2) << "the consent and the claim on the session";
  instance.signal(SIGKILL);
  const std::string log = folder.read("calls");
  EXPECT_NE(log.find("AF_UNIX"), std::string::npos) << log;
  EXPECT_EQ(log.find("AF_INET"), std::string::npos) << log;
}

TEST_F(ProgramOnDesktopTest, StartsNoBusOfItsOwn) {
  support::ChildProcess instance({"env", "-u", "DBUS_SESSION_BUS_ADDRESS", OSTREL_PROGRAM}, environment());
  ASSERT_TRUE(doctorComesToSay("waiting for Accessibility"));
  instance.signal(SIGTERM);
  EXPECT_EQ(instance.waitForExit(support::patience), 0);
  EXPECT_FALSE(std::filesystem::exists(folder / ".dbus")) << "where a bus that was started is noted down";
}

}  // namespace
}  // namespace ostrel
