#include "platform/linux/freedesktop/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <utility>

#include "platform/linux/freedesktop/BaseFolders.h"

namespace freedesktop {
namespace {

std::string folderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? "." : (slash == 0 ? "/" : path.substr(0, slash));
}

bool writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(descriptor, content.data(), content.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(value_, other.value_);
  return *this;
}
Descriptor::~Descriptor() {
  if (value_ >= 0) close(value_);
}

std::optional<std::string> linkTarget(std::string path) {
  constexpr int longestChain = 40;
  for (int i = 0; i < longestChain; ++i) {
    std::string target(4096, '\0');
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    if (length < 0) return path;
    target.resize(static_cast<std::size_t>(length));
    path = target.starts_with('/') ? target : folderOf(path) + '/' + target;
  }
  return std::nullopt;
}

FileContent readFile(const std::string& path, std::size_t limit) {
  FileContent content;
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!file) {
    content.error = errno;
    return content;
  }
  content.stamp = FileStamp::of(file.get());
  if (!S_ISREG(content.stamp.mode)) {
    content.error = EINVAL;
    return content;
  }
  char buffer[16384];
  while (true) {
    const ssize_t length = read(file.get(), buffer, sizeof buffer);
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) content.error = errno;
    if (length <= 0) break;
    content.text.append(buffer, static_cast<std::size_t>(length));
    if (content.text.size() > limit) {
      content.error = EFBIG;
      break;
    }
  }
  if (content.error != 0) content.text.clear();
  return content;
}

std::string executableOf(const std::string& processFolder) {
  std::array<char, PATH_MAX> buffer{};
  const ssize_t length = readlink((processFolder + "/exe").c_str(), buffer.data(), buffer.size());
  if (length <= 0) return {};
  std::string path(buffer.data(), static_cast<std::size_t>(length));
  constexpr std::string_view deleted = " (deleted)";
  if (path.ends_with(deleted) && access(path.c_str(), F_OK) != 0) path.resize(path.size() - deleted.size());
  return path;
}

int replaceFile(const std::string& path, std::string_view content) {
  const std::optional<std::string> target = linkTarget(path);
  if (!target) return ELOOP;
  const std::string folder = folderOf(*target);
  if (!makeFolders(folder)) return errno;

  std::string temporary = *target + ".XXXXXX";
  Descriptor file(mkostemp(temporary.data(), O_CLOEXEC));  // created with mode 0600
  if (!file) return errno;
  // Without the fsync a crash soon after the rename may leave an empty file under the name.
  if (!writeAll(file.get(), content) || fsync(file.get()) != 0 || rename(temporary.c_str(), target->c_str()) != 0) {
    const int error = errno;
    unlink(temporary.c_str());
    return error;
  }
  // Some file systems cannot sync a folder; the content is safe by now either way.
  if (const Descriptor opened{open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)}) fsync(opened.get());
  return 0;
}

void logWarning(std::string_view text) { std::cerr << "ostrel: " << text << std::endl; }

}  // namespace freedesktop
