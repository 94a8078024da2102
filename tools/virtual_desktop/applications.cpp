#include "virtual_desktop/applications.h"

#include "virtual_desktop/wait.h"

#include <stdexcept>
#include <utility>

namespace quorlo {

namespace {

std::filesystem::path fileOf(const VirtualDesktop& desktop, const std::string& name,
                             const std::string& text = {}) {
  const auto path = desktop.directory() / name;
  writeFile(path, text);
  return path;
}

std::filesystem::path freshDirectory(const VirtualDesktop& desktop, const std::string& name) {
  const auto path = desktop.directory() / name;
  std::filesystem::remove_all(path);
  std::filesystem::create_directory(path);
  return path;
}

std::filesystem::path freshPath(const VirtualDesktop& desktop, const std::string& name) {
  const auto path = desktop.directory() / name;
  std::filesystem::remove(path);
  return path;
}

// Without an instance shared over the bus, and saving exactly what stands in the window.
std::filesystem::path featherpadFile(const VirtualDesktop& desktop, const std::string& name) {
  std::filesystem::create_directories(desktop.configHome() / "featherpad");
  writeFile(desktop.configHome() / "featherpad" / "fp.conf", "[text]\nappendEmptyLine=false\n");
  return fileOf(desktop, name);
}

void eraseLast(std::string& utf8) {
  while (!utf8.empty() && (static_cast<unsigned char>(utf8.back()) & 0xC0U) == 0x80U) utf8.pop_back();
  if (!utf8.empty()) utf8.pop_back();
}

}  // namespace

Application::Application(VirtualDesktop& desktop, std::vector<std::string> words)
    : desktop_(desktop),
      process_(desktop.start(std::move(words))),
      window_(desktop.windows().waitForWindowOf(process_.pid())) {
  activate();
}

void Application::click() {
  const auto place = desktop_.windows().placeOf(window_);
  desktop_.pointer().click(place.x + place.width / 2, place.y + place.height / 2);
}

std::string Application::textOnceItIs(const std::string& expected) {
  std::string seen;
  waitUntil([&] { return (seen = text()) == expected; });
  return seen;
}

Xterm::Xterm(VirtualDesktop& desktop, const std::string& name, const std::string& windowClass)
    : Application(desktop, {"xterm", "-name", name, "-class", windowClass, "-u8", "-fa", "DejaVu Sans Mono",
                            "-fs", "14", "-e", "sh", "-c",
                            "stty raw -echo && exec cat >'" + fileOf(desktop, name + ".txt").string() + "'"}),
      file_(desktop.directory() / (name + ".txt")) {}

std::string Xterm::bytes() const {
  return readFile(file_);
}

std::string Xterm::text() {
  std::string result;
  for (const char byte : bytes()) {
    if (byte == '\b' || byte == '\x7f') {
      eraseLast(result);
    } else {
      result += byte == '\r' ? '\n' : byte;
    }
  }
  return result;
}

FileEditor::FileEditor(VirtualDesktop& desktop, std::vector<std::string> words, std::filesystem::path file)
    : Application(desktop, std::move(words)), file_(std::move(file)) {}

std::string FileEditor::text() {
  desktop_.keyboard().tap("Ctrl+s");
  return readFile(file_);
}

std::string FileEditor::textOnceItIs(const std::string& expected) {
  // Saving may overtake what is still on its way, so it is asked for again from time to time.
  std::string seen;
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  do {
    desktop_.keyboard().tap("Ctrl+s");
    waitUntil([&] { return (seen = readFile(file_)) == expected; }, std::chrono::milliseconds(300));
  } while (seen != expected && std::chrono::steady_clock::now() < deadline);
  return seen;
}

Mousepad::Mousepad(VirtualDesktop& desktop, const std::string& fileName, const std::string& text)
    : FileEditor(desktop, {"mousepad", "--disable-server", fileOf(desktop, fileName, text)},
                 desktop.directory() / fileName) {}

Featherpad::Featherpad(VirtualDesktop& desktop, const std::string& fileName)
    : FileEditor(desktop, {"featherpad", "--standalone", featherpadFile(desktop, fileName)},
                 desktop.directory() / fileName) {}

namespace {

const char* argumentOf(RichEditor::Kind kind) {
  switch (kind) {
    case RichEditor::Kind::kChat:
      return "--chat";
    case RichEditor::Kind::kCompleting:
      return "--completing";
    case RichEditor::Kind::kRelaying:
      return "--relaying";
    case RichEditor::Kind::kLate:
      return "--late";
    case RichEditor::Kind::kEditor:
      break;
  }
  return "--editor";
}

}  // namespace

RichEditor::RichEditor(VirtualDesktop& desktop, const std::string& program, Kind kind,
                       const std::string& name)
    : Application(desktop, {program, freshDirectory(desktop, name), argumentOf(kind)}),
      directory_(desktop.directory() / name) {}

std::string RichEditor::text() {
  return readFile(directory_ / "plain.txt");
}

std::string RichEditor::html() const {
  return readFile(directory_ / "rich.html");
}

std::string RichEditor::sent() const {
  return readFile(directory_ / "sent.txt");
}

ClipboardHolder::ClipboardHolder(VirtualDesktop& desktop, const std::string& program,
                                 std::vector<std::string> contents)
    : output_(freshPath(desktop, "clipboard-holder.txt")), process_([&] {
        contents.insert(contents.begin(), {program, "own"});
        return desktop.start(std::move(contents), output_);
      }()) {
  if (!waitUntil([&] { return (offers_ = readFile(output_)).ends_with(".\n"); })) {
    throw std::runtime_error("The clipboard holder did not start: " + offers_);
  }
}

std::string ClipboardHolder::show(VirtualDesktop& desktop, const std::string& program) {
  const auto output = freshPath(desktop, "clipboard-shown.txt");
  auto process = desktop.start({program, "show"}, output);
  process.waitForEnd(kPatience);
  return readFile(output);
}

}  // namespace quorlo
