// Menus, alerts, the consent prompt and the application chooser, off screen.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <string>

#include "platform/Menu.h"
#include "platform/Panels.h"
#include "platform/linux/freedesktop/Consent.h"
#include "platform/linux/freedesktop/IconLoader.h"
#include "platform/linux/qt/ImageNative.h"
#include "platform/linux/qt/MenuWidget.h"
#include "platform/linux/qt/MessageDialog.h"
#include "platform/linux/qt/OpenPanel.h"
#include "platform/linux/qt/Symbols.h"
#include "tests/interface/qt/DialogsHome.h"

namespace {

using namespace std::string_literals;

template <typename Widget>
Widget* shownDialog() {
  for (auto* widget : QApplication::topLevelWidgets()) {
    if (auto* const found = qobject_cast<Widget*>(widget); found && found->isVisible()) return found;
  }
  return nullptr;
}

template <typename Dialog>
QPushButton* buttonTitled(const Dialog& dialog, const char* title) {
  for (auto* button : dialog.template findChildren<QPushButton*>()) {
    if (button->text() == QString::fromUtf8(title)) return button;
  }
  return nullptr;
}

/// Runs in the loop of the dialog that comes next.
template <typename Dialog>
void whenShown(std::function<void(Dialog&)> act) {
  QTimer::singleShot(0, qApp, [act = std::move(act)] {
    ASSERT_TRUE(QTest::qWaitFor([] { return shownDialog<Dialog>() != nullptr; }));
    act(*shownDialog<Dialog>());
  });
}

struct Target : std::enable_shared_from_this<Target> {
  void act() { ++count; }
  int count = 0;
};

TEST(MenuWidget, ShowsItemsAsTheyAreAndActsOnKeysAfterClosing) {
  const auto target = std::make_shared<Target>();
  ns::Menu menu;
  const auto settings = std::make_shared<ns::MenuItem>("Salt & Pepper", ",");
  settings->setTarget<Target>(target, &Target::act);
  settings->setImage(ns::Image::imageWithSystemSymbolName("gearshape"));
  menu.addItem(settings);
  menu.addItem(ns::MenuItem::separatorItem());
  menu.addItem(std::make_shared<ns::MenuItem>("Nobody’s", "q"));

  qt::MenuWidget widget(menu);
  const auto actions = widget.actions();
  ASSERT_EQ(actions.size(), 3);
  EXPECT_EQ(actions[0]->text(), "Salt && Pepper");  // no mnemonic
  EXPECT_EQ(actions[0]->shortcut(), QKeySequence("Ctrl+,"));
  EXPECT_FALSE(actions[0]->icon().isNull());
  EXPECT_TRUE(actions[1]->isSeparator());
  EXPECT_FALSE(actions[2]->isEnabled());

  widget.popup({10, 10});
  const QImage picture = widget.grab().toImage();
  EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0) << "round corners";
  EXPECT_EQ(qAlpha(picture.pixel(0, picture.height() / 2)), 255);
  QTest::keyClick(&widget, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_TRUE(widget.isVisible());
  QTest::keyClick(&widget, Qt::Key_Comma, Qt::ControlModifier);
  EXPECT_FALSE(widget.isVisible());
  EXPECT_EQ(target->count, 0);
  EXPECT_TRUE(QTest::qWaitFor([&] { return target->count == 1; }));
}

TEST(Alert, AnswersWithTheChosenButton) {
  ns::Alert alert;
  alert.setMessageText("Couldn’t enable <b>it</b>");
  alert.setInformativeText("No space left on device");
  alert.addButtonWithTitle("Try Again");
  alert.addButtonWithTitle("Cancel");
  const std::pair<std::function<void(qt::MessageDialog&)>, std::size_t> cases[] = {
      {[](auto& dialog) { QTest::keyClick(dialog.focusWidget(), Qt::Key_Return); }, 0},
      {[](auto& dialog) { QTest::keyClick(buttonTitled(dialog, "Cancel"), Qt::Key_Return); }, 1},
      {[](auto& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }, 1},
      {[](auto& dialog) { dialog.close(); }, 1},
      {[](auto& dialog) { buttonTitled(dialog, "Cancel")->click(); }, 1},
      {[](auto& dialog) {
         const auto labels = dialog.template findChildren<QLabel*>();
         ASSERT_EQ(labels.size(), 2);
         EXPECT_EQ(labels[0]->textFormat(), Qt::PlainText);
         EXPECT_EQ(labels[1]->text(), "No space left on device");
         // The default button is at the end of the row.
         EXPECT_GT(buttonTitled(dialog, "Try Again")->x(), buttonTitled(dialog, "Cancel")->x());
         dialog.reject();
       },
       1},
  };
  for (const auto& [act, answer] : cases) {
    whenShown<qt::MessageDialog>(act);
    EXPECT_EQ(alert.runModal(), answer);
  }
}

TEST(ConsentPrompt, AsksOneAtATimeAndRecordsTheAnswer) {
  auto& consent = freedesktop::Consent::shared();
  const auto answer = [](const char* title) {
    auto* const dialog = shownDialog<qt::MessageDialog>();
    ASSERT_NE(dialog, nullptr);
    ASSERT_NE(buttonTitled(*dialog, title), nullptr);
    buttonTitled(*dialog, title)->click();
  };
  const auto openDialogs = [] {
    return std::ranges::count_if(QApplication::topLevelWidgets(), [](auto* widget) {
      return widget->isVisible() && qobject_cast<qt::MessageDialog*>(widget);
    });
  };
  consent.prompt();
  consent.prompt();
  EXPECT_EQ(openDialogs(), 1);
  // One sees who asks.
  const QImage icon = qt::drawApplicationPicture(60, 1).toImage();
  const QImage seen = shownDialog<qt::MessageDialog>()->grab(QRect(20, 20, 60, 60)).toImage();
  for (const QPoint point : {QPoint(12, 30), QPoint(30, 16), QPoint(30, 30), QPoint(30, 48)}) {
    EXPECT_EQ(seen.pixelColor(point), icon.pixelColor(point)) << point.x() << ',' << point.y();
  }
  // A key that was meant for another window allows nothing.
  QTest::keyClick(shownDialog<qt::MessageDialog>(), Qt::Key_Return);
  QTest::keyClick(shownDialog<qt::MessageDialog>(), Qt::Key_Space);
  EXPECT_FALSE(consent.isTrusted());
  EXPECT_EQ(openDialogs(), 1);
  QTest::keyClick(shownDialog<qt::MessageDialog>(), Qt::Key_Escape);
  EXPECT_FALSE(consent.isTrusted());

  consent.prompt();
  answer("Allow");
  EXPECT_TRUE(consent.isTrusted());
  consent.prompt();
  answer("Keep Access");
  EXPECT_TRUE(consent.isTrusted());
  consent.prompt();
  answer("Withdraw Access");
  EXPECT_FALSE(consent.isTrusted());
  EXPECT_EQ(openDialogs(), 0);
}

TEST(OpenPanel, ListsApplicationsAndFindsThemByTyping) {
  ns::OpenPanel panel;
  panel.setPrompt("Exclude");
  panel.setMessage("Choose an app to exclude from Ostrel.");
  const auto rows = [](qt::ApplicationChooser& chooser) {
    QStringList names;
    const auto* model = chooser.findChild<QListView*>()->model();
    for (int row = 0; row < model->rowCount(); ++row) names += model->index(row, 0).data().toString();
    return names;
  };
  whenShown<qt::ApplicationChooser>([&](auto& chooser) {
    EXPECT_EQ(rows(chooser), (QStringList{"alpha", "Beta (Flatpak)", "Gamma"}));  // the hidden one is not there
    auto* const search = chooser.template findChild<QLineEdit*>();
    QTest::keyClicks(search, "a");
    QTest::keyClick(search, Qt::Key_Down);
    QTest::keyClick(search, Qt::Key_Down);
    QTest::keyClick(search, Qt::Key_Return);
  });
  EXPECT_EQ(panel.runModal(), dialogs::home() + "/share/applications/gamma.desktop");

  whenShown<qt::ApplicationChooser>([&](auto& chooser) {
    QTest::keyClicks(chooser.template findChild<QLineEdit*>(), "FLAT");
    EXPECT_EQ(rows(chooser), QStringList{"Beta (Flatpak)"});
    QTest::keyClicks(chooser.template findChild<QLineEdit*>(), "x");
    EXPECT_FALSE(buttonTitled(chooser, "Exclude")->isEnabled());
    QTest::keyClick(&chooser, Qt::Key_Escape);
  });
  EXPECT_EQ(panel.runModal(), std::nullopt);
}

TEST(FileIcons, AreThereForEveryName) {
  for (const auto& name : {"not-in-any-theme"s, "/missing.png"s, ""s, "gone.svg"s}) {
    const auto icon = freedesktop::loadIcon(name);
    ASSERT_NE(icon, nullptr) << name;
    EXPECT_FALSE(icon->native().pixmap({22, 22}, 1.0, Qt::black).isNull()) << name;
  }
  const auto own = freedesktop::loadIcon(dialogs::home() + "/red.png");
  EXPECT_EQ(own->native().pixmap({22, 22}, 1.0, Qt::black).toImage().pixelColor(11, 11), QColor(Qt::red));
}

}  // namespace
