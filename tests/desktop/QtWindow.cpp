// A Qt application for the desktop tests: a window of an ordinary kind, with a text field.
#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  QMainWindow window;
  window.setWindowTitle("Qt window");
  window.setCentralWidget(new QLineEdit("some words to select", &window));
  window.resize(420, 260);
  window.show();
  return QApplication::exec();
}
