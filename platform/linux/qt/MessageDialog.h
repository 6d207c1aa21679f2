// Small windows that say something and offer buttons.
#pragma once

#include <QDialog>
#include <QPushButton>
#include <functional>
#include <optional>
#include <string>

#include "platform/Color.h"

namespace qt {

/// A push button that looks like those of the settings window; the dialog's default one is filled with the accent.
class DialogButton final : public QPushButton {
  Q_OBJECT

 public:
  explicit DialogButton(const QString& title, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
};

struct MessageContent {
  /// Empty for the application's own icon.
  std::string symbol;
  ns::Color symbolColor = ns::Color::systemOrangeColor();
  QString message;
  QString informative;
  /// The first is at the end of the row. Escape and closing the window choose the last.
  QStringList buttons;
  /// Whether Return chooses the first.
  bool hasDefaultButton = true;
};

class MessageDialog final : public QDialog {
  Q_OBJECT

 public:
  explicit MessageDialog(const MessageContent& content, QWidget* parent = nullptr);
  /// Shows it before the other windows of the application and returns at once. `chosen` gets the index of the button,
  /// once; the dialog deletes itself.
  void showAndTell(std::function<void(std::size_t)> chosen);
  /// Shows it and waits for the answer: the index of the button.
  std::size_t ask();

 private:
  std::size_t answer() const;

  int lastButton_;
};

/// Applies the look of our dialogs to one with content of its own, and keeps it in front of the window that it belongs
/// to.
void prepareDialog(QDialog& dialog);
/// The window that a dialog belongs to; null when none of ours is open.
QWidget* dialogParent();

}  // namespace qt
