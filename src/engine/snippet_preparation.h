#pragma once

#include "platform/key_codes.h"
#include "text/attributed_string.h"
#include "text/text_range.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

class QLSnippet;

struct KeyCombination {
  KeyCode keyCode = 0;
  ModifierFlags flags = 0;
};

// A key pressed between two pieces of a snippet.
struct KeyStep {
  TextRange range;  // its place in PreparedSnippet::snippetText
  std::string type;
  std::optional<KeyCombination> combination;  // for the type "combi"
};

// A snippet's content ready to be inserted: macros replaced, cut at the keys to press. All lists are in
// text order; key n is pressed after piece n. A piece may be empty.
struct PreparedSnippet {
  AttributedString snippetText;
  std::vector<AttributedString> pieces;
  std::vector<KeyStep> keys;
  std::optional<TextRange> cursorRange;  // in snippetText
  std::size_t cursorPiece = 0;           // the piece that holds the cursor's place
};

// Turns a snippet's content into what is inserted. Main thread.
class SnippetPreparation {
 public:
  // Absent when the user called it off.
  using Completion = std::function<void(std::optional<PreparedSnippet>)>;

  virtual ~SnippetPreparation() = default;

  // Completes once, during the call or later (after the user has filled in what the snippet asks for).
  virtual void prepare(AttributedString content, const QLSnippet& snippet, Completion completion) = 0;
};

// Inserts the content as it stands, in one piece.
class WholeTextPreparation : public SnippetPreparation {
 public:
  void prepare(AttributedString content, const QLSnippet& snippet, Completion completion) override;
};

}  // namespace quorlo
