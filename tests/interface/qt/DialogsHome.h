// The home of the person who meets the dialogs.
#pragma once

#include <string>

namespace dialogs {

/// A folder that holds share/applications with a few applications, and where everything that is kept goes.
const std::string& home();

}  // namespace dialogs
