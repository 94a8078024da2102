#include "engine/paste/paste_services.h"

#include "platform/keyboard_layout.h"

namespace quorlo {

PasteKeys::PasteKeys(const KeyboardLayout& layout)
    : deleteKeyCode(layout.keyCodeForNamedKey(NamedKey::deleteBackward).value_or(key::kBackspace)),
      leftArrowKeyCode(layout.keyCodeForNamedKey(NamedKey::leftArrow).value_or(key::kLeftArrow)) {}

}  // namespace quorlo
