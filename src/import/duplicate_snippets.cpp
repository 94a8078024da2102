#include "import/duplicate_snippets.h"

#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "store/uuid.h"

#include <functional>

namespace quorlo {
namespace {

constexpr char16_t kPicture = u'\uFFFC';

std::string digestOfPictures(const AttributedString& text) {
  std::string bytes;
  text.forEachRun([&bytes](const AttributedString::Run& run) {
    const auto& image = run.attributes.image;
    if (!image || !image->bytes) return;
    bytes.append(image->bytes->begin(), image->bytes->end());
    bytes += '\0';
  });
  return bytes.empty() ? bytes : uuidForContent(bytes);
}

// Pictures that cannot be read are like no others.
std::string digestOfPictures(const QLSnippet& snippet) {
  const auto text = snippet.readText();
  return text ? digestOfPictures(text.value()) : snippet.uuid();
}

}  // namespace

std::size_t DuplicateSnippets::Hash::operator()(const Entry& entry) const {
  constexpr std::size_t kFactor = 0x9E3779B97F4A7C15;  // spreads the bits
  const auto title = std::hash<std::u16string_view>()(entry.title);
  const auto text = std::hash<std::u16string_view>()(entry.text);
  return (title * kFactor + text) * kFactor + std::hash<std::string>()(entry.pictures);
}

DuplicateSnippets::DuplicateSnippets(const ManagedObjectContext& context) {
  const auto snippets = context.fetch<QLSnippet>({.predicate = QLSnippet::kDeletionDate.isNil()});
  if (!snippets) return;  // only a predicate of other records fails
  entries_.reserve(snippets.value().size());
  for (const auto& each : snippets.value()) add(*each);
}

const QLSnippet* DuplicateSnippets::find(std::u16string_view title, const AttributedString& text) const {
  const auto found = entries_.find({title, text.string(), digestOfPictures(text), nullptr});
  return found == entries_.end() ? nullptr : found->snippet;
}

void DuplicateSnippets::add(const QLSnippet& snippet) {
  const auto& text = snippet.plainText();
  const bool hasPictures = text.find(kPicture) != std::u16string::npos;
  entries_.insert({snippet.title(), text, hasPictures ? digestOfPictures(snippet) : std::string(), &snippet});
}

}  // namespace quorlo
