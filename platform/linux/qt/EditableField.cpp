// A field to type in.
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>

#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/FocusRing.h"
#include "platform/linux/qt/TextNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace qt {
namespace {

constexpr double cornerRadius = 6;
constexpr int textInset = 6;

struct FieldNative;

/// The toolkit's editor without its frame, which the view draws.
class Editor final : public QLineEdit {
 public:
  explicit Editor(FieldNative& field);

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  FieldNative& field_;
};

struct FieldNative final : TextNative {
  FieldNative() : editor(new Editor(*this)) { styleChanged(); }

  std::optional<double> naturalHeight(double) const override { return 24; }
  bool canFocus() const override { return true; }
  double focusRadius() const override { return cornerRadius; }
  void takeFocus(Qt::FocusReason reason) override { editor->setFocus(reason); }
  void laidOut() override {
    editor->setGeometry(widget->contentBounds().toRect().adjusted(textInset - 2, 1, 2 - textInset, -1));
  }

  void paint(QPainter& painter, const QRectF& bounds) override {
    painter.setPen(Qt::NoPen);
    painter.setBrush(qt::color(ControlColor::Field));
    painter.drawRoundedRect(bounds, cornerRadius, cornerRadius);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(qt::color(ControlColor::Edge), 1));
    painter.drawRoundedRect(bounds.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius - 0.5, cornerRadius - 0.5);
  }

  void styleChanged() override {
    editor->setFont(qt::font(font));
    editor->setAlignment(alignment == ns::TextAlignment::Right ? Qt::AlignRight | Qt::AlignAbsolute : Qt::AlignLeading);
    appearanceChanged();
    contentChanged();
  }
  void appearanceChanged() override {
    QPalette palette = editor->palette();
    palette.setColor(QPalette::Text, qt::color(textColor));
    palette.setColor(QPalette::Base, Qt::transparent);
    editor->setPalette(palette);
  }

  void setText(const QString& wanted) override {
    accepted = wanted;
    isEdited = false;
    if (editor->text() != wanted) editor->setText(wanted);
  }
  /// What is typed but not accepted yet does not count when the formatter refuses it.
  QString text() const override {
    const QString typed = editor->text();
    return !formatter || number(typed) ? typed : accepted;
  }

  /// Return: the action, then the end of editing; the text is ready to be typed over.
  void commit() {
    const auto keep = keepAlive();
    if (!settle()) return;
    send();
    endEditing();
    editor->selectAll();
  }

  void focusLost() {
    const auto keep = keepAlive();
    const bool wasEdited = isEdited;
    if (settle() && wasEdited) endEditing();
  }

  /// Keeps what the formatter accepts and puts back the old text otherwise.
  bool settle() {
    isEdited = false;
    if (!formatter) {
      accepted = editor->text();
      return true;
    }
    const auto value = number(editor->text());
    if (value) accepted = QString::number(static_cast<qlonglong>(*value));
    editor->setText(accepted);
    return value.has_value();
  }

  void endEditing() {
    if (const auto strong = delegate.lock()) strong->controlTextDidEndEditing(static_cast<ns::TextField&>(*view));
  }

  void press() override { commit(); }

  bool mousePressed(QPointF) override {
    editor->setFocus(Qt::MouseFocusReason);
    return true;
  }

  AccessibleFacts accessibleFacts() const override {
    auto facts = TextNative::accessibleFacts();
    editor->setAccessibleName(facts.name);
    return facts;
  }

  /// A child of the widget, which destroys it.
  Editor* editor;
  /// What the field showed before the person typed.
  QString accepted;
  bool isEdited = false;
};

Editor::Editor(FieldNative& field) : QLineEdit(field.widget), field_(field) {
  setFrame(false);
  setAttribute(Qt::WA_MacShowFocusRect, false);
  setContextMenuPolicy(Qt::NoContextMenu);
  QObject::connect(this, &QLineEdit::textEdited, this, [this] { field_.isEdited = true; });
}

void Editor::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  showFocusRing(field_);
}

void Editor::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  auto* const native = field_.widget->native();
  if (!native) return;
  hideFocusRing(field_);
  // The window's going to the back, or a menu, is no end of editing.
  if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason) field_.focusLost();
}

void Editor::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      field_.commit();
      return;
    case Qt::Key_Escape:
      if (!field_.isEdited) break;
      field_.isEdited = false;
      setText(field_.accepted);
      selectAll();
      return;
    default:
      QLineEdit::keyPressEvent(event);
      return;
  }
  event->ignore();
}

}  // namespace

std::unique_ptr<TextNative> makeEditableField() { return std::make_unique<FieldNative>(); }

}  // namespace qt
