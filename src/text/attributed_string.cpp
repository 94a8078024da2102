#include "text/attributed_string.h"

#include <algorithm>
#include <iterator>

namespace quorlo {
namespace {

const TextAttributes& plainAttributes() {
  static const TextAttributes kPlain;
  return kPlain;
}

}  // namespace

AttributedString::AttributedString(std::u16string text, TextAttributes attributes) : text_(std::move(text)) {
  setAttributes({0, size()}, std::move(attributes));
}

AttributedString::AttributesPtr AttributedString::share(TextAttributes attributes) {
  return attributes.isPlain() ? nullptr : std::make_shared<const TextAttributes>(std::move(attributes));
}

// A run of the text that begins at `start`, which is not in front of any run so far; the caller gives
// it characters.
void AttributedString::addRun(std::size_t start, const AttributesPtr& attributes) {
  if (runs_.empty()) {
    if (!attributes) return;
    if (start > 0) runs_.push_back({0, nullptr});
    runs_.push_back({start, attributes});
    return;
  }
  const auto& last = runs_.back().attributes;
  const bool same = last == attributes || (last && attributes && *last == *attributes);
  if (!same) runs_.push_back({start, attributes});
}

void AttributedString::appendShared(std::u16string_view text, const AttributesPtr& attributes) {
  if (text.empty()) return;
  addRun(size(), attributes);
  text_ += text;
}

void AttributedString::append(std::u16string_view plainText) {
  appendShared(plainText, nullptr);
}

void AttributedString::append(std::u16string_view text, const TextAttributes& attributes) {
  appendShared(text, share(attributes));
}

void AttributedString::append(const AttributedString& other) {
  append(other, {0, other.size()});
}

void AttributedString::append(const AttributedString& other, TextRange part) {
  part = part.clampedTo(other.size());
  if (part.length == 0) return;
  if (!other.isPlain()) {
    const auto offset = size();
    // By index: `other` may be this string, whose runs grow behind the part.
    for (auto i = other.runIndexAt(part.location); i < other.runs_.size(); ++i) {
      const auto start = std::max(other.runs_[i].start, part.location);
      if (start >= part.end()) break;
      addRun(offset + start - part.location, other.runs_[i].attributes);
    }
  } else {
    addRun(size(), nullptr);
  }
  text_.append(other.text_, part.location, part.length);
}

void AttributedString::insert(std::size_t position, const AttributedString& other) {
  replace({position, 0}, other);
}

void AttributedString::replace(TextRange range, const AttributedString& other) {
  range = range.clampedTo(size());
  if (isPlain() && other.isPlain()) {
    text_.replace(range.location, range.length, other.text_);
    return;
  }
  AttributedString result;
  result.text_.reserve(size() - range.length + other.size());
  result.append(*this, {0, range.location});
  result.append(other);
  result.append(*this, {range.end(), size() - range.end()});
  *this = std::move(result);
}

void AttributedString::replace(TextRange range, std::u16string_view text) {
  range = range.clampedTo(size());
  AttributedString replacement;
  replacement.appendShared(text, inheritedAttributes(range));
  replace(range, replacement);
}

AttributedString::AttributesPtr AttributedString::inheritedAttributes(TextRange range) const {
  if (isPlain()) return nullptr;
  const bool fromBefore = range.length == 0 && range.location > 0;
  const auto& attributes = runs_[runIndexAt(range.location - (fromBefore ? 1 : 0))].attributes;
  if (!attributes || !attributes->image) return attributes;
  auto withoutImage = *attributes;
  withoutImage.image.reset();
  return share(std::move(withoutImage));
}

void AttributedString::replaceAll(std::span<const Replacement> replacements) {
  AttributedString result;
  std::size_t done = 0;
  for (const auto& [range, text] : replacements) {
    const auto clamped = range.clampedTo(size());
    if (clamped.location > done) result.append(*this, {done, clamped.location - done});
    result.append(text);
    done = std::max(done, clamped.end());
  }
  result.append(*this, {done, size() - done});
  *this = std::move(result);
}

AttributedString AttributedString::slice(TextRange range) const {
  AttributedString result;
  result.append(*this, range);
  return result;
}

const TextAttributes& AttributedString::attributesAt(std::size_t position) const {
  if (isPlain()) return plainAttributes();
  const auto& attributes = runs_[runIndexAt(position)].attributes;
  return attributes ? *attributes : plainAttributes();
}

void AttributedString::setAttributes(TextRange range, TextAttributes attributes) {
  range = range.clampedTo(size());
  if (range.length == 0) return;
  const auto shared = share(std::move(attributes));
  if (!shared && isPlain()) return;

  const auto old = std::exchange(runs_, {});
  const auto runBehind =
      std::find_if(old.begin(), old.end(), [&](const StoredRun& run) { return run.start > range.end(); });
  for (auto run = old.begin(); run != old.end() && run->start < range.location; ++run) {
    addRun(run->start, run->attributes);
  }
  addRun(range.location, shared);
  if (range.end() < size()) {
    addRun(range.end(), runBehind == old.begin() ? nullptr : std::prev(runBehind)->attributes);
    for (auto run = runBehind; run != old.end(); ++run) addRun(run->start, run->attributes);
  }
}

std::size_t AttributedString::runCount() const {
  if (isPlain()) return empty() ? 0 : 1;
  return runs_.size();
}

AttributedString::Run AttributedString::runAt(std::size_t index) const {
  if (isPlain()) return {{0, size()}, plainAttributes()};
  const auto& run = runs_[index];
  const auto end = index + 1 < runs_.size() ? runs_[index + 1].start : size();
  return {{run.start, end - run.start}, run.attributes ? *run.attributes : plainAttributes()};
}

std::size_t AttributedString::runIndexAt(std::size_t position) const {
  const auto next = std::upper_bound(runs_.begin(), runs_.end(), position,
                                     [](std::size_t p, const StoredRun& run) { return p < run.start; });
  return static_cast<std::size_t>(next - runs_.begin()) - 1;
}

bool AttributedString::operator==(const AttributedString& other) const {
  const auto equalRuns = [](const StoredRun& a, const StoredRun& b) {
    if (a.start != b.start) return false;
    if (a.attributes == b.attributes) return true;
    return a.attributes && b.attributes && *a.attributes == *b.attributes;
  };
  return text_ == other.text_ &&
         std::equal(runs_.begin(), runs_.end(), other.runs_.begin(), other.runs_.end(), equalRuns);
}

}  // namespace quorlo
