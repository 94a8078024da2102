#include "import/formats/property_lists/binary_objects.h"

#include "base/localized.h"
#include "store/localized_format.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

namespace quorlo {
namespace {

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kTrailerSize = 32;

bool isSize(std::size_t size) {
  return size >= 1 && size <= 8;
}

bool isAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char each) { return static_cast<unsigned char>(each) < 0x80; });
}

bool isWellFormedUtf16(std::string_view bigEndian) {
  bool expectsLow = false;
  for (std::size_t i = 0; i + 1 < bigEndian.size(); i += 2) {
    const auto half = static_cast<unsigned char>(bigEndian[i]) & 0xFCU;
    if ((half == 0xDC) != expectsLow) return false;
    expectsLow = half == 0xD8;
  }
  return !expectsLow;
}

// The library ends a text at its first NUL, and what follows would be lost.
bool hasNul(std::string_view text, std::size_t unit) {
  for (auto found = text.find('\0'); found != std::string_view::npos; found = text.find('\0', found + 1)) {
    if (unit == 1 || (found % 2 == 0 && text[found + 1] == '\0')) return true;
  }
  return false;
}

// The bytes of one element of a kind that states how many it has; 0 for the others.
std::size_t unitSize(unsigned kind, std::size_t referenceSize) {
  switch (kind) {
    case BinaryObject::data:
    case BinaryObject::asciiText:
      return 1;
    case BinaryObject::utf16Text:
      return 2;
    case BinaryObject::array:
      return referenceSize;
    case BinaryObject::dictionary:
      return 2 * referenceSize;
    default:
      return 0;
  }
}

// The bytes of a kind whose first byte says it all; absent where there is no such object.
std::optional<std::size_t> fixedSize(unsigned kind, unsigned half) {
  switch (kind) {
    case BinaryObject::simple:
      if (half == 8 || half == 9) return 0;
      break;
    case BinaryObject::integer:
      if (half <= 4) return std::size_t{1} << half;
      break;
    case BinaryObject::real:
      if (half == 2 || half == 3) return std::size_t{1} << half;
      break;
    case BinaryObject::date:
      if (half == 3) return 8;
      break;
    case BinaryObject::uid:
      if (half == 0 || half == 1 || half == 3) return half + 1;
      break;
    default:
      break;
  }
  return std::nullopt;
}

}  // namespace

Result<BinaryObjects> BinaryObjects::open(std::string_view bytes) {
  const Error cutOff{toUtf8(localized(
      u"The file is cut off or damaged: the table at the end of a binary property list is not as it should be. Copy or "
      u"export the file again."))};
  if (bytes.size() < kHeaderSize + kTrailerSize) return cutOff;
  const auto trailer = bytes.size() - kTrailerSize;
  BinaryObjects objects(bytes);
  objects.placeSize_ = objects.number(trailer + 6, 1);
  objects.referenceSize_ = objects.number(trailer + 7, 1);
  objects.count_ = objects.number(trailer + 8, 8);
  objects.root_ = objects.number(trailer + 16, 8);
  objects.table_ = objects.number(trailer + 24, 8);
  const auto table = objects.table_;
  if (!isSize(objects.placeSize_) || !isSize(objects.referenceSize_)) return cutOff;
  if (objects.root_ >= objects.count_ || table < kHeaderSize || table > trailer) return cutOff;
  if (objects.count_ > (trailer - table) / objects.placeSize_) return cutOff;
  for (std::size_t object = 0; object < objects.count_; ++object) {
    const auto place = objects.place(object);
    if (place < kHeaderSize || place >= table)
      return objects.failure(object, localized(u"lies outside of the file"));
  }
  return objects;
}

Result<BinaryObject> BinaryObjects::read(std::size_t object) const {
  const auto start = place(object);
  const auto marker = static_cast<unsigned>(number(start, 1));
  BinaryObject read{marker >> 4, start + 1};
  const auto half = marker & 0xFU;
  if (const auto unit = unitSize(read.kind, referenceSize_); unit > 0) {
    const auto length = readLength(read, half);
    if (!length || *length > (table_ - read.content) / unit) return failure(object, localized(u"is cut off"));
    read.length = *length * unit;
    if (read.isContainer()) read.references = read.length / referenceSize_;
  } else {
    const auto size = fixedSize(read.kind, half);
    if (!size) return failure(object, localized(u"is of a kind that no file of snippets has"));
    if (*size > table_ - read.content) return failure(object, localized(u"is cut off"));
    read.length = *size;
  }
  const auto content = bytes_.substr(read.content, read.length);
  if (read.kind == BinaryObject::asciiText && !isAscii(content))
    return failure(object, localized(u"is no ASCII text"));
  // No program writes one, and the library takes it for damage of the whole file.
  if (read.kind == BinaryObject::utf16Text && content.empty())
    return failure(object, localized(u"is an empty text in UTF-16"));
  if (read.kind == BinaryObject::utf16Text && !isWellFormedUtf16(content))
    return failure(object, localized(u"is no well-formed UTF-16 text"));
  if (isText(object) && hasNul(content, read.kind == BinaryObject::utf16Text ? 2 : 1))
    return failure(object, localized(u"is a text with a NUL character in it"));
  return read;
}

bool BinaryObjects::isText(std::size_t object) const {
  const auto kind = number(place(object), 1) >> 4;
  return kind == BinaryObject::asciiText || kind == BinaryObject::utf16Text;
}

std::size_t BinaryObjects::reference(const BinaryObject& container, std::size_t index) const {
  return number(container.content + index * referenceSize_, referenceSize_);
}

Error BinaryObjects::failure(std::size_t object, std::u16string_view what) const {
  const auto name = toUtf16(fmt::format("{} (byte {})", object, place(object)));
  return {toUtf8(localizedFormat(u"Object %@ of the file %@. Copy or export the file again.", name, what))};
}

// Big endian, as all numbers of the format.
std::size_t BinaryObjects::number(std::size_t position, std::size_t size) const {
  std::uint64_t value = 0;
  for (const char byte : bytes_.substr(position, size)) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

// In the half byte, or in a whole number behind it.
std::optional<std::size_t> BinaryObjects::readLength(BinaryObject& object, unsigned half) const {
  if (half != 0xF) return half;
  if (object.content >= table_) return std::nullopt;
  const auto marker = number(object.content, 1);
  const auto size = std::size_t{1} << (marker & 0xFU);
  if (marker >> 4 != BinaryObject::integer || size > 8 || size >= table_ - object.content)
    return std::nullopt;
  const auto length = number(object.content + 1, size);
  object.content += 1 + size;
  return length;
}

}  // namespace quorlo
