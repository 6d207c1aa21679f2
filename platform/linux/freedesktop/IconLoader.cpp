#include "platform/linux/freedesktop/IconLoader.h"

#include <utility>

namespace freedesktop {
namespace {

IconLoader& iconLoader() {
  static IconLoader loader;
  return loader;
}

}  // namespace

void setIconLoader(IconLoader loader) { iconLoader() = std::move(loader); }

std::shared_ptr<ns::Image> loadIcon(const std::string& icon) { return iconLoader() ? iconLoader()(icon) : nullptr; }

}  // namespace freedesktop
