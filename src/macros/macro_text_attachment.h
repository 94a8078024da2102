#pragma once

#include "base/observers.h"
#include "base/subscription.h"
#include "macros/macro_type.h"
#include "text/attributed_string.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// The token that stands for one macro while a snippet is edited or previewed. Its identity is that of the
// object, so it is neither copied nor made of nothing, and never archived: a text that leaves the editor
// is turned back into markup. Main thread.
class MacroTextAttachment {
 public:
  enum class Change { macroString, previewValue, label };
  enum class MouseCursor { arrow, pointingHand };

  // `attributes` are those of the text at the macro's place, `location` the index of the macro's first
  // character in the text it was taken from.
  MacroTextAttachment(std::u16string macroString, MacroType type, TextAttributes attributes,
                      std::size_t location);
  MacroTextAttachment(const MacroTextAttachment&) = delete;
  MacroTextAttachment& operator=(const MacroTextAttachment&) = delete;

  const std::u16string& macroString() const { return macroString_; }
  void setMacroString(std::u16string macroString);
  MacroType type() const { return type_; }
  const TextAttributes& attributes() const { return attributes_; }
  std::size_t location() const { return location_; }

  // Shown in place of the macro in a preview.
  const std::optional<std::u16string>& previewValue() const { return previewValue_; }
  void setPreviewValue(std::optional<std::u16string> value);

  const std::optional<std::u16string>& label() const { return label_; }
  void setLabel(std::optional<std::u16string> label);

  // Called after a value has become another one.
  Subscription observe(std::function<void(Change)> callback) { return observers_.add(std::move(callback)); }

  // The pointing hand for the types that open an editor when clicked.
  MouseCursor mouseCursor() const;

  std::u16string description() const;

 private:
  std::u16string macroString_;
  MacroType type_;
  TextAttributes attributes_;
  std::size_t location_;
  std::optional<std::u16string> previewValue_;
  std::optional<std::u16string> label_;
  Observers<Change> observers_;
};

// A text in the editor: every macro is one U+FFFC character that carries the run mark kMacroMark with the
// index of its token, so tokens move along with the text around them and may be copied.
struct EditorText {
  AttributedString text;
  std::vector<std::shared_ptr<MacroTextAttachment>> attachments;
};

inline constexpr const char* kMacroMark = "macro";

EditorText toEditorText(const AttributedString& storedText);

// Replaces each token by its macro string, with the attributes that it keeps. A mark that names no token
// is dropped and its character stays.
AttributedString toStoredText(const EditorText& editorText);

}  // namespace quorlo
