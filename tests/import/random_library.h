#pragma once

#include "store/test_library.h"
#include "text/random_text.h"
#include "text/utf.h"

#include <string>

namespace quorlo {

// Well-formed and without NUL characters, as the names in a document are.
inline std::u16string storedText(Random& random, std::size_t pieces) {
  auto text = toUtf16(toUtf8(randomText(random, pieces)));
  std::erase(text, u'\0');
  return text;
}

// Fills an empty library: rich texts with pictures and half characters, rules and hot keys, the trash,
// folders and snippets with nothing in them. Every title has a number of its own, if it has anything.
inline void fillAtRandom(TestLibrary& library, Random& random) {
  const auto sometimes = [&random] { return pick(random, 3) == 0; };
  std::vector<std::shared_ptr<QLCategory>> folders;
  for (std::size_t i = 0; i < pick(random, 5); ++i) {
    const auto folder = sometimes() ? library.folder(CategoryType::SharedFolder, SourceType::Public)
                                    : library.folder(CategoryType::Folder);
    folder->setTitle(storedText(random, 3));
    folder->setSort(static_cast<std::int64_t>(pick(random, 9)) - 4);
    folder->setExpansionBehavior(static_cast<std::int64_t>(10 * pick(random, 4)));
    if (sometimes())
      folder->setShortcutValue(Shortcut{static_cast<std::uint16_t>(pick(random, 50)), modifier::kOption});
    const auto name = "org.example." + std::to_string(i);
    if (sometimes()) folder->addAllowedApp(*library.app(name, AppType::Allowed));
    if (sometimes()) folder->addBlockedApp(*library.app(name, AppType::Blocked));
    folders.push_back(folder);
  }
  if (sometimes()) library.app("org.example.Excluded");
  for (std::size_t i = 0; i < pick(random, 12); ++i) {
    const auto title = std::to_string(i);
    const auto snippet = library.context.insert<QLSnippet>();
    snippet->setTitle(storedText(random, 2) + toUtf16(title) + storedText(random, 2));
    if (!sometimes()) snippet->setAbbreviation(toUtf16(title) + u"\",Ü");
    snippet->setText(sometimes() ? AttributedString(randomText(random, 12)) : randomAttributedString(random));
    snippet->setFormatted(static_cast<std::int64_t>(kSnippetTypes[pick(random, 4)]));
    if (!folders.empty() && !sometimes()) snippet->setCategory(folders[pick(random, folders.size())].get());
    if (pick(random, 8) == 0) snippet->moveToTrash();
  }
}

}  // namespace quorlo
