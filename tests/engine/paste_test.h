#pragma once

#include "engine/expansion_world.h"

#include <string>
#include <string_view>

namespace quorlo {

struct PasteTest : ExpansionWorld {
  PasteTest() { desktop.pasteboard.copyFromElsewhere("mine"); }

  static std::u16string pressing(std::u16string_view value) {
    return u"%specialKey:value=" + std::u16string(value) + u":specialKey%";
  }
};

}  // namespace quorlo
