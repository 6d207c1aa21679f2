// Any bytes as a preference file: nothing crashes, and a file that was understood is understood again, with the same
// values, after it has been written back.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "platform/linux/freedesktop/JSONUserDefaults.h"
#include "tests/support/TemporaryFolder.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

void readEveryValue(const freedesktop::JSONUserDefaults& defaults, std::string_view key) {
  defaults.objectForKey(key);
  defaults.boolForKey(key);
  defaults.doubleForKey(key);
  defaults.arrayForKey(key);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto parsed = freedesktop::parsePreferences(text);

  // In memory, where the system has such a place: a million files are to be written.
  static const support::TemporaryFolder folder;
  std::error_code ignored;
  std::filesystem::remove_all(folder / "ostrel", ignored);
  folder.write("ostrel/preferences.json", std::string(text));
  freedesktop::JSONUserDefaults defaults(folder / "ostrel/preferences.json", {});
  std::string key = "a";
  if (parsed) {
    for (const auto& [name, value] : parsed->items()) {
      readEveryValue(defaults, name);
      key = name;
    }
  }
  const auto before = defaults.objectForKey(key);
  defaults.setObject({std::string("new")}, "behavior.new");
  defaults.flush();
  const freedesktop::JSONUserDefaults again(folder / "ostrel/preferences.json", {});
  if (key != "behavior.new") require(again.objectForKey(key) == before);
  require(folder.read("ostrel/preferences.json").size() > 0);
  return 0;
}
