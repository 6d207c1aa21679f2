// What Ostrel costs while nobody clicks: how often its processes wake up, and their memory.
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/desktop/DesktopSession.h"

namespace {

namespace fs = std::filesystem;
constexpr unsigned settleSeconds = 5;
constexpr unsigned idleSeconds = 20;

/// The first number after `key` in a file of the kernel's, 0 without one.
long number(const fs::path& file, const std::string& key) {
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with(key)) return std::stol(line.substr(key.size()));
  }
  return 0;
}

long wakeUps(pid_t process) {
  long sum = 0;
  for (const auto& thread : fs::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
    sum += number(thread.path() / "status", "voluntary_ctxt_switches:");
  }
  return sum;
}

std::vector<pid_t> withChildren(pid_t process) {
  std::vector<pid_t> result{process};
  const auto id = std::to_string(process);
  std::ifstream children("/proc/" + id + "/task/" + id + "/children");
  for (pid_t child = 0; children >> child;) result.push_back(child);
  return result;
}

void measure(desktoptest::DesktopSession& session) {
  session.startOstrel();
  sleep(settleSeconds);
  const auto processes = withChildren(session.ostrel().pid());
  std::vector<long> before;
  for (const pid_t process : processes) before.push_back(wakeUps(process));
  sleep(idleSeconds);
  std::printf("Idle, over %u s:\n", idleSeconds);
  for (std::size_t i = 0; i < processes.size(); ++i) {
    const fs::path folder = "/proc/" + std::to_string(processes[i]);
    const auto memory = folder / "smaps_rollup";
    std::string name;
    std::getline(std::ifstream(folder / "comm"), name);
    std::printf("  %-16s %.2f wake-ups a second  resident %.1f MB, of it private %.1f MB, proportional %.1f MB\n",
                name.c_str(), static_cast<double>(wakeUps(processes[i]) - before[i]) / idleSeconds,
                static_cast<double>(number(memory, "Rss:")) / 1024,
                static_cast<double>(number(memory, "Private_Dirty:") + number(memory, "Private_Clean:")) / 1024,
                static_cast<double>(number(memory, "Pss:")) / 1024);
  }
}

}  // namespace

int main() {
  try {
    desktoptest::DesktopSession session(desktoptest::WindowManager::Openbox);
    measure(session);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
