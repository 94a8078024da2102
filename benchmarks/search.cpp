// What the menu takes from a search string that no snippet holds to its rows, all scopes on, in libraries of
// 10,000 and of 100,000 snippets of about 250 characters.

#include "app/shell/menu/menu_item.h"
#include "app/shell/menu/snippet_search.h"
#include "fakes/fake_environment.h"
#include "fakes/fake_main_queue.h"
#include "figures.h"
#include "store/context/managed_object_context.h"
#include "store/persistence_controller.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {
namespace {

constexpr int kRounds = 41;

std::u16string text(std::mt19937& random, std::size_t length) {
  static constexpr std::u16string_view kWords[] = {u"dear ",    u"Invoice ", u"größe ",   u"the ",
                                                   u"meeting ", u"Kind ",    u"regards ", u"your "};
  std::u16string text;
  while (text.size() < length) text += kWords[random() % std::size(kWords)];
  return text;
}

class Library {
 public:
  explicit Library(int size) {
    std::mt19937 random(7);
    std::vector<std::shared_ptr<QLCategory>> folders;
    for (int i = 0; i < 20; ++i) folders.push_back(context_.insert<QLCategory>());
    for (int i = 0; i < size; ++i) {
      const auto snippet = context_.insert<QLSnippet>();
      snippet->setTitle(text(random, 20));
      snippet->setAbbreviation(text(random, 6));
      snippet->setPlainText(text(random, random() % 500));
      snippet->setUseCount(static_cast<std::int64_t>(random() % 1000));
      snippet->setCategory(folders[random() % folders.size()].get());
    }
    queue_.settle();
  }

  // The median of `rounds` searches.
  double milliseconds(const std::u16string& searchString, int rounds = kRounds) {
    SnippetSearch search;
    search.searchString = searchString;
    search.sortDescriptors = {{&QLSnippet::kUseCount, false}};
    std::vector<double> samples;
    for (int round = 0; round < rounds; ++round) {
      const auto begin = std::chrono::steady_clock::now();
      const auto items = menuItems(MenuPlace::pointer, fixedMenuItems({}),
                                   snippetMenuItems(groupByFolder(findSnippets(context_, search))));
      const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - begin;
      if (items.empty()) return 0;
      samples.push_back(elapsed.count());
    }
    return percentile(std::move(samples), 0.5);
  }

 private:
  FakeMainQueue queue_;
  FakeEnvironment environment_;
  PersistenceController controller_{queue_, environment_};
  ManagedObjectContext& context_ = controller_.managedObjectContext();
};

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  using namespace quorlo;
  Figures figures(argc, argv);
  Library small(10'000);
  figures.add("search_first_10k_ms", small.milliseconds(u"quarterly", 1));
  figures.add("search_10k_ms", small.milliseconds(u"quarterly"));
  figures.add("search_all_found_10k_ms", small.milliseconds(u"e"));
  Library large(100'000);
  figures.add("search_100k_ms", large.milliseconds(u"quarterly"));
}
