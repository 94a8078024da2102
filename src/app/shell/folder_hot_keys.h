#pragma once

#include "base/subscription.h"
#include "platform/shortcut.h"

#include <functional>
#include <map>
#include <memory>

namespace quorlo {

class HotKeyCenter;
class ManagedObjectContext;
class QLCategory;

// The hot keys of the folders, registered as long as this lives and anew whenever one of them changes. Of
// folders with the same combination the last one has it. Main thread.
class FolderHotKeys {
 public:
  using Pressed = std::function<void(const std::shared_ptr<QLCategory>&)>;

  // The references must outlive this.
  FolderHotKeys(ManagedObjectContext& context, HotKeyCenter& hotKeys, Pressed pressed);

 private:
  using Wanted = std::map<Shortcut, std::shared_ptr<QLCategory>>;

  Wanted wantedHotKeys() const;
  void registerHotKeys();

  ManagedObjectContext& context_;
  HotKeyCenter& hotKeys_;
  Pressed pressed_;
  Wanted wanted_;
  std::map<Shortcut, Subscription> registered_;
  Subscription changes_;
};

}  // namespace quorlo
