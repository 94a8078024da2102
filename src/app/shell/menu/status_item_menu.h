#pragma once

#include "app/shell/menu/menu_item.h"
#include "platform/status_item.h"

#include <functional>
#include <vector>

namespace quorlo {

// The plain menu of the status item: opening the snippet menu, then the fixed items with the toggles of
// their submenu in their midst.
std::vector<StatusMenuItem> statusItemMenu(const MenuToggles& toggles, std::function<void()> openSnippetMenu,
                                           const std::function<void(MenuCommand)>& perform);

}  // namespace quorlo
