#include "store/uuid.h"

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

std::string randomUuid() {
  uuid_t uuid;
  uuid_generate_random(uuid);
  return canonical(uuid);
}

std::string uuidForContent(std::string_view bytes) {
  uuid_t uuid;
  uuid_generate_sha1(uuid, kContentNamespace, bytes.data(), bytes.size());
  return canonical(uuid);
}

}  // namespace quorlo
