#include "desktop/quorlo_desktop_test.h"

#include <nlohmann/json.hpp>

#include <iostream>

namespace quorlo {

std::unique_ptr<VirtualDesktop> QuorloDesktopTest::desktop_;

void QuorloDesktopTest::SetUpTestSuite() {
  desktop_ = std::make_unique<VirtualDesktop>();
}

void QuorloDesktopTest::TearDownTestSuite() {
  desktop_.reset();
}

void QuorloDesktopTest::TearDown() {
  keyboard().releaseAll();
  if (HasFailure() && quorlo_) std::cerr << "Quorlo wrote:\n" << quorlo_->log() << "\n";
  quorlo_.reset();
}

std::string QuorloDesktopTest::libraryOf(const std::vector<std::pair<std::string, std::string>>& snippets) {
  nlohmann::json document{{"snippets", nlohmann::json::array()}};
  for (const auto& [abbreviation, text] : snippets) {
    document["snippets"].push_back({{"abbreviation", abbreviation}, {"text", text}});
  }
  return document.dump();
}

std::string QuorloDesktopTest::usualLibrary() {
  return libraryOf({{"sig", "Kind regards, Ada"}, {"brb", "be right back"}});
}

void QuorloDesktopTest::startQuorlo(const std::string& library, const StoredSettings& settings) {
  // A short pause between pieces; tests about timing set the usual one.
  StoredSettings all{{"PasteBetweenSnippetPartsDelay", "0.05"}};
  for (const auto& [key, value] : settings) all[key] = value;
  quorlo_.reset();  // only one runs at a time
  quorlo_ = std::make_unique<QuorloProgram>(*desktop_, QUORLO, library, all);
}

void QuorloDesktopTest::restartQuorlo() {
  quorlo_.reset();
  quorlo_ = std::make_unique<QuorloProgram>(*desktop_, QUORLO);
}

std::unique_ptr<RichEditor> QuorloDesktopTest::openRichEditor(RichEditor::Kind kind) {
  return std::make_unique<RichEditor>(*desktop_, RICH_EDITOR, kind);
}

std::unique_ptr<ClipboardHolder> QuorloDesktopTest::fillClipboard(std::vector<std::string> contents) {
  return std::make_unique<ClipboardHolder>(*desktop_, CLIPBOARD_HOLDER, std::move(contents));
}

std::string QuorloDesktopTest::clipboard() {
  return ClipboardHolder::show(*desktop_, CLIPBOARD_HOLDER);
}

}  // namespace quorlo
