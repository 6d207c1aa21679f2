#include "platform/linux/qt/OpenPanel.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <vector>

#include "platform/Panels.h"
#include "platform/Text.h"
#include "platform/linux/freedesktop/DesktopEntries.h"
#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/Icons.h"
#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/MessageDialog.h"

namespace qt {
namespace {

constexpr int pathRole = Qt::UserRole;
constexpr int iconRole = Qt::UserRole + 1;

constexpr int iconSide = 24;

/// Loads an icon when its row is painted: a desktop has hundreds of applications.
class ApplicationModel final : public QStandardItemModel {
 public:
  using QStandardItemModel::QStandardItemModel;
  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::DecorationRole) return QStandardItemModel::data(index, role);
    QIcon& icon = icons_[index.row()];
    if (icon.isNull()) {
      // One size for all, so that the names stand in line.
      const auto image =
          imageWithIcon(applicationIcon(QStandardItemModel::data(index, iconRole).toString().toStdString()));
      for (const double scale : {1.0, 1.5, 2.0}) {
        const QPixmap picture = image->native().pixmap({iconSide, iconSide}, scale, {});
        // As it is on the chosen row too; the style would dye it.
        for (const auto mode : {QIcon::Normal, QIcon::Selected}) icon.addPixmap(picture, mode);
      }
    }
    return icon;
  }

 private:
  mutable std::map<int, QIcon> icons_;
};

/// The field and the list in the manner of the settings window.
QString chooserStyle() {
  const auto name = [](const QColor& color) { return color.name(QColor::HexArgb); };
  return QStringLiteral(
             "QLineEdit { background: %1; border: 1px solid %2; border-radius: 6px; padding: 5px 6px; }"
             "QLineEdit:focus { border: 2px solid %3; padding: 4px 5px; }"
             "QListView { background: %4; border: 1px solid %2; border-radius: 8px; padding: 4px; outline: none; }"
             "QListView:focus { border: 2px solid %3; padding: 3px; }"
             "QListView::item { border-radius: 5px; padding-left: 6px; color: %5; }"
             "QListView::item:selected { background: %7; color: %5; }"
             "QScrollBar:vertical { background: transparent; width: 10px; margin: 2px; }"
             "QScrollBar::handle:vertical { background: %6; border-radius: 3px; min-height: 24px; }"
             "QScrollBar::add-line, QScrollBar::sub-line { height: 0; }")
      .arg(name(color(ControlColor::Field)), name(color(ControlColor::Edge)),
           name(color(ns::Color::controlAccentColor())), name(color(ns::Color::controlBackgroundColor())),
           name(color(ns::Color::labelColor())), name(color(ControlColor::Scroller)),
           // Faint: on the full accent the icons of half the applications would drown.
           name(color(ns::Color::controlAccentColor().colorWithAlphaComponent(0.28))));
}

ApplicationModel* installedApplications(QObject* parent) {
  auto* const model = new ApplicationModel(parent);
  auto entries = freedesktop::DesktopEntries::shared().entries();
  std::erase_if(entries, [](const auto& entry) { return entry.hidden; });
  std::ranges::sort(entries, [](const auto& one, const auto& other) {
    return ns::localizedCaseInsensitiveCompare(one.name, other.name) == ns::ComparisonResult::Ascending;
  });
  for (const auto& entry : entries) {
    auto* const row = new QStandardItem(QString::fromStdString(entry.name));
    row->setData(QString::fromStdString(entry.path), pathRole);
    row->setData(QString::fromStdString(entry.icon), iconRole);
    row->setToolTip(QString::fromStdString(entry.path));
    row->setEditable(false);
    row->setSizeHint({0, 34});
    model->appendRow(row);
  }
  return model;
}

}  // namespace

ApplicationChooser::ApplicationChooser(const std::string& message, const std::string& prompt, QWidget* parent)
    : QDialog(parent),
      search_(new QLineEdit),
      list_(new QListView),
      shown_(new QSortFilterProxyModel(this)),
      confirm_(new DialogButton(QString::fromStdString(prompt.empty() ? "Open" : prompt))) {
  prepareDialog(*this);
  setStyleSheet(chooserStyle());
  shown_->setSourceModel(installedApplications(this));
  shown_->setFilterCaseSensitivity(Qt::CaseInsensitive);

  auto* const title = new QLabel(QString::fromStdString(message));
  title->setTextFormat(Qt::PlainText);
  title->setWordWrap(true);
  title->setFont(qt::font(ns::Font::systemFontOfSize(14, ns::FontWeight::Semibold)));
  search_->setPlaceholderText(QStringLiteral("Search"));
  search_->setAccessibleName(QStringLiteral("Search applications"));
  search_->setClearButtonEnabled(true);
  search_->installEventFilter(this);
  list_->setModel(shown_);
  list_->setIconSize({iconSide, iconSide});
  list_->setUniformItemSizes(true);
  list_->setAccessibleName(QStringLiteral("Applications"));
  list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);

  auto* const browse = new DialogButton(QStringLiteral("Browse…"));
  auto* const cancel = new DialogButton(QStringLiteral("Cancel"));
  confirm_->setDefault(true);
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addWidget(browse);
  buttons->addStretch();
  buttons->addWidget(cancel);
  buttons->addWidget(confirm_);
  auto* const whole = new QVBoxLayout(this);
  whole->setContentsMargins(18, 18, 18, 14);
  whole->setSpacing(12);
  if (!message.empty()) whole->addWidget(title);
  whole->addWidget(search_);
  whole->addWidget(list_);
  whole->addLayout(buttons);

  connect(search_, &QLineEdit::textChanged, this, &ApplicationChooser::filter);
  connect(list_, &QListView::doubleClicked, this, &ApplicationChooser::chooseCurrent);
  connect(confirm_, &QPushButton::clicked, this, &ApplicationChooser::chooseCurrent);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(browse, &QPushButton::clicked, this, &ApplicationChooser::browse);
  resize(440, 480);
  filter({});
  search_->setFocus();
}

void ApplicationChooser::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  // The desktop went from light to dark or back. A new style sheet brings this event, too.
  if (event->type() != QEvent::PaletteChange) return;
  if (const QString now = chooserStyle(); now != styleSheet()) setStyleSheet(now);
  // It has made these two forget theirs.
  search_->setFont(font());
  list_->setFont(font());
}

void ApplicationChooser::filter(const QString& text) {
  shown_->setFilterFixedString(text);
  // The first match is at hand for Return.
  list_->setCurrentIndex(shown_->index(0, 0));
  confirm_->setEnabled(list_->currentIndex().isValid());
}

bool ApplicationChooser::eventFilter(QObject* watched, QEvent* event) {
  if (watched == search_ && event->type() == QEvent::KeyPress) {
    switch (static_cast<const QKeyEvent*>(event)->key()) {
      case Qt::Key_Up:
      case Qt::Key_Down:
      case Qt::Key_PageUp:
      case Qt::Key_PageDown:
        // The list moves while the person goes on typing.
        QCoreApplication::sendEvent(list_, event);
        return true;
      default:
        break;
    }
  }
  return QDialog::eventFilter(watched, event);
}

void ApplicationChooser::chooseCurrent() {
  const QModelIndex current = list_->currentIndex();
  if (!current.isValid()) return;
  chosen_ = current.data(pathRole).toString().toStdString();
  accept();
}

void ApplicationChooser::browse() {
  QFileDialog files(this, {}, QDir::homePath(), QStringLiteral("Applications (*.desktop);;All files (*)"));
  prepareDialog(files);
  files.setFileMode(QFileDialog::ExistingFile);
  files.setOption(QFileDialog::DontResolveSymlinks);
  files.resize(720, 460);
  if (files.exec() != Accepted || files.selectedFiles().isEmpty()) return;
  chosen_ = files.selectedFiles().front().toStdString();
  accept();
}

}  // namespace qt

std::optional<std::string> ns::OpenPanel::runModal() {
  qt::ApplicationChooser chooser(message_, prompt_, qt::dialogParent());
  chooser.exec();
  return chooser.chosenPath();
}

#include "moc_OpenPanel.cpp"
