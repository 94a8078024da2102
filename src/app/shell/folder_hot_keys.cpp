#include "app/shell/folder_hot_keys.h"

#include "base/log.h"
#include "platform/hot_key_center.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_category.h"

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

bool concernsFolders(const ChangeSet& changes) {
  const auto holdsFolder = [](const auto& records) {
    return std::ranges::any_of(records, [](const auto& each) { return each->entity() == Entity::category; });
  };
  return holdsFolder(changes.inserted) || holdsFolder(changes.updated) || holdsFolder(changes.deleted);
}

}  // namespace

FolderHotKeys::FolderHotKeys(ManagedObjectContext& context, HotKeyCenter& hotKeys, Pressed pressed)
    : context_(context), hotKeys_(hotKeys), pressed_(std::move(pressed)) {
  changes_ = context_.observeObjectsDidChange([this](const ChangeSet& changes) {
    if (concernsFolders(changes)) registerHotKeys();
  });
  registerHotKeys();
}

FolderHotKeys::Wanted FolderHotKeys::wantedHotKeys() const {
  const auto folders = context_.fetch<QLCategory>({.predicate = QLCategory::kShortcutKeyCode.isNotNil()});
  if (!folders) {
    logError("ERROR: #5w6jwPPP2; Couldn't fetch Category. " + folders.error().message);
    return {};
  }
  Wanted wanted;
  for (const auto& folder : folders.value()) {
    if (const auto shortcut = folder->shortcutValue()) wanted[normalized(*shortcut)] = folder;
  }
  return wanted;
}

void FolderHotKeys::registerHotKeys() {
  auto wanted = wantedHotKeys();
  if (wanted == wanted_) return;
  registered_.clear();
  wanted_ = std::move(wanted);
  for (const auto& [shortcut, folder] : wanted_) {
    auto registration =
        hotKeys_.registerHotKey(shortcut, [pressed = pressed_, folder = folder] { pressed(folder); });
    if (registration) {
      registered_[shortcut] = std::move(registration).value();
    } else {
      logWarning("WARNING: #fHk7reg - " + registration.error().message);
    }
  }
}

}  // namespace quorlo
