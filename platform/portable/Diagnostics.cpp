#include "platform/Diagnostics.h"

#include "platform/portable/Desktop.h"

namespace ns {

std::vector<DiagnosticLine> titleBarButtonDiagnostics() { return desktop::Desktop::current().titleBarButtons(); }

std::optional<std::size_t> forgetTitleBarButtons(std::string_view painter) {
  return desktop::Desktop::current().forgetTitleBarButtons(painter);
}

}  // namespace ns
