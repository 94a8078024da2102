#pragma once

#include "text/text_attributes.h"
#include "text/text_range.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorlo {

// UTF-16 text and the attributes of each of its characters, kept as maximal runs of equal attributes. A
// value; copies share attributes, not characters. Plain text stores no runs and costs what its string
// costs.
//
// Ranges are UTF-16 units and are clamped to the text, so no range is an error. Every change in the
// middle moves the rest of the text; a text with many places to change is rebuilt in one pass, by
// replaceAll or by appending pieces of the old one to a new one.
class AttributedString {
 public:
  struct Run {
    TextRange range;
    const TextAttributes& attributes;
  };
  struct Replacement;

  AttributedString() = default;
  explicit AttributedString(std::u16string text) : text_(std::move(text)) {}
  AttributedString(std::u16string text, TextAttributes attributes);

  const std::u16string& string() const { return text_; }
  std::size_t size() const { return text_.size(); }
  bool empty() const { return text_.empty(); }

  // No character has an attribute.
  bool isPlain() const { return runs_.empty(); }

  // Appending costs the length of what is appended.
  void append(std::u16string_view plainText);
  void append(std::u16string_view text, const TextAttributes& attributes);
  void append(const AttributedString& other);
  void append(const AttributedString& other, TextRange part);

  void insert(std::size_t position, const AttributedString& other);
  void replace(TextRange range, const AttributedString& other);

  // The new text takes the attributes of the first character replaced; with an empty range those of the
  // character before it, or at the start those of the character behind it. A picture is not inherited.
  void replace(TextRange range, std::u16string_view text);

  // Makes all replacements in one pass, linear in the old and the new text together. The ranges are
  // those of the text before the call, ascending and apart; one that begins inside an earlier one is
  // cut to what is left of it.
  void replaceAll(std::span<const Replacement> replacements);

  AttributedString slice(TextRange range) const;

  // Of the character at `position`; of the last one from the end on; plain when the text is empty.
  // Valid until the next change.
  const TextAttributes& attributesAt(std::size_t position) const;

  // Replaces all attributes that the characters in `range` had.
  void setAttributes(TextRange range, TextAttributes attributes);

  // Maximal runs of equal attributes in order, plain ones included, covering the text without gaps;
  // none for an empty text. `visit(const Run&)`; must not change the string.
  template <class Visitor>
  void forEachRun(Visitor visit) const {
    for (std::size_t i = 0; i < runCount(); ++i) visit(runAt(i));
  }
  std::size_t runCount() const;
  Run runAt(std::size_t index) const;

  // Same characters with equal attributes.
  bool operator==(const AttributedString& other) const;

 private:
  using AttributesPtr = std::shared_ptr<const TextAttributes>;  // null for plain

  struct StoredRun {
    std::size_t start;
    AttributesPtr attributes;
  };

  static AttributesPtr share(TextAttributes attributes);
  std::size_t runIndexAt(std::size_t position) const;
  AttributesPtr inheritedAttributes(TextRange range) const;
  void appendShared(std::u16string_view text, const AttributesPtr& attributes);
  void addRun(std::size_t start, const AttributesPtr& attributes);

  std::u16string text_;
  // Ascending, the first at 0, neighbours different; empty when the whole text is plain.
  std::vector<StoredRun> runs_;
};

struct AttributedString::Replacement {
  TextRange range;
  AttributedString text;
};

}  // namespace quorlo
