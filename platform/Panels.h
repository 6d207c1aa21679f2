// Dialogs that wait for an answer.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ns {

enum class AlertStyle { Warning, Informational };

/// A message with buttons. Main thread only.
class Alert {
 public:
  void setAlertStyle(AlertStyle style) { style_ = style; }
  void setMessageText(std::string text) { messageText_ = std::move(text); }
  void setInformativeText(std::string text) { informativeText_ = std::move(text); }
  void addButtonWithTitle(std::string title) { buttonTitles_.push_back(std::move(title)); }
  /// Shows the alert and returns the index of the chosen button once there is one (Escape chooses the last).
  std::size_t runModal();

 private:
  AlertStyle style_ = AlertStyle::Warning;
  std::string messageText_;
  std::string informativeText_;
  std::vector<std::string> buttonTitles_;
};

/// A panel that lets the person choose one installed application. Main thread only.
class OpenPanel {
 public:
  /// Where browsing starts. A desktop that keeps its applications elsewhere starts there.
  void setDirectory(std::string path) { directory_ = std::move(path); }
  /// The title of the confirming button.
  void setPrompt(std::string prompt) { prompt_ = std::move(prompt); }
  void setMessage(std::string message) { message_ = std::move(message); }
  /// The path of the chosen application; none when cancelled.
  std::optional<std::string> runModal();

 private:
  std::string directory_;
  std::string prompt_;
  std::string message_;
};

}  // namespace ns
