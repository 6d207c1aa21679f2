// What Ostrel costs while nobody clicks: how often its processes wake up, and their memory.
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <vector>

#include "bench/Program.h"
#include "tests/desktop/DesktopSession.h"

namespace {

namespace fs = std::filesystem;
constexpr unsigned settleSeconds = 5;
constexpr unsigned idleSeconds = 20;

long wakeUps(pid_t process) {
  long sum = 0;
  for (const auto& thread : fs::directory_iterator(bench::folder(process) / "task")) {
    sum += bench::number(thread.path() / "status", "voluntary_ctxt_switches:");
  }
  return sum;
}

void measure(desktoptest::DesktopSession& session) {
  session.startOstrel();
  sleep(settleSeconds);
  const auto processes = bench::withChildren(session.ostrel().pid());
  std::vector<long> before;
  for (const pid_t process : processes) before.push_back(wakeUps(process));
  sleep(idleSeconds);
  std::printf("Idle, over %u s:\n", idleSeconds);
  for (std::size_t i = 0; i < processes.size(); ++i) {
    const auto memory = bench::folder(processes[i]) / "smaps_rollup";
    std::printf(
        "  %-16s %.2f wake-ups a second  resident %.1f MB, of it private %.1f MB, proportional %.1f MB\n",
        bench::name(processes[i]).c_str(), static_cast<double>(wakeUps(processes[i]) - before[i]) / idleSeconds,
        static_cast<double>(bench::number(memory, "Rss:")) / 1024,
        static_cast<double>(bench::number(memory, "Private_Dirty:") + bench::number(memory, "Private_Clean:")) / 1024,
        static_cast<double>(bench::number(memory, "Pss:")) / 1024);
  }
}

}  // namespace

int main() {
  return bench::run([] {
    desktoptest::DesktopSession session(desktoptest::WindowManager::Openbox);
    measure(session);
  });
}
