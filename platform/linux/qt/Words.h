// The application's sentences that name what only a Mac has, in words of this desktop.
#pragma once

#include <QString>
#include <span>
#include <string_view>

namespace qt {

struct Wording {
  /// As the application says it, to the letter.
  std::string_view text;
  std::string_view here;
};
std::span<const Wording> wordings();

/// To be asked where a text reaches the screen or assistive technology: what is shown of it, mostly itself. Any thread.
QString inWordsOfThisDesktop(const QString& text);

}  // namespace qt
