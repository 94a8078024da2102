// test-keyboard-taker FILE --locker | --prompt
//
// Takes the keyboard for itself, as a lock screen does that asks the window manager for nothing, or as a
// prompt for a passphrase with a window of its own. Writes every character that its keys make to FILE, which
// is there once the keyboard is taken. Escape ends it.
#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace {

class Taker : public QWidget {
 public:
  Taker(const QString& file, bool isLocker) : file_(file) {
    if (isLocker) setWindowFlags(Qt::Window | Qt::BypassWindowManagerHint);
    setWindowTitle("Passphrase");
    resize(300, 100);
    connect(&timer_, &QTimer::timeout, this, [this] { take(); });
    timer_.start(10);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Escape) return QApplication::quit();
    file_.write(event->text().toUtf8());
    file_.flush();
  }

 private:
  // Refused until the window is on the screen.
  void take() {
    if (!windowHandle() || !windowHandle()->setKeyboardGrabEnabled(true)) return;
    timer_.stop();
    if (!file_.open(QIODevice::WriteOnly)) qFatal("Cannot write %s", qPrintable(file_.fileName()));
  }

  QFile file_;
  QTimer timer_;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList words = QCoreApplication::arguments();
  if (words.size() < 3) qFatal("usage: test-keyboard-taker FILE --locker | --prompt");
  Taker taker(words[1], words[2] == "--locker");
  taker.show();
  return QApplication::exec();
}
