#include "chaos/chaos_scene.h"

#include "virtual_desktop/wait.h"
#include "virtual_desktop/xcb_reply.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace quorlo {

namespace {

constexpr std::string_view kClipboard = "CLIPBOARD";
constexpr const char* kProbe = "wp";
constexpr const char* kProbed = "(probed)";

std::string library() {
  nlohmann::json document{{"snippets", {{{"abbreviation", kProbe}, {"text", kProbed}}}}};
  for (const auto& [abbreviation, text] : Typist::abbreviations()) {
    document["snippets"].push_back({{"abbreviation", abbreviation}, {"text", text}});
  }
  return document.dump();
}

}  // namespace

ChaosScene::ChaosScene(const std::string& program, std::mt19937& random)
    : random_(random), program_(program), target_(desktop_), typist_(desktop_, target_, random) {
  auto* const x = desktop_.connection();
  const Reply<xcb_intern_atom_reply_t> atom(
      xcb_intern_atom_reply(x, xcb_intern_atom(x, 0, kClipboard.size(), kClipboard.data()), nullptr));
  if (!atom) throw std::runtime_error("The X server is gone");
  clipboardAtom_ = atom->atom;
  quorlo_.emplace(desktop_, program_, library(), StoredSettings{{"PasteBetweenSnippetPartsDelay", "0.05"}});
  ownClipboard("what the user copied first");
}

void ChaosScene::run(std::vector<std::string> words) {
  auto process = desktop_.start(std::move(words));
  process.waitForEnd(kPatience);
}

void ChaosScene::runBeside(std::vector<std::string> words) {
  programs_.push_back(desktop_.start(std::move(words)));
}

void ChaosScene::joinPrograms() {
  for (auto& each : programs_) each.waitForEnd(kPatience);
  programs_.clear();
}

ChildProcess& ChaosScene::ownClipboard(const std::string& text) {
  const auto file = desktop_.directory() / "clipboard.txt";
  writeFile(file, text);
  auto next = desktop_.start({"xclip", "-quiet", "-selection", "clipboard", "-in", file});
  const auto owns = [&] {
    auto* const x = desktop_.connection();
    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, clipboardAtom_), nullptr));
    return owner && desktop_.windows().processOf(owner->owner) == next.pid();
  };
  if (!waitUntil(owns)) throw std::runtime_error("The clipboard was not taken");
  clipboardOwner_.emplace(std::move(next));
  clipboard_ = text;
  return *clipboardOwner_;
}

bool ChaosScene::clipboardIsKept() {
  if (!clipboard_) return true;
  const auto file = desktop_.directory() / "pasted.txt";
  return waitUntil([&] {
    std::filesystem::remove(file);
    auto process = desktop_.start({"xclip", "-selection", "clipboard", "-out"}, file);
    return waitUntil([&] { return !process.running(); }, std::chrono::seconds(2)) &&
           readFile(file) == *clipboard_;
  });
}

pid_t ChaosScene::guard() {
  for (const auto& task :
       std::filesystem::directory_iterator("/proc/" + std::to_string(quorlo()) + "/task")) {
    std::ifstream children(task.path() / "children");
    for (pid_t child = 0; children >> child;) {
      if (readFile("/proc/" + std::to_string(child) + "/comm").starts_with("quorlo-keyboard")) return child;
    }
  }
  return 0;
}

void ChaosScene::signalQuorlo(int number) {
  quorlo_->process().signal(number);
}

void ChaosScene::endQuorlo(int number) {
  quorlo_->process().signal(number);
  quorlo_->process().waitForEnd(kPatience);
}

void ChaosScene::startQuorlo() {
  earlierLogs_ += quorlo_->log();
  quorlo_.reset();
  quorlo_.emplace(desktop_, program_, QuorloProgram::Start::doesNotWait);
}

bool ChaosScene::settle() {
  const TypedWord probe{std::string(kProbe) + " ", std::string(kProbed) + " ", TypedWord::Promise::mayExpand};
  return waitUntil([&] {
    typist_.type(probe);
    return typist_.waitForArrival() && typist_.lastLine() == probe.expansion;
  });
}

}  // namespace quorlo
