#include "macros/resolve_snippet_macros.h"

#include "base/log.h"
#include "macros/find_macros.h"
#include "macros/macro_arguments.h"
#include "text/text_attributes.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

// The run mark that says by which snippets a run came in: the number of its path.
constexpr const char* kPathMark = "snippetPath";

using Abbreviations = std::set<std::u16string>;

template <class Change>
AttributedString withChangedMarks(const AttributedString& text, Change change) {
  AttributedString result;
  text.forEachRun([&](const AttributedString::Run& run) {
    const auto characters = std::u16string_view(text.string()).substr(run.range.location, run.range.length);
    auto attributes = run.attributes;
    change(attributes.custom);
    result.append(characters, attributes);
  });
  return result;
}

// A stored text may carry any mark.
AttributedString withoutPaths(AttributedString text) {
  if (text.isPlain()) return text;
  return withChangedMarks(text, [](auto& marks) { marks.erase(kPathMark); });
}

// The passes over one text. A path is the set of the snippets inside which a character stands.
class SnippetPasses {
 public:
  SnippetPasses(AttributedString text, const Abbreviations& used, const SnippetLookup& lookup)
      : text_(withoutPaths(std::move(text))), paths_{used}, lookup_(lookup) {}

  // False when nothing was left to do.
  bool pass();
  AttributedString finish() { return withoutPaths(std::move(text_)); }
  LeftOutSnippets leftOut() const;

 private:
  std::optional<AttributedString> replacement(TextRange range, std::size_t room);
  const std::optional<AttributedString>& snippet(const std::u16string& abbreviation);
  Abbreviations pathOf(TextRange range) const;
  const AttributedString& marked(const std::u16string& abbreviation, const Abbreviations& inside);

  AttributedString text_;
  std::vector<Abbreviations> paths_;  // those of runs without a mark first
  const SnippetLookup& lookup_;
  LeftOutSnippets leftOut_;
  bool isCut_ = false;  // the text has grown as long as it may
  std::map<std::u16string, std::optional<AttributedString>> snippets_;
  std::map<std::pair<std::u16string, Abbreviations>, AttributedString> marked_;
};

bool SnippetPasses::pass() {
  std::vector<AttributedString::Replacement> replacements;
  std::size_t length = text_.size();
  for (const auto& [range, type] : findMacros(text_.string())) {
    if (type != MacroType::snippet) continue;
    const auto room = kLongestResolvedText - std::min(length, kLongestResolvedText);
    auto text = replacement(range, room + range.length);
    if (!text) continue;
    length += text->size();
    length -= range.length;
    replacements.push_back({range, std::move(*text)});
  }
  text_.replaceAll(replacements);
  return !replacements.empty();
}

// Absent when the run stays as it is.
std::optional<AttributedString> SnippetPasses::replacement(TextRange range, std::size_t room) {
  const auto& characters = text_.string();
  if (range.end() > characters.size()) {
    logError(fmt::format("ERROR: #yjJEß1 {{{}, {}}}, {}, {}", range.location, range.length, characters.size(),
                         userText(toUtf8(characters))));
    return std::nullopt;
  }
  const auto macro = std::u16string_view(characters).substr(range.location, range.length);
  if (macroType(macro) != MacroType::snippet) return std::nullopt;
  const auto abbreviation = valueForArgument(u"abbreviation", macro);
  if (!abbreviation) return std::nullopt;

  const auto& found = snippet(*abbreviation);
  using enum LeftOutSnippet::Reason;
  if (!found) {
    leftOut_.insert({*abbreviation, missing});
    return AttributedString();
  }
  const auto inside = pathOf(range);
  if (inside.contains(*abbreviation)) {
    leftOut_.insert({*abbreviation, wouldContainItself});
    logWarning("WARNING: #4uNCEF - Discovered loop snippet reference - abort");
    return AttributedString();
  }
  if (isCut_ || found->size() > room) {
    leftOut_.insert({*abbreviation, textIsTooLong});
    if (!std::exchange(isCut_, true)) {
      logWarning("WARNING: #nst7Lim - Nested snippets are too long together, left out from: " +
                 userText(toUtf8(*abbreviation)));
    }
    return AttributedString();
  }
  return marked(*abbreviation, inside);
}

LeftOutSnippets SnippetPasses::leftOut() const {
  auto leftOut = leftOut_;
  for (const auto& [range, type] : findMacros(text_.string())) {
    if (type != MacroType::snippet) continue;
    const auto macro = std::u16string_view(text_.string()).substr(range.location, range.length);
    if (auto abbreviation = valueForArgument(u"abbreviation", macro)) {
      leftOut.insert({std::move(*abbreviation), LeftOutSnippet::Reason::isTooDeep});
    }
  }
  return leftOut;
}

// A snippet is asked for once, however often it is named.
const std::optional<AttributedString>& SnippetPasses::snippet(const std::u16string& abbreviation) {
  auto known = snippets_.find(abbreviation);
  if (known == snippets_.end()) known = snippets_.emplace(abbreviation, lookup_(abbreviation)).first;
  return known->second;
}

// Of all its characters: texts from different snippets may join to form a macro.
Abbreviations SnippetPasses::pathOf(TextRange range) const {
  Abbreviations path = paths_.front();
  if (paths_.size() == 1) return path;
  const auto macro = text_.slice(range);
  macro.forEachRun([&](const AttributedString::Run& run) {
    const auto mark = run.attributes.custom.find(kPathMark);
    if (mark == run.attributes.custom.end()) return;
    const auto& more = paths_[std::stoul(mark->second)];
    path.insert(more.begin(), more.end());
  });
  return path;
}

const AttributedString& SnippetPasses::marked(const std::u16string& abbreviation,
                                              const Abbreviations& inside) {
  auto key = std::pair(abbreviation, inside);
  if (const auto known = marked_.find(key); known != marked_.end()) return known->second;
  auto path = inside;
  path.insert(abbreviation);
  paths_.push_back(std::move(path));
  const auto mark = std::to_string(paths_.size() - 1);
  auto text = withChangedMarks(*snippet(abbreviation), [&](auto& marks) { marks[kPathMark] = mark; });
  return marked_.emplace(std::move(key), std::move(text)).first->second;
}

}  // namespace

AttributedString resolveSnippetMacros(AttributedString text, const std::set<std::u16string>& used, int depth,
                                      const SnippetLookup& lookup, LeftOutSnippets* leftOut) {
  SnippetPasses passes(std::move(text), used, lookup);
  while (passes.pass() && depth-- > 0) {
  }
  if (leftOut != nullptr) leftOut->merge(passes.leftOut());
  return passes.finish();
}

}  // namespace quorlo
