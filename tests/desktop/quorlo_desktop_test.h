#pragma once

#include "virtual_desktop/applications.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/wait.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

// One virtual desktop for the suite; Quorlo is started anew by each test with its own library and settings.
//
// Keys arrive in the order in which they were typed, so a text that holds what was typed last is complete.
// A test that shows that something does not expand types an abbreviation that does at its end: it proves
// that Quorlo was awake, and nothing late can follow it unseen.
class QuorloDesktopTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();
  void TearDown() override;

  // Abbreviation and text of plain snippets, as a library.
  static std::string libraryOf(const std::vector<std::pair<std::string, std::string>>& snippets);

  void startQuorlo(const std::string& library, const StoredSettings& settings = {});
  void startQuorlo(const StoredSettings& settings = {}) { startQuorlo(usualLibrary(), settings); }
  // Quits it and starts it with what it has stored.
  void restartQuorlo();
  // "sig" -> "Kind regards, Ada", "brb" -> "be right back".
  static std::string usualLibrary();

  VirtualDesktop& desktop() { return *desktop_; }
  VirtualKeyboard& keyboard() { return desktop_->keyboard(); }
  void type(std::string_view text) { keyboard().type(text); }
  QuorloProgram& quorlo() { return *quorlo_; }

  std::unique_ptr<RichEditor> openRichEditor(RichEditor::Kind kind = RichEditor::Kind::kEditor);
  std::unique_ptr<ClipboardHolder> fillClipboard(std::vector<std::string> contents);
  std::string clipboard();

  std::unique_ptr<QuorloProgram> quorlo_;

 private:
  static std::unique_ptr<VirtualDesktop> desktop_;
};

// What the settings file holds for a trigger by the last symbol, and for a set of delimiters.
inline const StoredSettings kLastSymbol{{"AbbreviationsTriggerType", "1"}};

}  // namespace quorlo
