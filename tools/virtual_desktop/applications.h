#pragma once

#include "virtual_desktop/virtual_desktop.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quorlo {

// A real program with a field for text on a virtual desktop; reads back what arrived there. Starts active.
class Application {
 public:
  virtual ~Application() = default;

  void activate() { desktop_.windows().activate(window_); }
  xcb_window_t window() const { return window_; }
  ChildProcess& process() { return process_; }
  // A click in the middle of the text.
  void click();

  // What stands there now, UTF-8; may be behind what was typed.
  virtual std::string text() = 0;
  // Waits until the text is as expected; returns the last text seen, so that a failing comparison shows it.
  // The program must be active.
  virtual std::string textOnceItIs(const std::string& expected);

 protected:
  Application(VirtualDesktop& desktop, std::vector<std::string> words);

  VirtualDesktop& desktop_;

 private:
  ChildProcess process_;
  xcb_window_t window_;
};

// A terminal whose program takes every byte as it comes. Erasing is applied to the text.
class Xterm : public Application {
 public:
  explicit Xterm(VirtualDesktop& desktop, const std::string& name = "xterm",
                 const std::string& windowClass = "XTerm");
  std::string text() override;
  std::string bytes() const;  // as received

 private:
  std::filesystem::path file_;
};

// An editor that saves the file given at start on Ctrl+S; reading back saves.
class FileEditor : public Application {
 public:
  std::string text() override;
  std::string textOnceItIs(const std::string& expected) override;

 protected:
  FileEditor(VirtualDesktop& desktop, std::vector<std::string> words, std::filesystem::path file);

 private:
  std::filesystem::path file_;
};

// GTK 3.
class Mousepad : public FileEditor {
 public:
  explicit Mousepad(VirtualDesktop& desktop, const std::string& fileName = "mousepad.txt",
                    const std::string& text = {});
};

// Qt.
class Featherpad : public FileEditor {
 public:
  explicit Featherpad(VirtualDesktop& desktop, const std::string& fileName = "featherpad.txt");
};

// Our own rich-text editor (tests/desktop/apps); with kChat, Return sends and empties the field; with
// kCompleting, what is typed opens a popup that grabs the keyboard. As kRelaying, another process reads the
// clipboard for it. As kLate, it reads the clipboard a while after the paste chord, and obeys other keys meanwhile.
class RichEditor : public Application {
 public:
  enum class Kind { kEditor, kChat, kCompleting, kRelaying, kLate };

  // The program's path; every editor of a desktop has a name of its own.
  RichEditor(VirtualDesktop& desktop, const std::string& program, Kind kind = Kind::kEditor,
             const std::string& name = "rich-editor");
  std::string text() override;
  std::string html() const;
  std::string sent() const;  // lines

 private:
  std::filesystem::path directory_;
};

// Somebody else's clipboard (tests/desktop/apps); see clipboard_holder.cpp for the contents.
class ClipboardHolder {
 public:
  // Returns when the clipboard is taken.
  ClipboardHolder(VirtualDesktop& desktop, const std::string& program, std::vector<std::string> contents);
  // Type, size and hash of everything that it offers.
  const std::string& offers() const { return offers_; }

  // The same description of what the clipboard holds at the moment.
  static std::string show(VirtualDesktop& desktop, const std::string& program);

 private:
  std::filesystem::path output_;
  ChildProcess process_;
  std::string offers_;
};

}  // namespace quorlo
