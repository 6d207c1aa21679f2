#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace support {

ChildProcess::ChildProcess(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
  std::array<int, 2> in{};
  std::array<int, 2> out{};
  if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe");
  std::vector<char*> arguments;
  for (const auto& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("fork");
  if (pid_ == 0) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    dup2(in[0], STDIN_FILENO);
    dup2(out[1], STDOUT_FILENO);
    for (const auto& entry : environment) putenv(const_cast<char*>(entry.c_str()));
    execvp(arguments.front(), arguments.data());
    _exit(127);
  }
  setpgid(pid_, pid_);  // both sides set it, so that it holds for whoever comes first
  close(in[0]);
  close(out[1]);
  input_ = in[1];
  output_ = out[0];
}

ChildProcess::~ChildProcess() {
  kill(-pid_, SIGKILL);
  if (!status_) waitpid(pid_, nullptr, 0);
  close(input_);
  close(output_);
}

void ChildProcess::signal(int number) const {
  if (!status_) kill(pid_, number);
}

std::optional<int> ChildProcess::waitForExit(std::chrono::milliseconds bound) {
  if (status_) return status_;
  pollfd ended{static_cast<int>(syscall(SYS_pidfd_open, pid_, 0)), POLLIN, 0};
  const bool hasEnded = poll(&ended, 1, static_cast<int>(bound.count())) == 1;
  close(ended.fd);
  if (!hasEnded) return std::nullopt;
  int status = 0;
  waitpid(pid_, &status, 0);
  status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return status_;
}

std::optional<std::string> ChildProcess::readLine(std::chrono::milliseconds bound) {
  const auto deadline = std::chrono::steady_clock::now() + bound;
  while (true) {
    if (const auto end = pending_.find('\n'); end != std::string::npos) {
      auto line = pending_.substr(0, end);
      pending_.erase(0, end + 1);
      return line;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd ready{output_, POLLIN, 0};
    if (left.count() <= 0 || poll(&ready, 1, static_cast<int>(left.count())) <= 0) return std::nullopt;
    std::array<char, 512> buffer{};
    const auto count = read(output_, buffer.data(), buffer.size());
    if (count <= 0) return std::nullopt;
    pending_.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

void ChildProcess::writeLine(const std::string& line) const {
  const auto text = line + "\n";
  if (write(input_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) throw std::runtime_error("write");
}

}  // namespace support
