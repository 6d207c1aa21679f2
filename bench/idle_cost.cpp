// What Ostrel costs while nobody clicks: how often its processes wake up, and their memory.
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <vector>

#include "bench/Program.h"
#include "tests/desktop/DesktopSession.h"
#include "tests/support/ProcessFiles.h"

namespace {

namespace fs = std::filesystem;
constexpr unsigned settleSeconds = 5;
constexpr unsigned idleSeconds = 20;

long wakeUps(pid_t process) {
  long sum = 0;
  for (const auto& thread : fs::directory_iterator(support::folder(process) / "task")) {
    sum += support::number(thread.path() / "status", "voluntary_ctxt_switches:");
  }
  return sum;
}

void measure(desktoptest::DesktopSession& session) {
  session.startOstrel();
  sleep(settleSeconds);
  const auto processes = support::withChildren(session.ostrel().pid());
  std::vector<long> before;
  for (const pid_t process : processes) before.push_back(wakeUps(process));
  sleep(idleSeconds);
  std::printf("Idle, over %u s:\n", idleSeconds);
  for (std::size_t i = 0; i < processes.size(); ++i) {
    const auto memory = support::folder(processes[i]) / "smaps_rollup";
    std::printf(
        "  %-16s %.2f wake-ups a second  resident %.1f MB, of it private %.1f MB, proportional %.1f MB\n",
        support::name(support::folder(processes[i])).c_str(),
        static_cast<double>(wakeUps(processes[i]) - before[i]) / idleSeconds,
        static_cast<double>(support::number(memory, "Rss:")) / 1024,
        static_cast<double>(support::number(memory, "Private_Dirty:") + support::number(memory, "Private_Clean:")) /
            1024,
        static_cast<double>(support::number(memory, "Pss:")) / 1024);
  }
}

}  // namespace

int main() {
  return bench::run([] {
    desktoptest::DesktopSession session(desktoptest::WindowManager::Openbox);
    measure(session);
  });
}
