#include "tests/interface/Person.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <cstdlib>

#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace person {
namespace {

QLineEdit* editorOf(const ns::TextField& field) { return field.native().widget->findChild<QLineEdit*>(); }

}  // namespace

void sitDown() { setenv("QT_QPA_PLATFORM", "offscreen", 0); }

void visit(ns::TextField& field) { editorOf(field)->setFocus(); }

void type(ns::TextField& field, const std::string& text) {
  auto* const editor = editorOf(field);
  editor->setFocus();
  editor->selectAll();
  QTest::keyClick(editor, Qt::Key_Delete);
  QTest::keyClicks(editor, QString::fromStdString(text));
}

void enter(ns::TextField& field, const std::string& text) {
  type(field, text);
  QTest::keyClick(editorOf(field), Qt::Key_Return);
}

void leave(ns::TextField& field) {
  QFocusEvent leaving(QEvent::FocusOut, Qt::TabFocusReason);
  QCoreApplication::sendEvent(editorOf(field), &leaving);
}

void choose(ns::PopUpButton& button, std::size_t index) {
  button.performClick();
  auto* const menu = button.native().widget->findChild<QMenu*>();
  menu->actions().at(static_cast<qsizetype>(index))->trigger();
  delete menu;
}

CGRect edgesOf(const ns::View& view) { return view.frame(); }

}  // namespace person
