#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <set>
#include <vector>

namespace quorlo {

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Owned = std::unique_ptr<T, FreeMemory>;

// The devices that report keys: those of XTEST, by which programs press keys, and the physical ones.
class ServerKeyboards {
 public:
  explicit ServerKeyboards(xcb_connection_t* connection) : connection_(connection) {}

  // Asks the server which there are.
  void find();
  bool isXtest(std::uint16_t device) const { return xtest_.contains(device); }
  const std::set<std::uint16_t>& physical() const { return physical_; }

  std::vector<std::uint8_t> downOn(std::uint16_t device) const;
  std::set<std::uint8_t> downOnXtest() const;
  // The keys that change what others do for as long as they are held.
  std::set<std::uint8_t> heldModifierKeys() const;

  // By XTEST.
  void press(std::uint8_t keycode) const;
  void release(std::uint8_t keycode) const;

 private:
  xcb_connection_t* connection_;
  std::set<std::uint16_t> xtest_;
  std::set<std::uint16_t> physical_;
};

}  // namespace quorlo
