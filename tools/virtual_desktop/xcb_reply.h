#pragma once

#include <cstdlib>
#include <memory>

namespace quorlo {

struct FreeXcbReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeXcbReply>;

}  // namespace quorlo
