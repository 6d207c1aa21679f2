// The dialog that lets the person choose an installed application.
#pragma once

#include <QDialog>
#include <optional>
#include <string>

class QLineEdit;
class QListView;
class QPushButton;
class QSortFilterProxyModel;

namespace qt {

class ApplicationChooser final : public QDialog {
  Q_OBJECT

 public:
  ApplicationChooser(const std::string& message, const std::string& prompt, QWidget* parent = nullptr);
  /// The path of the desktop entry that was chosen; none before, and after Cancel.
  std::optional<std::string> chosenPath() const { return chosen_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void filter(const QString& text);
  void chooseCurrent();
  void browse();

  QLineEdit* search_;
  QListView* list_;
  QSortFilterProxyModel* shown_;
  QPushButton* confirm_;
  std::optional<std::string> chosen_;
};

}  // namespace qt
