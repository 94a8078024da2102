#include "store/exchange/json_check.h"

#include <fmt/format.h>
#include <unicode/utf8.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {
namespace {

constexpr std::size_t kDeepestLevel = 32;
constexpr std::size_t kMostValues = 10'000'000;
constexpr std::string_view kBareText = "a text needs quotation marks around it";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

bool isLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isHexDigit(char character) {
  return isDigit(character) || (character >= 'a' && character <= 'f') ||
         (character >= 'A' && character <= 'F');
}

class JsonCheck {
 public:
  explicit JsonCheck(std::string_view text) : text_(text) {
    if (text.starts_with(kByteOrderMark)) at_ = kByteOrderMark.size();
  }

  Status run() {
    value(0);
    skipBlanks();
    if (status_ && at_ < text_.size()) fail(at_, "nothing may stand behind the end of the document");
    return status_;
  }

 private:
  struct Key {
    std::string_view written;  // with its quotation marks
    std::string escaped;       // as it reads, where it holds escapes

    std::string_view name() const {
      return escaped.empty() ? written.substr(1, written.size() - 2) : std::string_view(escaped);
    }
  };

  // The first fault counts.
  void fail(std::size_t place, std::string_view what) {
    if (!status_) return;
    const auto before = text_.substr(0, place);
    const auto lineStart = before.rfind('\n') + 1;  // 0 when there is none
    const auto isCharacterStart = [](char each) { return (static_cast<unsigned char>(each) & 0xC0) != 0x80; };
    auto line = before.substr(lineStart);
    if (lineStart == 0 && line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
    status_ = Error{fmt::format("Line {}, column {} is not JSON: {}. Correct the document there.",
                                std::ranges::count(before, '\n') + 1,
                                std::ranges::count_if(line, isCharacterStart) + 1, what)};
  }

  void failWhole(std::string_view what) {
    if (status_) status_ = Error{std::string(what)};
  }

  bool isAt(char character) const { return at_ < text_.size() && text_[at_] == character; }

  bool take(char character) {
    if (!isAt(character)) return false;
    ++at_;
    return true;
  }

  void skipBlanks() { at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size()); }

  void value(std::size_t depth) {
    skipBlanks();
    if (++values_ > kMostValues)
      return failWhole("The document holds too much (more than 10 million values).");
    if (at_ >= text_.size()) return fail(at_, "a value is missing");
    switch (text_[at_]) {
      case '{':
        return object(depth + 1);
      case '[':
        return list(depth + 1);
      case '"':
        return string();
      case 't':
        return word("true");
      case 'f':
        return word("false");
      case 'n':
        return word("null");
      default:
        return number();
    }
  }

  void word(std::string_view expected) {
    if (!text_.substr(at_).starts_with(expected)) return fail(at_, kBareText);
    at_ += expected.size();
  }

  void object(std::size_t depth) {
    if (depth > kDeepestLevel) return failDepth();
    ++at_;
    std::vector<Key> keys;
    skipBlanks();
    if (take('}')) return;
    do {
      key(keys);
      if (status_) value(depth);
      skipBlanks();
    } while (status_ && take(','));
    if (status_ && !take('}')) return fail(at_, "a comma or } is missing");
    findRepetition(keys);
  }

  void key(std::vector<Key>& keys) {
    skipBlanks();
    if (!isAt('"')) return fail(at_, "a key in quotation marks is missing");
    const auto start = at_;
    string();
    if (!status_) return;
    auto& it = keys.emplace_back(Key{text_.substr(start, at_ - start), {}});
    if (it.written.find('\\') != it.written.npos)
      it.escaped = nlohmann::json::parse(it.written).get<std::string>();
    skipBlanks();
    if (!take(':')) fail(at_, "a colon behind the key is missing");
  }

  void findRepetition(std::vector<Key>& keys) {
    if (!status_) return;
    std::ranges::sort(keys, [](const Key& a, const Key& b) {
      return a.name() == b.name() ? a.written.data() < b.written.data() : a.name() < b.name();
    });
    const auto first = std::ranges::adjacent_find(keys, {}, &Key::name);
    if (first == keys.end()) return;
    const auto& second = first[1];
    fail(static_cast<std::size_t>(second.written.data() - text_.data()),
         "the object has this key already, and only one of them can count");
  }

  void list(std::size_t depth) {
    if (depth > kDeepestLevel) return failDepth();
    ++at_;
    skipBlanks();
    if (take(']')) return;
    do {
      value(depth);
      skipBlanks();
    } while (status_ && take(','));
    if (status_ && !take(']')) fail(at_, "a comma or ] is missing");
  }

  void failDepth() { failWhole("The document is nested too deeply (more than 32 levels)."); }

  void string() {
    const auto start = at_++;
    while (at_ < text_.size() && text_[at_] != '"') {
      if (static_cast<unsigned char>(text_[at_]) < 0x20) {
        return fail(at_, "a line end or another control character stands in a text; write it as \\n");
      }
      if (text_[at_] == '\\') {
        escape();
        if (!status_) return;
      } else {
        ++at_;
      }
    }
    if (at_ >= text_.size()) return fail(start, "the text that begins here has no end");
    checkUtf8(start + 1, at_);
    ++at_;
  }

  void checkUtf8(std::size_t start, std::size_t end) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text_.data());
    for (auto at = start; at < end;) {
      const auto character = at;
      UChar32 codePoint = 0;
      U8_NEXT(bytes, at, end, codePoint);
      if (codePoint < 0) return fail(character, "the text is not in UTF-8 here");
    }
  }

  // A half of a surrogate pair alone is no character.
  void escape() {
    const auto start = at_++;
    constexpr std::string_view kSimple = "\"\\/bfnrt";
    if (at_ < text_.size() && kSimple.find(text_[at_]) != kSimple.npos) {
      ++at_;
      return;
    }
    const auto unit = hexEscape();
    if (!unit) return fail(start, "a backslash in a text is written twice");
    if ((*unit & 0xFC00U) == 0xDC00U) return fail(start, "half a character (a lone surrogate) stands here");
    if ((*unit & 0xFC00U) != 0xD800U) return;
    std::optional<unsigned> second;
    if (take('\\')) second = hexEscape();
    if (!second || (*second & 0xFC00U) != 0xDC00U)
      fail(start, "half a character (a lone surrogate) stands here");
  }

  // Of "u20AC".
  std::optional<unsigned> hexEscape() {
    constexpr std::size_t kDigits = 4;
    if (!isAt('u') || text_.size() - at_ <= kDigits) return std::nullopt;
    const auto digits = text_.substr(at_ + 1, kDigits);
    if (!std::ranges::all_of(digits, isHexDigit)) return std::nullopt;
    at_ += 1 + kDigits;
    return static_cast<unsigned>(std::strtoul(std::string(digits).c_str(), nullptr, 16));
  }

  void number() {
    const auto start = at_;
    const bool isNumber = take('-') || (at_ < text_.size() && isDigit(text_[at_]));
    if (!isNumber) return fail(start, isLetter(text_[at_]) ? kBareText : "a value is missing");
    if (!take('0') && !digits()) return fail(start, "the number has no digits");
    if (take('.') && !digits()) return fail(start, "the number has no digits behind its point");
    if (take('e') || take('E')) {
      if (!take('+')) take('-');
      if (!digits()) return fail(start, "the number has no digits in its exponent");
    }
    if (!std::isfinite(std::strtod(std::string(text_.substr(start, at_ - start)).c_str(), nullptr))) {
      fail(start, "the number is too large");
    }
  }

  bool digits() {
    const auto start = at_;
    while (at_ < text_.size() && isDigit(text_[at_])) ++at_;
    return at_ > start;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t values_ = 0;
  Status status_;
};

}  // namespace

Status checkJson(std::string_view text) {
  return JsonCheck(text).run();
}

}  // namespace quorlo
