#include "store/records/snippet_text_cache.h"

#include "text/graphemes.h"

#include <string_view>

namespace quorlo {
namespace {

std::u16string without(std::u16string_view text, const std::vector<std::u16string>& parts) {
  std::u16string rest;
  for (const auto& part : parts) {
    const auto place = text.find(part);
    if (place == std::u16string_view::npos) continue;
    rest += text.substr(0, place);
    text.remove_prefix(place + part.size());
  }
  return rest.append(text);
}

AttributedString withoutPictures(const AttributedString& text) {
  AttributedString rest;
  text.forEachRun([&](const AttributedString::Run& run) {
    if (!run.attributes.image) rest.append(text, run.range);
  });
  return rest;
}

}  // namespace

const std::vector<std::u16string>& SnippetTextCache::macroStrings(
    const std::function<std::vector<std::u16string>()>& find) {
  if (!macroStrings_) macroStrings_ = find();
  return *macroStrings_;
}

const std::u16string& SnippetTextCache::plainTextWithoutMacros(
    const std::u16string& text, const std::vector<std::u16string>& macroStrings) {
  if (!plainTextWithoutMacros_) plainTextWithoutMacros_ = without(text, macroStrings);
  return *plainTextWithoutMacros_;
}

std::size_t SnippetTextCache::numberOfCharacters(const std::u16string& text) {
  if (!numberOfCharacters_) numberOfCharacters_ = graphemeCount(text);
  return *numberOfCharacters_;
}

const AttributedString& SnippetTextCache::plainAttributedString(const std::u16string& text) {
  if (!plainAttributedString_) plainAttributedString_ = AttributedString(text);
  return *plainAttributedString_;
}

const AttributedString& SnippetTextCache::withoutAttachments(const AttributedString& text) {
  if (!withoutAttachments_) withoutAttachments_ = withoutPictures(text);
  return *withoutAttachments_;
}

}  // namespace quorlo
