// How files get their pictures: the user interface knows the icon theme, this folder knows what entries name.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace ns {
class Image;
}

namespace freedesktop {

/// Makes a picture from what an entry names as its icon: a theme name, an absolute path, or nothing.
using IconLoader = std::function<std::shared_ptr<ns::Image>(const std::string& icon)>;

/// Set by the user interface. Main thread only, as is loadIcon().
void setIconLoader(IconLoader loader);
/// Null only while there is no user interface.
std::shared_ptr<ns::Image> loadIcon(const std::string& icon);

}  // namespace freedesktop
