#include "tests/desktop/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace desktoptest {

namespace {

std::vector<std::string> mergedEnvironment(const Environment& changes) {
  std::vector<std::string> merged;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    if (!changes.contains(text.substr(0, text.find('=')))) merged.push_back(text);
  }
  for (const auto& [name, value] : changes) merged.push_back(name + "=" + value);
  return merged;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

}  // namespace

ChildProcess::ChildProcess(const Arguments& arguments, const Environment& environment, const std::filesystem::path& log,
                           int inherited) {
  auto argumentTexts = arguments;
  auto environmentTexts = mergedEnvironment(environment);
  const auto argumentPointers = pointers(argumentTexts);
  const auto environmentPointers = pointers(environmentTexts);
  const pid_t parent = getpid();

  pid_ = fork();
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid_ == 0) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(127);
    const int nothing = open("/dev/null", O_RDONLY);
    const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(nothing, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    const auto beyondStandard = static_cast<unsigned>(STDERR_FILENO + 1);
    if (inherited > STDERR_FILENO) {
      close_range(beyondStandard, static_cast<unsigned>(inherited - 1), 0);
      close_range(static_cast<unsigned>(inherited + 1), ~0U, 0);
    } else {
      close_range(beyondStandard, ~0U, 0);
    }
    execvpe(argumentPointers[0], argumentPointers.data(), environmentPointers.data());
    _exit(127);
  }
  setpgid(pid_, pid_);  // both sides set it, so that it holds for whoever comes first
  pidDescriptor_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
  if (pidDescriptor_ < 0) throw std::system_error(errno, std::generic_category(), "pidfd_open");
}

ChildProcess::~ChildProcess() {
  kill(-pid_, SIGKILL);
  waitForExit(std::chrono::seconds(10));
  close(pidDescriptor_);
}

void ChildProcess::signal(int number) const {
  if (!status_) kill(pid_, number);
}

std::optional<int> ChildProcess::waitForExit(std::chrono::milliseconds bound) {
  if (status_) return status_;
  pollfd ended{pidDescriptor_, POLLIN, 0};
  if (poll(&ended, 1, static_cast<int>(bound.count())) != 1) return std::nullopt;
  int status = 0;
  if (waitpid(pid_, &status, 0) != pid_) throw std::system_error(errno, std::generic_category(), "waitpid");
  status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return status_;
}

CommandResult run(const Arguments& arguments, const Environment& environment, const std::filesystem::path& log,
                  std::chrono::milliseconds bound) {
  std::filesystem::remove(log);
  ChildProcess process(arguments, environment, log);
  const auto status = process.waitForExit(bound);
  if (!status) throw std::runtime_error(arguments[0] + " did not end");
  return {*status, readFile(log)};
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  const auto next = path.string() + ".next";
  std::ofstream(next, std::ios::binary) << text;
  std::filesystem::rename(next, path);
}

}  // namespace desktoptest
