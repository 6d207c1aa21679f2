#include "platform/linux/freedesktop/ApplicationIdentity.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {
namespace {

constexpr std::size_t largestProcFile = 64 * 1024;

bool equalIgnoringCase(std::string_view one, std::string_view other) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [&](char a, char b) { return lower(a) == lower(b); });
}

std::string_view lastPart(std::string_view text, char separator) {
  const auto found = text.rfind(separator);
  return found == std::string_view::npos ? text : text.substr(found + 1);
}

/// Programs that run other programs: that one of them is running says nothing about the application.
bool isInterpreter(std::string_view program) {
  constexpr std::array names{"python", "perl", "ruby", "node", "java", "gjs", "bash", "dash", "mono", "wine"};
  return program == "sh" || std::any_of(names.begin(), names.end(), [&](std::string_view name) {
           return program.starts_with(name) && program.find_first_not_of("0123456789.-", name.size()) == program.npos;
         });
}

std::string resolved(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), &std::free);
  return real == nullptr ? path : real.get();
}

/// Where a command that an entry names is, links resolved; empty when it is nowhere.
std::string locate(const std::string& command) {
  if (command.empty()) return {};
  if (command.front() == '/') return access(command.c_str(), X_OK) == 0 ? resolved(command) : std::string();
  const char* path = std::getenv("PATH");
  std::string_view folders = path == nullptr ? "/usr/local/bin:/usr/bin:/bin" : path;
  while (!folders.empty()) {
    const std::string_view folder = folders.substr(0, folders.find(':'));
    const std::string candidate = std::string(folder) + '/' + command;
    if (folder.starts_with('/') && access(candidate.c_str(), X_OK) == 0) return resolved(candidate);
    folders.remove_prefix(std::min(folders.size(), folder.size() + 1));
  }
  return {};
}

}  // namespace

ApplicationIdentity::ApplicationIdentity(DesktopEntries& entries, std::string procFolder)
    : entries_(entries), procFolder_(std::move(procFolder)) {}

ApplicationDescription ApplicationIdentity::describe(const WindowOwner& owner) {
  if (const unsigned generation = entries_.generation(); generation != generation_) {
    generation_ = generation;
    known_.clear();
    executables_.clear();
  }
  if (const auto found = known_.find(owner); found != known_.end()) return found->second;

  ApplicationDescription description;
  if (const DesktopEntry* entry = find(owner)) {
    description = {entry->id, entry->name};
  } else {
    description.bundleIdentifier = sandboxId(owner.pid);  // trustworthy even without an entry
    const std::string program = executablePath(owner.pid);
    description.name = !owner.windowClass.empty() ? owner.windowClass : std::string(lastPart(program, '/'));
  }
  return known_.emplace(owner, std::move(description)).first->second;
}

void ApplicationIdentity::forget(pid_t pid) {
  std::erase_if(known_, [pid](const auto& known) { return known.first.pid == pid; });
}

const DesktopEntry* ApplicationIdentity::find(const WindowOwner& owner) {
  if (const auto id = sandboxId(owner.pid)) {
    if (const DesktopEntry* entry = entries_.entryWithId(*id)) return entry;
  }
  if (const DesktopEntry* entry = entries_.entryWithId(owner.gtkApplicationId)) return entry;

  const std::vector<DesktopEntry>& all = entries_.entries();
  // Entries that menus do not show come second: they are other ways to start an application that has one that is shown.
  const auto first = [&](const auto& matches) -> const DesktopEntry* {
    const DesktopEntry* result = nullptr;
    for (const DesktopEntry& entry : all) {
      if ((result == nullptr || (result->hidden && !entry.hidden)) && matches(entry)) result = &entry;
    }
    return result;
  };
  for (const std::string& name : {owner.windowClass, owner.windowInstance}) {
    if (name.empty()) continue;
    if (const auto* entry = first([&](const auto& one) { return one.startupWMClass == name; })) return entry;
  }
  for (const std::string& name : {owner.windowClass, owner.windowInstance}) {
    if (name.empty()) continue;
    if (const auto* entry = first([&](const auto& one) { return equalIgnoringCase(one.id, name); })) return entry;
  }
  const std::string program = executablePath(owner.pid);
  if (program.empty()) return nullptr;
  if (executables_.empty()) {
    for (std::size_t i = 0; i < all.size(); ++i) {
      for (const std::string& command : {all[i].executable, all[i].tryExecutable}) {
        if (std::string path = locate(command); !path.empty()) executables_.emplace(std::move(path), i);
      }
    }
  }
  const auto [begin, end] = executables_.equal_range(program);
  const DesktopEntry* result = nullptr;
  for (auto candidate = begin; candidate != end; ++candidate) {
    const DesktopEntry& entry = all[candidate->second];
    if (equalIgnoringCase(lastPart(entry.id, '.'), lastPart(program, '/'))) return &entry;
    if (result == nullptr || (result->hidden && !entry.hidden)) result = &entry;
  }
  return result;
}

std::optional<std::string> ApplicationIdentity::sandboxId(pid_t pid) const {
  if (pid <= 0) return std::nullopt;
  const std::string process = procFolder_ + '/' + std::to_string(pid);
  const std::string fileSystem = process + "/root";  // as the process sees it: a sandbox has one of its own
  const std::string flatpak = readFile(fileSystem + "/.flatpak-info", largestProcFile).text;
  if (constexpr std::string_view key = "\nname="; flatpak.starts_with("[Application]")) {
    if (const auto found = flatpak.find(key); found != std::string::npos) {
      const auto start = found + key.size();
      return flatpak.substr(start, flatpak.find('\n', start) - start);
    }
  }
  // A snap's security label reads "snap.NAME.APP (enforce)"; its desktop entry is NAME_APP.
  const std::string label = readFile(process + "/attr/current", largestProcFile).text;
  if (constexpr std::string_view prefix = "snap."; label.starts_with(prefix)) {
    std::string id = label.substr(prefix.size(), label.find_first_of(" \n") - prefix.size());
    if (const auto dot = id.find('.'); dot != std::string::npos) id[dot] = '_';
    return id;
  }
  return std::nullopt;
}

std::string ApplicationIdentity::executablePath(pid_t pid) const {
  if (pid <= 0) return {};
  const std::string process = procFolder_ + '/' + std::to_string(pid);
  std::string program = executableOf(process);
  if (!isInterpreter(lastPart(program, '/'))) return program;

  // The script is the first argument that is no option.
  const std::string arguments = readFile(process + "/cmdline", largestProcFile).text;
  for (auto start = arguments.find('\0'); start != std::string::npos; start = arguments.find('\0', start + 1)) {
    const char* argument = arguments.c_str() + start + 1;
    if (*argument == '/') return resolved(argument);
    if (*argument != '-') break;
  }
  return {};
}

}  // namespace freedesktop
