// Writes preferences to the disk, off the way of whoever changes them.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "platform/Lock.h"
#include "platform/linux/freedesktop/PreferenceFile.h"

namespace freedesktop {

/// All changes of one turn of the main loop are one write, and so are those that are made while an earlier write goes
/// on: an fsync can take longer than a click may wait. Held by a shared pointer; main thread only, but for flush. Its
/// destructor writes what is left.
class PreferenceWriter : public std::enable_shared_from_this<PreferenceWriter> {
 public:
  PreferenceWriter(std::string path, ReplaceFile replace);
  ~PreferenceWriter();
  PreferenceWriter(const PreferenceWriter&) = delete;
  PreferenceWriter& operator=(const PreferenceWriter&) = delete;

  /// Returns at once.
  void put(const std::string& key, nlohmann::ordered_json value);
  /// What was put and is not in the file yet: one value, and all of them.
  std::optional<nlohmann::ordered_json> unwritten(std::string_view key) const;
  nlohmann::ordered_json unwritten() const;
  /// Returns when nothing is left to be written. Any thread.
  void flush();

  /// Logs that `keys` are not stored and tells the refusal handler in the next turn of the main loop. Any thread.
  void refuse(const std::string& keys, const std::string& reason);
  void setRefusalHandler(std::function<void(const std::string& reason)> handler) { onRefusal_ = std::move(handler); }

 private:
  void startWriting();
  void run();

  const std::string path_;
  const ReplaceFile replace_;
  std::function<void(const std::string& reason)> onRefusal_;
  std::thread thread_;
  mutable ns::Lock lock_;
  std::condition_variable_any changed_;
  nlohmann::ordered_json waiting_ GUARDED_BY(lock_) = nlohmann::ordered_json::object();
  /// Being written at the moment; refused, they are forgotten, and memory is as the file again.
  nlohmann::ordered_json writing_ GUARDED_BY(lock_) = nlohmann::ordered_json::object();
  bool isDue_ GUARDED_BY(lock_) = false;
  bool isEnding_ GUARDED_BY(lock_) = false;
};

}  // namespace freedesktop
