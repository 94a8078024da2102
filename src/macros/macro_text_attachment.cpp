#include "macros/macro_text_attachment.h"

#include "macros/find_macros.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace quorlo {
namespace {

constexpr char16_t kObjectCharacter = 0xFFFC;

const MacroTextAttachment* tokenOf(const TextAttributes& attributes, const EditorText& editorText) {
  const auto mark = attributes.custom.find(kMacroMark);
  if (mark == attributes.custom.end()) return nullptr;
  std::size_t index = 0;
  const auto& digits = mark->second;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
  const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
  if (!isNumber || index >= editorText.attachments.size()) return nullptr;
  return editorText.attachments[index].get();
}

}  // namespace

MacroTextAttachment::MacroTextAttachment(std::u16string macroString, MacroType type,
                                         TextAttributes attributes, std::size_t location)
    : macroString_(std::move(macroString)),
      type_(type),
      attributes_(std::move(attributes)),
      location_(location) {}

void MacroTextAttachment::setMacroString(std::u16string macroString) {
  if (macroString_ == macroString) return;
  macroString_ = std::move(macroString);
  observers_.notify(Change::macroString);
}

void MacroTextAttachment::setPreviewValue(std::optional<std::u16string> value) {
  if (previewValue_ == value) return;
  previewValue_ = std::move(value);
  observers_.notify(Change::previewValue);
}

void MacroTextAttachment::setLabel(std::optional<std::u16string> label) {
  if (label_ == label) return;
  label_ = std::move(label);
  observers_.notify(Change::label);
}

MacroTextAttachment::MouseCursor MacroTextAttachment::mouseCursor() const {
  const bool opensEditor = std::ranges::find(kLongFormMacroTypes, type_) != kLongFormMacroTypes.end();
  return opensEditor ? MouseCursor::pointingHand : MouseCursor::arrow;
}

std::u16string MacroTextAttachment::description() const {
  return u"<MacroTextAttachment: macroString: " + macroString_;
}

EditorText toEditorText(const AttributedString& storedText) {
  EditorText result;
  std::vector<AttributedString::Replacement> tokens;
  for (const auto& [range, type] : readableMacros(storedText.string())) {
    const auto& attributes = storedText.attributesAt(range.location);
    auto marked = attributes;
    marked.custom[kMacroMark] = std::to_string(result.attachments.size());
    tokens.push_back({range, AttributedString(std::u16string(1, kObjectCharacter), std::move(marked))});
    result.attachments.push_back(std::make_shared<MacroTextAttachment>(
        storedText.string().substr(range.location, range.length), type, attributes, range.location));
  }
  result.text = storedText;
  result.text.replaceAll(tokens);
  return result;
}

AttributedString toStoredText(const EditorText& editorText) {
  AttributedString stored;
  editorText.text.forEachRun([&](const AttributedString::Run& run) {
    const auto characters =
        std::u16string_view(editorText.text.string()).substr(run.range.location, run.range.length);
    auto attributes = run.attributes;
    attributes.custom.erase(kMacroMark);
    const auto* token = tokenOf(run.attributes, editorText);
    if (!token) return stored.append(characters, attributes);
    for (const char16_t& character : characters) {
      if (character == kObjectCharacter) {
        stored.append(token->macroString(), token->attributes());
      } else {  // typed beside the token, whose attributes it took
        stored.append(std::u16string_view(&character, 1), attributes);
      }
    }
  });
  return stored;
}

}  // namespace quorlo
