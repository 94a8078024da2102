#pragma once

#include "base/result.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// The objects of a binary property list, one by one and without following what they refer to: "bplist00", the
// objects, a table of their places, and a trailer of 32 bytes. Each object begins with a byte of its kind
// (the upper half) and its length. Described in the comment at the top of
// https://github.com/unofficial-opensource-apple/CF/blob/master/CFBinaryPList.c
struct BinaryObject {
  enum Kind : unsigned {
    simple = 0x0,
    integer = 0x1,
    real = 0x2,
    date = 0x3,
    data = 0x4,
    asciiText = 0x5,
    utf16Text = 0x6,
    uid = 0x8,
    array = 0xA,
    dictionary = 0xD
  };

  unsigned kind = 0;
  std::size_t content = 0;  // where it begins
  std::size_t length = 0;   // of the content in bytes
  // To other objects, which are the content of an array or a dictionary; of the latter the keys come first.
  std::size_t references = 0;

  bool isContainer() const { return kind == array || kind == dictionary; }
};

class BinaryObjects {
 public:
  // Fails when the trailer or the table is damaged. The objects need not be. The bytes outlive this.
  static Result<BinaryObjects> open(std::string_view bytes);

  std::size_t count() const { return count_; }
  std::size_t root() const { return root_; }

  // Fails on an object that is not whole, of no known kind, or a text that is not what it says. Takes time by
  // its length. Numbers are below count().
  Result<BinaryObject> read(std::size_t object) const;
  bool isText(std::size_t object) const;

  // Reference number `index` of a container that was read; may be no object.
  std::size_t reference(const BinaryObject& container, std::size_t index) const;

  // An error that names the object; `what` is localised.
  Error failure(std::size_t object, std::u16string_view what) const;

 private:
  explicit BinaryObjects(std::string_view bytes) : bytes_(bytes) {}

  std::size_t number(std::size_t position, std::size_t size) const;
  std::size_t place(std::size_t object) const { return number(table_ + object * placeSize_, placeSize_); }
  std::optional<std::size_t> readLength(BinaryObject& object, unsigned half) const;

  std::string_view bytes_;
  std::size_t placeSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::size_t count_ = 0;
  std::size_t root_ = 0;
  std::size_t table_ = 0;
};

}  // namespace quorlo
