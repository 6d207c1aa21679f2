#include "platform/linux/x11/XSettings.h"

#include <cstddef>
#include <variant>

#include "platform/linux/x11/Properties.h"

namespace x11 {

namespace {

/// Takes one piece after another from the front. Once something is missing, so is all that follows.
class Reader {
 public:
  explicit Reader(std::string_view contents) : rest_(contents) {}

  bool hasMissed() const { return hasMissed_; }
  void setMostSignificantFirst(bool first) { mostSignificantFirst_ = first; }

  std::string_view bytes(std::size_t length) {
    if (hasMissed_ || length > rest_.size()) {
      hasMissed_ = true;
      return {};
    }
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return taken;
  }
  /// 0 when it is missing.
  std::uint32_t number(std::size_t size) {
    std::uint32_t value = 0;
    for (std::string_view left = bytes(size); !left.empty();) {
      value = value << 8U | static_cast<unsigned char>(mostSignificantFirst_ ? left.front() : left.back());
      mostSignificantFirst_ ? left.remove_prefix(1) : left.remove_suffix(1);
    }
    return value;
  }
  std::string_view text(std::size_t length) {
    const std::string_view taken = bytes(length);
    bytes((4 - length % 4) % 4);  // each text is filled up to whole words
    return taken;
  }

 private:
  std::string_view rest_;
  bool mostSignificantFirst_ = false;
  bool hasMissed_ = false;
};

using Value = std::variant<std::int32_t, std::string>;

/// The value of that name; none also for a colour.
std::optional<Value> find(std::string_view contents, std::string_view name) {
  constexpr std::size_t word = 4;
  enum Type : std::uint32_t { Integer, Text, Color };
  Reader reader(contents);
  reader.setMostSignificantFirst(reader.number(1) != 0);
  reader.bytes(3 + word);  // unused, and the serial number of the whole
  for (std::uint32_t left = reader.number(word); left > 0 && !reader.hasMissed(); --left) {
    const std::uint32_t type = reader.number(1);
    reader.bytes(1);
    const bool isWanted = reader.text(reader.number(2)) == name;
    reader.bytes(word);  // when it changed last
    std::optional<Value> value;
    switch (type) {
      case Integer:
        value = static_cast<std::int32_t>(reader.number(word));
        break;
      case Text:
        value = std::string(reader.text(reader.number(word)));
        break;
      case Color:
        reader.bytes(2 * word);
        break;
      default:
        return std::nullopt;  // how long it is nobody knows
    }
    if (isWanted) return reader.hasMissed() ? std::nullopt : value;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::int32_t> xsettingsNumber(std::string_view contents, std::string_view name) {
  const auto value = find(contents, name);
  const auto* number = value ? std::get_if<std::int32_t>(&*value) : nullptr;
  return number == nullptr ? std::nullopt : std::optional(*number);
}

std::optional<std::string> xsettingsText(std::string_view contents, std::string_view name) {
  const auto value = find(contents, name);
  const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
  return text == nullptr ? std::nullopt : std::optional(*text);
}

std::string readXSettings(Connection& connection) {
  constexpr std::uint32_t longestInWords = 16'384;  // more than 64 KiB is nobody's
  const auto manager = connection.reply(xcb_get_selection_owner_reply,
                                        xcb_get_selection_owner(connection.get(), connection.atom("_XSETTINGS_S0")));
  if (!manager || manager->owner == XCB_WINDOW_NONE) return {};
  const auto cookie =
      requestProperty(connection, manager->owner, connection.atom("_XSETTINGS_SETTINGS"), longestInWords);
  return propertyText(receiveProperty(connection, cookie));
}

}  // namespace x11
