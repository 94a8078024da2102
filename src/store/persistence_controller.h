#pragma once

#include "base/life_token.h"
#include "base/subscription.h"
#include "platform/main_queue.h"
#include "store/context/managed_object_context.h"
#include "store/context/record_store.h"
#include "store/library_notice.h"
#include "store/records/folder_types.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorlo {

class Environment;
class OpenLibraryFile;
class QLApp;
class QLCategory;
class QLSnippet;
class QLUser;

// Owns the main context, saves it a while after it has changed, answers the fetches that the rest of the
// program has in common, and keeps the library in order. One instance; main thread.
class PersistenceController {
 public:
  struct Options {
    // What ManagedObjectContext::Configuration says of them.
    std::unique_ptr<RecordStore> store = nullptr;
    std::function<std::vector<std::u16string>(std::u16string_view)> findMacroStrings = nullptr;
  };

  // Opens the library in the environment's data directory, which is begun or brought to the current layout if
  // need be, and loads it; `options` have no store. The error's message is the whole line with which the
  // program ends. The references outlive the controller.
  static Result<std::unique_ptr<PersistenceController>> open(MainQueue& mainQueue,
                                                             const Environment& environment, Options options);

  // Over a store that is opened already, or over none.
  PersistenceController(MainQueue& mainQueue, const Environment& environment, Options options);
  PersistenceController(MainQueue& mainQueue, const Environment& environment)
      : PersistenceController(mainQueue, environment, Options{}) {}

  ~PersistenceController();

  // The one that the program has bound; only for its user interface and its main file.
  static PersistenceController& shared();

  ManagedObjectContext& managedObjectContext() { return *context_; }

  // Calls saveAfterDidChangeNotification whenever the main context has changed. A second call does
  // nothing, however many ask; any other context saves itself.
  void observeObjectsDidChange(ManagedObjectContext& context);

  // Saves 3.5 s after the first change since the last such save, and again, ever later, while that fails.
  void saveAfterDidChangeNotification();

  // Saves at once, or a while later during the first 3 s after the start.
  void requestDeferredSave();

  // A failure is logged and leaves the changes in the context.
  void save();

  // Why what has changed is not saved, after the second failure; nothing once it is.
  const std::optional<Error>& saveFailure() const { return saveFailure_; }

  // Whether the library's name still leads to the file that was opened, to be asked whenever something
  // happens to it. Where it does not, nothing more is written there; what is in memory is kept in a file
  // beside it, and the new file is opened a moment later, or the library written back.
  bool storeIsInPlace();
  // The same without the moment's wait, for a program that ends.
  void makeSureOfStore();

  // Hears of what befalls the library's file, that before this call included. Set once, at the start.
  using NoticeHandler = std::function<void(const LibraryNotice&)>;
  void setNoticeHandler(NoticeHandler handler);
  // The program before this one did not end properly: the library should be checked.
  bool wasLeftUnclean() const { return wasLeftUnclean_; }

  // Null or empty when there is none; a failed fetch is logged and counts as none.
  std::shared_ptr<QLCategory> folder(std::string_view uuid) const;
  std::shared_ptr<QLCategory> builtInFolder(CategoryType type) const;                           // the oldest
  std::vector<std::shared_ptr<QLCategory>> userFoldersByTitle(std::u16string_view part) const;  // caselessly
  std::vector<std::shared_ptr<QLCategory>> foldersOfSection(SourceType section, CategoryType orType) const;
  std::vector<std::shared_ptr<QLCategory>> allFolders() const;  // in the order of the sidebar
  std::shared_ptr<QLSnippet> snippet(std::string_view uuid) const;
  // A live snippet before others.
  std::shared_ptr<QLSnippet> snippetForAbbreviation(std::u16string_view abbreviation) const;
  std::vector<std::u16string> activeAbbreviations() const;  // of the live snippets
  std::vector<std::shared_ptr<QLSnippet>> trashedSnippets() const;
  std::vector<std::shared_ptr<QLSnippet>> snippetsOutsideSharedFolders() const;  // trashed ones too
  std::shared_ptr<QLApp> ruleApplication(std::string_view bundleID, std::int64_t type) const;

  // The name for a new folder: "Untitled", "Untitled 2" and so on, the first that no folder has.
  std::u16string nextUntitledName() const;

  // The statistics record, made when the library has none. Null only when the fetch failed.
  std::shared_ptr<QLUser> currentUser();

  // A snippet to begin with, "Example Snippet", that says what it is there for.
  std::shared_ptr<QLSnippet> createExampleSnippet();

  // Hands files that were opened with the program to whoever imports them, which is set once, at the start.
  void openFiles(const std::vector<std::filesystem::path>& files);
  using FileOpener = std::function<void(const std::vector<std::filesystem::path>& files)>;
  void setFileOpener(FileOpener opener) { fileOpener_ = std::move(opener); }

  // While it lives, the saves that come by themselves wait: somebody writes to the file for longer than
  // anybody should wait for the lock. Those that are asked for do not.
  Subscription deferSaves();

  // Repairs that are done once in the life of a library, by their names: it says so itself, in whatever
  // program and on whatever device it is opened. What a repair has changed is saved before it counts as done;
  // a failure is logged and leaves it to be done again.
  bool hasRepaired(std::string_view name) const;
  void noteRepaired(std::string_view name);

  // The maintenance of store_maintenance.h and built_in_folders.h on the main context; which of it when, and
  // what has been done once, is the start-up's business. What is merged is saved at once, other changes soon.
  void createBuiltInFolders();
  void markTitlesAsCustom();
  void fixEmptyAbbreviations();
  Status migrateFolders();  // counts the snippets, too; an error is logged as well
  Status mergeDuplicateUsers();
  Status mergeDuplicateFolders();
  void purgeTrash();
  void countSnippets();

 private:
  bool trySave();  // false when it failed, which is logged
  void noteFailedSave(const Error& error);
  void recoverLater(Seconds delay);
  void recover();
  void tell(LibraryNotice notice);

  MainQueue& mainQueue_;
  const Environment& environment_;
  std::unique_ptr<ManagedObjectContext> context_;
  Subscription observation_;
  Seconds saveDelay_;
  bool isWaitingForSave = false;
  bool saveTimerIsRunning = false;
  int saveDeferrals_ = 0;
  FileOpener fileOpener_;
  std::unique_ptr<OpenLibraryFile> file_;  // null over a store that is none of SQLite's
  bool recoveryIsDue_ = false;
  std::optional<Error> saveFailure_;
  int failedSaves_ = 0;
  bool wasLeftUnclean_ = false;
  NoticeHandler noticeHandler_;
  std::vector<LibraryNotice> untold_;
  const MainQueue::Instant lastSaveRequestDate;
  LifeToken life_;
};

}  // namespace quorlo
