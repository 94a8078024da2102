#include "app/shell/menu/status_item_menu.h"

#include "base/localized.h"

#include <utility>

namespace quorlo {

std::vector<StatusMenuItem> statusItemMenu(const MenuToggles& toggles, std::function<void()> openSnippetMenu,
                                           const std::function<void(MenuCommand)>& perform) {
  std::vector<StatusMenuItem> lines{
      {localized(u"Search Snippets"), "magnifyingglass", std::nullopt, std::move(openSnippetMenu)}};
  const auto add = [&](const MenuItem& item, std::optional<bool> isChecked) {
    lines.push_back(
        {item.title, item.image, isChecked, [perform, command = *item.command] { perform(command); }});
  };
  lines.emplace_back();
  for (const auto& item : fixedMenuItems(toggles)) {
    if (!item.command) continue;
    add(item, std::nullopt);
    if (item.submenu.empty()) continue;
    lines.emplace_back();
    for (const auto& each : item.submenu) add(each, each.hasCheckMark);
    lines.emplace_back();
  }
  return lines;
}

}  // namespace quorlo
