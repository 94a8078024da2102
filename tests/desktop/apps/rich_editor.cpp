// test-rich-editor DIRECTORY [--chat] [--completing] [--relaying] [--late]
//
// A rich-text editor that writes what it holds to DIRECTORY/plain.txt and rich.html after every change. With
// --chat, Return sends: the text is appended as a line to DIRECTORY/sent.txt and the field emptied.
// With --completing, a popup that grabs the keyboard offers completions of what was typed.
// With --relaying, another process reads the clipboard for the editor, as in compatibility layers.
// With --late, it reads the clipboard 0.3 s after the paste chord and obeys other keys meanwhile, as editors
// do that ask for the clipboard and wait for the answer in their event loop.
#include <QApplication>
#include <QCompleter>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QProcess>
#include <QSaveFile>
#include <QTextEdit>
#include <QTimer>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kLate{300};

class Editor : public QTextEdit {
 public:
  Editor(const QString& directory, bool chat, bool completing, bool relaying, bool late)
      : directory_(directory), chat_(chat), relaying_(relaying), late_(late) {
    setWindowTitle("Rich editor");
    setFontPointSize(20);
    connect(this, &QTextEdit::textChanged, this, [this] { write(); });
    if (completing) {
      completer_.setWidget(this);
      completer_.setCompletionMode(QCompleter::UnfilteredPopupCompletion);
      connect(this, &QTextEdit::textChanged, this, [this] { completer_.complete(QRect(0, 40, 200, 20)); });
    }
    write();
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (chat_ && event->key() == Qt::Key_Return) return send();
    if (relaying_ && event->matches(QKeySequence::Paste)) return pasteFromRelay();
    if (late_ && event->matches(QKeySequence::Paste))
      return QTimer::singleShot(kLate, this, [this] { paste(); });
    QTextEdit::keyPressEvent(event);
  }

 private:
  void write() {
    replace("rich.html", toHtml().toUtf8());
    replace("plain.txt", toPlainText().toUtf8());  // last: who sees it finds the other as new
  }

  void replace(const QString& name, const QByteArray& content) {
    QSaveFile file(directory_.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) < 0 || !file.commit()) {
      qFatal("Cannot write %s", qPrintable(file.fileName()));
    }
  }

  void send() {
    QFile sent(directory_.filePath("sent.txt"));
    if (!sent.open(QIODevice::Append) || sent.write(toPlainText().toUtf8() + "\n") < 0) qFatal("Cannot send");
    sent.close();
    clear();
  }

  void pasteFromRelay() {
    QProcess relay;
    relay.start("xclip", {"-o", "-selection", "clipboard", "-t", "UTF8_STRING"});
    if (!relay.waitForFinished()) qFatal("The relay does not answer");
    insertPlainText(QString::fromUtf8(relay.readAllStandardOutput()));
  }

  QDir directory_;
  bool chat_;
  bool relaying_;
  bool late_;
  QCompleter completer_{QStringList{"one", "two"}};
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList words = QCoreApplication::arguments();
  if (words.size() < 2)
    qFatal("usage: test-rich-editor DIRECTORY [--chat] [--completing] [--relaying] [--late]");
  Editor editor(words[1], words.contains("--chat"), words.contains("--completing"),
                words.contains("--relaying"), words.contains("--late"));
  editor.resize(600, 300);
  editor.show();
  return QApplication::exec();
}
