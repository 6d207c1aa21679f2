#include "platform/Screen.h"

#include <utility>

#include "platform/portable/Desktop.h"

namespace ns {

std::vector<Screen> Screen::screens() {
  std::vector<Screen> screens;
  for (desktop::Screen& each : desktop::Desktop::current().screens()) {
    Screen screen{std::move(each.localizedName), {}, each.scale};
    if (each.number) screen.deviceDescription.emplace("NSScreenNumber", std::move(*each.number));
    screens.push_back(std::move(screen));
  }
  return screens;
}

}  // namespace ns
