#include "x11/keyboard/x11_event_tap.h"

#include "x11/keyboard/keyboard_service.h"

namespace quorlo {

std::unique_ptr<EventTap::Port> X11EventTap::create(Callback callback, void* userInfo) {
  return keyboard_.createTap(callback, userInfo);
}

}  // namespace quorlo
