#include "import/formats/property_lists/prepare_xml_property_list.h"

#include "import/formats/property_lists/property_list.h"
#include "import/formats/property_lists/xml_leaf_values.h"
#include "store/localized_format.h"
#include "text/utf.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace quorlo {
namespace {

constexpr auto kNowhere = std::string_view::npos;
constexpr std::string_view kSpace = " \t\r\n";
constexpr std::array<std::string_view, 8> kLeaves{"key",  "string", "integer", "real",
                                                  "date", "data",   "true",    "false"};

// Longer than any reference that is one, so that a lone "&" does not search the whole text.
constexpr std::size_t kLongestReference = 12;

constexpr std::size_t kLongestName = 20;

class XmlPreparation {
 public:
  explicit XmlPreparation(std::string_view bytes) : bytes_(bytes) {
    if (bytes_.starts_with("\xEF\xBB\xBF")) position_ = 3;
    prepared_.reserve(bytes_.size());
  }

  Result<std::string> run() {
    for (;;) {
      position_ = std::min(bytes_.find_first_not_of(kSpace, position_), bytes_.size());
      if (position_ == bytes_.size()) break;
      if (auto read = readMarkup(); !read) return read.error();
    }
    if (open_.empty() && isClosed_) return std::move(prepared_);
    if (open_.empty()) return failure(u"the file has no <plist> element");
    return cutOff(open_.back().name);
  }

 private:
  struct OpenElement {
    std::string_view name;
    std::size_t children = 0;  // of a dictionary keys and values
  };

  Status readMarkup() {
    if (take("<!--")) return skipBehind("-->", "!--");
    if (take("<?")) return readInstruction();
    if (take("<!DOCTYPE")) return skipDocumentType();
    if (take("</")) return readEndTag();
    if (take("<")) return readStartTag();
    return failure(u"there is text where an element belongs");
  }

  bool take(std::string_view mark) {
    const bool isThere = bytes_.substr(position_, mark.size()) == mark;
    if (isThere) position_ += mark.size();
    return isThere;
  }

  Status skipBehind(std::string_view mark, std::string_view what) {
    const auto end = bytes_.find(mark, position_);
    if (end == kNowhere) return cutOff(what);
    position_ = end + mark.size();
    return {};
  }

  Status readInstruction() {
    const auto start = position_;
    if (auto skipped = skipBehind("?>", "?"); !skipped) return skipped;
    const auto text = bytes_.substr(start, position_ - start);
    const auto encoding = text.find("encoding=");
    if (!text.starts_with("xml ") || encoding == kNowhere) return {};
    std::string name(text.substr(encoding + 10, text.find_first_of("\"'", encoding + 10) - encoding - 10));
    std::ranges::transform(name, name.begin(),
                           [](char each) { return each >= 'A' && each <= 'Z' ? each + 32 : each; });
    if (name == "utf-8" || name == "us-ascii") return {};
    return failure(u"the file is in the encoding %@; save it in UTF-8", name);
  }

  Status skipDocumentType() {
    const auto end = bytes_.find_first_of("[>", position_);
    if (end != kNowhere && bytes_[end] == '[')
      return failure(u"the file declares entities or elements of its own, which no file of snippets does");
    return skipBehind(">", "!DOCTYPE");
  }

  Status readEndTag() {
    const auto name = readName();
    position_ = std::min(bytes_.find_first_not_of(kSpace, position_), bytes_.size());
    if (open_.empty() || open_.back().name != name || !take(">")) return unexpected("</", name);
    if (name == "dict" && open_.back().children % 2 == 1) return failure(u"a <key> has no value");
    if (name == "plist" && open_.back().children == 0) return failure(u"<plist> is empty");
    open_.pop_back();
    isClosed_ = open_.empty();
    writeTag("</", name, ">");
    return {};
  }

  Status readStartTag() {
    const auto name = readName();
    const bool isRoot = name == "plist";
    const bool isContainer = isRoot || name == "dict" || name == "array";
    if (!isContainer && std::ranges::find(kLeaves, name) == kLeaves.end()) return unexpected("<", name);
    if (isRoot != open_.empty() || isClosed_) return unexpected("<", name);
    if (auto counted = isRoot ? Status() : countChild(name); !counted) return counted;
    const auto end = bytes_.find('>', position_);
    if (end == kNowhere) return cutOff(name);
    const bool isEmpty = bytes_[end - 1] == '/';
    position_ = end + 1;
    if (!isContainer) return readLeaf(name, isEmpty);
    if (open_.size() > kDeepestPropertyList)
      return failure(u"the file is nested too deeply, more than 64 levels");
    writeTag("<", name, isEmpty ? "/>" : ">");
    if (!isEmpty) open_.push_back({name});
    return isRoot && isEmpty ? failure(u"<plist> is empty") : Status();
  }

  // Whether the element may stand here.
  Status countChild(std::string_view name) {
    auto& parent = open_.back();
    const bool isKey = name == "key";
    const bool expectsKey = parent.name == "dict" && parent.children % 2 == 0;
    if (isKey && !expectsKey) return failure(u"a <key> stands where a value belongs");
    if (!isKey && expectsKey) return failure(u"<%@> has no <key> before it", name);
    if (parent.name == "plist" && parent.children > 0) return failure(u"<plist> holds more than one value");
    ++parent.children;
    if (parent.name == "dict" && parent.children > 2 * kMostPropertyListKeys)
      return failure(u"a dictionary has more than 100,000 keys");
    if (++values_ > kMostPropertyListValues) return failure(u"the file holds more than four million values");
    return {};
  }

  Status readLeaf(std::string_view name, bool isEmpty) {
    std::string text;
    const auto start = position_;
    if (!isEmpty) {
      if (auto read = readText(name, text); !read) return read;
    }
    if (text.find('\0') != kNowhere) return failureAt(start, u"a text has a NUL character in it", name);
    if ((name == "key" || name == "string") && !toUtf16Strict(text))
      return failureAt(start, u"a text is not in UTF-8", name);
    if (!isContentOf(name, text)) return failureAt(start, u"what stands in <%@> is no such value", name);
    if (name == "string") textSize_ += text.size();
    if (textSize_ > kMostPropertyListText)
      return failureAt(start, u"the file holds more than 32 MiB of text", name);
    writeLeaf(name, text);
    return {};
  }

  // Up to the end tag and behind it.
  Status readText(std::string_view name, std::string& text) {
    for (;;) {
      const auto next = bytes_.find_first_of("<&", position_);
      if (next == kNowhere) return cutOff(name);
      text += bytes_.substr(position_, next - position_);
      position_ = next;
      if (take("&")) {
        if (auto read = readReference(text); !read) return read;
      } else if (take("<![CDATA[")) {
        const auto start = position_;
        if (auto skipped = skipBehind("]]>", "![CDATA["); !skipped) return skipped;
        text += bytes_.substr(start, position_ - 3 - start);
      } else if (take("<!--")) {
        if (auto skipped = skipBehind("-->", "!--"); !skipped) return skipped;
      } else {
        return readLeafEnd(name);
      }
    }
  }

  Status readReference(std::string& text) {
    const auto name = bytes_.substr(position_, kLongestReference);
    const auto end = name.find(';');
    const auto character = end == kNowhere ? std::nullopt : referencedCharacter(name.substr(0, end));
    if (!character)
      return failure(u"“&” begins no reference that is known here; as a character it is “&amp;”");
    text += *character;
    position_ += end + 1;
    return {};
  }

  Status readLeafEnd(std::string_view name) {
    if (!take("</")) return failure(u"<%@> has another element in it", name);
    const auto found = readName();
    position_ = std::min(bytes_.find_first_not_of(kSpace, position_), bytes_.size());
    return found == name && take(">") ? Status() : unexpected("</", found);
  }

  void writeLeaf(std::string_view name, std::string_view text) {
    writeTag("<", name, ">");
    if (text.find_first_of("<&") == kNowhere) {
      prepared_ += text;
    } else {
      // A section cannot hold its own end, which is split over two of them.
      prepared_ += "<![CDATA[";
      for (auto end = text.find("]]>"); end != kNowhere; end = text.find("]]>")) {
        prepared_ += text.substr(0, end + 2);
        prepared_ += "]]><![CDATA[";
        text.remove_prefix(end + 2);
      }
      prepared_ += text;
      prepared_ += "]]>";
    }
    writeTag("</", name, ">");
  }

  void writeTag(std::string_view opening, std::string_view name, std::string_view end) {
    prepared_.append(opening).append(name).append(end);
  }

  std::string_view readName() {
    const auto start = position_;
    while (position_ < bytes_.size() && bytes_[position_] >= 'a' && bytes_[position_] <= 'z') ++position_;
    return bytes_.substr(start, position_ - start);
  }

  Error unexpected(std::string_view opening, std::string_view name) const {
    if (position_ == bytes_.size()) return failure(u"the file is cut off");
    return failure(u"%@…> does not belong here", std::string(opening).append(name));
  }

  Error cutOff(std::string_view element) const {
    return failure(u"the file is cut off within <%@>", element);
  }

  Error failure(std::u16string_view what, std::string_view name = {}) const {
    return failureAt(position_, what, name);
  }

  // Of a name that somebody may have made up, only the beginning is quoted.
  Error failureAt(std::size_t position, std::u16string_view what, std::string_view name) const {
    const auto line = std::ranges::count(bytes_.substr(0, position), '\n') + 1;
    return {toUtf8(localizedFormat(u"Line %@: %@. Correct the file there, or export it again.",
                                   toUtf16(std::to_string(line)),
                                   localizedFormat(what, toUtf16(name.substr(0, kLongestName)))))};
  }

  std::string_view bytes_;
  std::size_t position_ = 0;
  std::size_t values_ = 0;
  std::size_t textSize_ = 0;
  std::vector<OpenElement> open_;
  bool isClosed_ = false;
  std::string prepared_;
};

}  // namespace

Result<std::string> prepareXmlPropertyList(std::string_view bytes) {
  return XmlPreparation(bytes).run();
}

}  // namespace quorlo
