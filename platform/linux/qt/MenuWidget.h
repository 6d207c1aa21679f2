// A menu as a pop-up.
#pragma once

#include <QMenu>

#include "platform/Menu.h"

namespace qt {

/// Shows what is in a menu at the time of its making. An item's action runs after the pop-up has gone; a key
/// equivalent works while it is open. Main thread only.
class MenuWidget final : public QMenu {
  Q_OBJECT

 public:
  explicit MenuWidget(const ns::Menu& menu, QWidget* parent = nullptr);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace qt
