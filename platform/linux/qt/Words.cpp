#include "platform/linux/qt/Words.h"

#include <QHash>

namespace qt {
namespace {

constexpr Wording table[] = {
    {"Automatically start Ostrel when you log in to your Mac.", "Automatically start Ostrel when you log in."},
    {"Approval required: enable Ostrel in System Settings › General › Login Items & Extensions.",
     "Approval required: Ostrel was switched off among the applications that your desktop starts at login."},
    {"Not available: move Ostrel to the Applications folder and try again.",
     "Not available: the program is not where it was. Install it again and try again."},
    {"Yellow button centers the window", "Minimize button centers the window"},
    {"Left-click the yellow button to center the window horizontally. Off: the yellow button minimizes to the Dock as "
     "usual.",
     "Left-click the minimize button to center the window horizontally. Off: the button minimizes to the panel as "
     "usual."},
    {"Green button fills the screen", "Maximize button fills the screen"},
    {"Left-click the green button to fill the screen using your margins. Off: the green button keeps its normal "
     "full-screen behavior.",
     "Left-click the maximize button to fill the screen using your margins. Off: the button maximizes as usual."},
    {"Red button hides the app", "Close button hides the app"},
    {"Hides the whole app (like ⌘H) instead of closing the window. Only for windows that can also be minimized; "
     "pop-ups "
     "and dialogs close as usual.",
     "Hides all windows of the app instead of closing the one. Only for windows that can also be minimized; pop-ups "
     "and dialogs close as usual."},
    {"Grant access in System Settings, then Ostrel starts on its own.",
     "Choose the line above to grant access, then Ostrel starts on its own."},
    {"Left-click the yellow button to center the active window horizontally on the screen (can be turned off in "
     "General).",
     "Left-click the minimize button to center the window horizontally on the screen (can be turned off in General)."},
    {"Left-click the green button to make the window fill the screen using your configured margins.",
     "Left-click the maximize button to make the window fill the screen using your configured margins."},
    {"Optional: make the red button hide the whole app (⌘H) instead of closing — only for minimizable windows "
     "(configurable in General).",
     "Optional: make the close button hide the whole app instead of closing — only for minimizable windows "
     "(configurable in General)."},
    {"Hold ⌘, ⌥, ⌃ or ⇧ while clicking to get the button's native macOS behavior (e.g. ⌥-click for all windows).",
     "Hold Super, Alt, Ctrl or Shift while clicking to get the button's usual behavior."},
    {"Have Ostrel start automatically with your Mac (configurable in General).",
     "Have Ostrel start automatically when you log in (configurable in General)."},
};

}  // namespace

std::span<const Wording> wordings() { return table; }

QString inWordsOfThisDesktop(const QString& text) {
  static const auto known = [] {
    const auto decoded = [](std::string_view utf8) {
      return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    };
    QHash<QString, QString> result;
    for (const auto& [original, here] : table) result.insert(decoded(original), decoded(here));
    return result;
  }();
  return known.value(text, text);
}

}  // namespace qt
