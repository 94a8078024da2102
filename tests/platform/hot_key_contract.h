#pragma once

#include "platform/hot_key_center.h"

#include <gtest/gtest.h>

#include <functional>

namespace quorlo {

inline constexpr Shortcut kMenuKey{key::kSpace, modifier::kCommand | modifier::kOption};
inline constexpr Shortcut kFolderKey{122, modifier::kShift};  // F1

// What every hot key center does. `press` presses a combination and waits until it has had its effect.
inline void expectHotKeysToCallWhileTheyAreRegistered(HotKeyCenter& center,
                                                      const std::function<void(Shortcut)>& press) {
  int menus = 0;
  int folders = 0;
  auto menu = center.registerHotKey(kMenuKey, [&] { ++menus; });
  Result<Subscription> folder = center.registerHotKey(kFolderKey, [&] {
    ++folders;
    folder.value().reset();
  });
  ASSERT_TRUE(menu.ok());
  ASSERT_TRUE(folder.ok());
  const Shortcut sameKey{kMenuKey.keyCode, kMenuKey.modifierFlags | modifier::kLeftCommandEvent};
  EXPECT_FALSE(center.registerHotKey(sameKey, [] {}).ok());
  press(kMenuKey);
  for (int i = 0; i < 2; ++i) press(kFolderKey);
  EXPECT_EQ(menus, 1);
  EXPECT_EQ(folders, 1) << "it ended its own registration";

  auto suspension = center.suspend();
  press(kMenuKey);
  suspension.reset();
  EXPECT_EQ(menus, 1);
  press(kMenuKey);
  EXPECT_EQ(menus, 2);
  menu.value().reset();
  press(kMenuKey);
  EXPECT_EQ(menus, 2);
  EXPECT_TRUE(center.registerHotKey(kMenuKey, [] {}).ok());
}

}  // namespace quorlo
