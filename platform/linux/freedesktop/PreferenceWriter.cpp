#include "platform/linux/freedesktop/PreferenceWriter.h"

#include <utility>

#include "platform/RunLoop.h"
#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {

using Json = nlohmann::ordered_json;

PreferenceWriter::PreferenceWriter(std::string path, ReplaceFile replace)
    : path_(std::move(path)), replace_(std::move(replace)) {}

PreferenceWriter::~PreferenceWriter() {
  if (!thread_.joinable()) return;
  {
    const ns::LockGuard guard(lock_);
    isEnding_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void PreferenceWriter::put(const std::string& key, Json value) {
  bool isFirst = false;
  {
    const ns::LockGuard guard(lock_);
    isFirst = waiting_.empty();
    waiting_[key] = std::move(value);
  }
  if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
  if (!isFirst) return;
  ns::dispatchAsyncOnMainQueue([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->startWriting();
  });
}

std::optional<Json> PreferenceWriter::unwritten(std::string_view key) const {
  const ns::LockGuard guard(lock_);
  for (const Json* values : {&waiting_, &writing_}) {
    if (const auto found = values->find(key); found != values->end()) return *found;
  }
  return std::nullopt;
}

Json PreferenceWriter::unwritten() const {
  const ns::LockGuard guard(lock_);
  Json all = writing_;
  all.update(waiting_);
  return all;
}

void PreferenceWriter::startWriting() {
  {
    const ns::LockGuard guard(lock_);
    isDue_ = true;
  }
  changed_.notify_all();
}

void PreferenceWriter::flush() {
  startWriting();
  const ns::LockGuard guard(lock_);
  while (!waiting_.empty() || !writing_.empty()) changed_.wait(lock_);
}

void PreferenceWriter::run() {
  while (true) {
    Json changes;
    {
      const ns::LockGuard guard(lock_);
      while (!isEnding_ && (!isDue_ || waiting_.empty())) changed_.wait(lock_);
      if (waiting_.empty()) return;
      isDue_ = false;
      changes = std::exchange(waiting_, Json::object());
      writing_ = changes;
    }
    const auto problem = storePreferences(path_, changes, replace_);
    {
      const ns::LockGuard guard(lock_);
      writing_ = Json::object();
    }
    changed_.notify_all();
    if (!problem) continue;
    std::string keys;
    for (const auto& change : changes.items()) keys += (keys.empty() ? "" : ", ") + change.key();
    refuse(keys, *problem);
  }
}

void PreferenceWriter::refuse(const std::string& keys, const std::string& reason) {
  logWarning("not stored: " + keys + ": " + reason);
  ns::dispatchAsyncOnMainQueue([weak = weak_from_this(), reason] {
    const auto self = weak.lock();
    if (self && self->onRefusal_) self->onRefusal_(reason);
  });
}

}  // namespace freedesktop
