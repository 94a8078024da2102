#include "text/rich_text/cbor_check.h"

#include <optional>
#include <string>
#include <vector>

namespace quorlo {
namespace {

enum MajorType : std::uint8_t { byteString = 2, textString = 3, array = 4, map = 5, tag = 6, simple = 7 };

struct Head {
  std::uint8_t major = 0;
  std::uint64_t argument = 0;
};

class HeadReader {
 public:
  explicit HeadReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  std::size_t position() const { return position_; }
  std::size_t remaining() const { return bytes_.size() - position_; }
  void skip(std::size_t count) { position_ += count; }

  // Nothing when the head is cut off or of an indefinite or reserved length.
  std::optional<Head> next() {
    if (remaining() == 0) return {};
    const auto initial = bytes_[position_++];
    Head head{static_cast<std::uint8_t>(initial >> 5), initial & 31U};
    if (head.argument < 24) return head;
    if (head.argument > 27) return {};
    const auto size = std::size_t{1} << (head.argument - 24);
    if (remaining() < size) return {};
    head.argument = 0;
    for (std::size_t i = 0; i < size; ++i) head.argument = head.argument << 8 | bytes_[position_++];
    return head;
  }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t position_ = 0;
};

}  // namespace

Status checkCbor(std::span<const std::uint8_t> bytes, std::size_t maxDepth) {
  HeadReader reader(bytes);
  const auto failure = [&](const std::string& what) {
    return Error{what + " at byte " + std::to_string(reader.position()) + "."};
  };
  std::vector<std::uint64_t> open{1};  // items still missing, of the whole and of each open container
  while (!open.empty()) {
    if (open.back() == 0) {
      open.pop_back();
      continue;
    }
    --open.back();
    const auto head = reader.next();
    if (!head) return failure("The data is cut off or damaged");
    switch (head->major) {
      case byteString:
      case textString:
        if (head->argument > reader.remaining()) return failure("The data is cut off");
        reader.skip(static_cast<std::size_t>(head->argument));
        break;
      case array:
      case map: {
        // Each item takes at least one byte. Without this the double of a count might overflow.
        if (head->argument > reader.remaining()) return failure("The data is cut off");
        if (open.size() > maxDepth) return failure("The data is nested too deeply");
        open.push_back(head->major == map ? head->argument * 2 : head->argument);
        break;
      }
      case tag:
        return failure("The data holds a tag");
      default:
        break;
    }
  }
  return {};
}

}  // namespace quorlo
