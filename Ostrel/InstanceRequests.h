// What a later start of the program asks of the running instance, and the answers.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Ostrel/OstrelController.h"
#include "platform/Diagnostics.h"

namespace ostrel {

/// The settings window's tabs by the names they have on the command line.
bool isTabName(std::string_view name);

// Requests.
inline constexpr std::string_view statusRequest = "status";
inline constexpr std::string_view buttonsRequest = "buttons";
/// Forgets what was learned about the title bars of that painter, of all when it is empty. The answer is the number of
/// kinds of title bars, empty where nothing has to be learned.
std::string forgetRequest(std::string_view painter);
/// Opens the settings at a tab; at the tab that was shown last when `tab` is empty.
std::string settingsRequest(std::string_view tab);

/// The answer to a request that is not known: the two are of different versions.
inline constexpr std::string_view unknownRequest = "unknown request";

/// The running instance's side: the answer to any request, known or not. `openSettings` gets a tab's name or nothing.
std::string answerRequest(std::string_view request, const OstrelController& controller,
                          const std::function<void(const std::string& tab)>& openSettings);

/// The asking side: the lines of an answer to statusRequest or buttonsRequest.
std::vector<ns::DiagnosticLine> answeredLines(std::string_view answer);

}  // namespace ostrel
