#include "text/text_attributes.h"

namespace quorlo {

bool ImageAttachment::operator==(const ImageAttachment& other) const {
  if (mediaType != other.mediaType) return false;
  if (bytes == other.bytes) return true;
  static const std::vector<std::uint8_t> kNone;
  return (bytes ? *bytes : kNone) == (other.bytes ? *other.bytes : kNone);
}

}  // namespace quorlo
