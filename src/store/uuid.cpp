#include "store/uuid.h"

#include <sys/random.h>
#include <uuid/uuid.h>

namespace quorlo {
namespace {

std::string canonical(const uuid_t& uuid) {
  char text[UUID_STR_LEN];
  uuid_unparse_upper(uuid, text);
  return text;
}

// The name space of identities that come from content; never changed, or libraries would be read twice.
constexpr unsigned char kContentNamespace[] = {0x8E, 0x2A, 0x61, 0x5C, 0x0D, 0x37, 0x4B, 0x94,
                                               0xA1, 0x5F, 0x3C, 0x70, 0xD9, 0x46, 0xE8, 0x1B};

}  // namespace

// The bytes are asked of the system directly: libuuid seeds a generator of its own at each call, too.
std::string randomUuid() {
  uuid_t uuid;
  if (::getrandom(uuid, sizeof uuid, 0) != sizeof uuid) uuid_generate_random(uuid);
  uuid[6] = static_cast<unsigned char>((uuid[6] & 0x0F) | 0x40);  // version 4
  uuid[8] = static_cast<unsigned char>((uuid[8] & 0x3F) | 0x80);  // the variant of RFC 9562
  return canonical(uuid);
}

std::string uuidForContent(std::string_view bytes) {
  uuid_t uuid;
  uuid_generate_sha1(uuid, kContentNamespace, bytes.data(), bytes.size());
  return canonical(uuid);
}

}  // namespace quorlo
