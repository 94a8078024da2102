#pragma once

#include "macros/macro_arguments.h"
#include "macros/macro_type.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

struct MacroArgument {
  std::u16string name;
  std::u16string value;
  Escaping escaping = Escaping::escape;
};

// One macro in its markup, with its arguments in the order given.
std::u16string macroMarkup(MacroType type, const std::vector<MacroArgument>& arguments);

// What became of the literal percent signs of a text.
enum class LiteralSigns {
  kept,     // no macro begins at any of them
  written,  // some stand as date macros that render as a percent sign, since a macro would begin there
  misread   // a part of the literal text reads as a macro in spite of that
};

// What the user should know of it, localised; empty for nothing.
std::u16string literalNotice(LiteralSigns signs);

// UTF-16 units, far beyond any snippet. A longer text gets no more macros, so that no file of few bytes takes
// all memory.
inline constexpr std::size_t kLongestMacroText = std::size_t{4} << 20;

// Puts a snippet's text together from literal text and from macros, so that only the latter read as macros.
class MacroTextWriter {
 public:
  struct Result {
    std::u16string text;
    LiteralSigns signs = LiteralSigns::kept;
  };

  void appendText(std::u16string_view text);
  void appendMacro(std::u16string_view markup);

  // UTF-16 units so far.
  std::size_t size() const { return size_; }

  Result finish() const;

 private:
  struct Piece {
    std::u16string text;
    bool isMacro;
  };

  std::vector<Piece> pieces_;
  std::size_t size_ = 0;
};

// A text without macros.
MacroTextWriter::Result literalMacroText(std::u16string_view text);

}  // namespace quorlo
