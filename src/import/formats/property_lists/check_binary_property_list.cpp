#include "import/formats/property_lists/check_binary_property_list.h"

#include "base/localized.h"
#include "import/formats/property_lists/binary_objects.h"
#include "import/formats/property_lists/property_list.h"
#include "store/localized_format.h"
#include "text/utf.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorlo {
namespace {

// What an object stands for, with all that it shares written out. No sum overflows: each is refused as soon
// as it is above a limit.
struct Extent {
  std::uint64_t values = 0;  // 0 while it is not known
  std::uint64_t text = 0;    // bytes
  std::uint64_t data = 0;
  std::size_t depth = 0;  // containers, this one too
};

// A walk through the objects, each visited once, that keeps the way to where it is.
class BinaryCheck {
 public:
  explicit BinaryCheck(const BinaryObjects& objects) : objects_(objects) {}

  Status run() {
    if (objects_.count() > kMostPropertyListValues) return tooMuch();
    extents_.resize(objects_.count());
    isOpen_.resize(objects_.count());
    if (auto opened = open(objects_.root()); !opened) return opened;
    while (!way_.empty()) {
      const auto& here = way_.back();
      if (auto step = here.next < here.object.references ? descend() : close(); !step) return step;
    }
    return {};
  }

 private:
  struct OpenObject {
    std::size_t number;
    BinaryObject object;
    std::size_t next = 0;  // reference to follow
  };

  Status open(std::size_t number) {
    const auto read = objects_.read(number);
    if (!read) return read.error();
    const auto& object = read.value();
    if (object.kind == BinaryObject::dictionary && object.references / 2 > kMostPropertyListKeys)
      return objects_.failure(number,
                              localizedFormat(u"has more than %d keys", std::int64_t{kMostPropertyListKeys}));
    const std::size_t depth = object.isContainer() ? 1 : 0;
    if (way_.size() + depth > kDeepestPropertyList) return tooDeep(number);
    extents_[number] = {1, objects_.isText(number) ? object.length : 0,
                        object.kind == BinaryObject::data ? object.length : 0, depth};
    isOpen_[number] = true;
    way_.push_back({number, object});
    return {};
  }

  Status descend() {
    auto& here = way_.back();
    const bool isKey = here.object.kind == BinaryObject::dictionary && here.next < here.object.references / 2;
    const auto child = objects_.reference(here.object, here.next++);
    if (child >= objects_.count())
      return objects_.failure(here.number, localized(u"refers to an object that is not there"));
    if (isKey && !objects_.isText(child))
      return objects_.failure(child, localized(u"is the key of a dictionary, but no text"));
    if (isOpen_[child]) return objects_.failure(child, localized(u"contains itself"));
    return extents_[child].values == 0 ? open(child) : addToHere(child);
  }

  Status close() {
    const auto number = way_.back().number;
    isOpen_[number] = false;
    way_.pop_back();
    return way_.empty() ? Status() : addToHere(number);
  }

  Status addToHere(std::size_t child) {
    const auto& part = extents_[child];
    auto& whole = extents_[way_.back().number];
    if (way_.size() + part.depth > kDeepestPropertyList) return tooDeep(child);
    whole.depth = std::max(whole.depth, part.depth + 1);
    whole.values += part.values;
    whole.text += part.text;
    whole.data += part.data;
    if (whole.values > kMostPropertyListValues || whole.text > kMostPropertyListText ||
        whole.data > kLargestPropertyList)
      return tooMuch();
    return {};
  }

  Error tooDeep(std::size_t object) const {
    return objects_.failure(object, localized(u"is nested too deeply"));
  }

  static Error tooMuch() {
    return {
        toUtf8(localized(u"The file stands for too much: more than four million values, 32 MiB of text or "
                         u"256 MiB of data. Export fewer snippets at a time."))};
  }

  BinaryObjects objects_;
  std::vector<Extent> extents_;
  std::vector<bool> isOpen_;
  std::vector<OpenObject> way_;
};

}  // namespace

Status checkBinaryPropertyList(std::string_view bytes) {
  const auto objects = BinaryObjects::open(bytes);
  return objects ? BinaryCheck(objects.value()).run() : Status(objects.error());
}

}  // namespace quorlo
