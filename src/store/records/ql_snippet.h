#pragma once

#include "base/result.h"
#include "store/context/managed_object.h"
#include "store/context/predicate.h"
#include "store/context/record_set.h"
#include "store/records/snippet_type.h"
#include "text/attributed_string.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class QLApp;
class QLCategory;
class SnippetImage;
class SnippetTextCache;

// The title of a snippet that was given none: the first line of its text that is not blank, without the
// blanks around it.
std::u16string titleFromText(std::u16string_view text);

// One snippet. It is live unless it is in the trash (it has a deletionDate) or in a shared folder.
class QLSnippet final : public ManagedObject {
 public:
  static constexpr Entity kEntity = Entity::snippet;
  static const Attribute<std::string_view> kUuid;
  static const Attribute<Date> kCreationDate;
  static const Attribute<Date> kModifiedDate;
  static const Attribute<Date> kDeletionDate;
  static const Attribute<std::u16string_view> kTitle;
  static const Attribute<std::int64_t> kTitleIsCustom;
  static const Attribute<std::u16string_view> kAbbreviation;
  static const Attribute<std::u16string_view> kPlainText;
  static const Attribute<std::int64_t> kFormatted;
  static const Attribute<std::int64_t> kUseCount;
  static const Property kText;
  static const Property kNumberOFImagesString;
  static const Attribute<const ManagedObject*> kCategory;
  static const Attribute<std::int64_t> kCategoryType;        // category.type
  static const Attribute<std::int64_t> kCategorySourceType;  // category.sourceType
  static const Property kAllowedApps;
  static const Property kBlockedSnippets;

  QLSnippet();
  ~QLSnippet() override;

  // Both set on insertion in the main context, unless they are given. An empty uuid is replaced by a
  // new one when the snippet is fetched.
  const std::string& uuid() const { return uuid_; }
  void setUuid(std::string uuid);
  std::optional<Date> creationDate() const { return creationDate_; }
  void setCreationDate(Date date);

  // Follows changes of title, abbreviation, text and type.
  std::optional<Date> modifiedDate() const { return modifiedDate_; }
  void setModifiedDate(Date date);

  // When the snippet was moved to the trash.
  std::optional<Date> deletionDate() const { return deletionDate_; }
  void setDeletionDate(std::optional<Date> date);
  void moveToTrash();
  void restoreFromTrash() { setDeletionDate(std::nullopt); }
  bool isLive() const;

  // A snippet inserted without a title gets the first line of its text as one, a moment later.
  const std::u16string& title() const { return title_; }
  void setTitle(std::u16string title);
  std::u16string displayTitle() const;  // "Untitled" without a title
  bool titleIsCustom() const { return titleIsCustom_; }
  void setTitleIsCustom(bool isCustom);

  // Empty when nothing is stored; setting an empty one stores nil. Whether it may be used is not asked
  // here.
  const std::u16string& abbreviation() const { return abbreviation_; }
  void setAbbreviation(std::u16string abbreviation);

  // The text with its macro markup, and its characters alone (a picture is one U+FFFC), always in step.
  // Setting the plain text drops attributes and pictures, unless it is the one already there.
  AttributedString text() const;
  void setText(AttributedString text);
  // text(), of which nothing is kept that has to be read for it, for those who go through a whole library. An
  // error when it cannot be read.
  Result<AttributedString> readText() const;
  const std::u16string& plainText() const { return plainText_; }
  void setPlainText(std::u16string text);

  // The raw value of a SnippetType, as stored.
  std::int64_t formatted() const { return formatted_; }
  void setFormatted(std::int64_t rawValue);
  std::optional<SnippetType> type() const { return snippetType(formatted_); }

  std::int64_t useCount() const { return useCount_; }
  void setUseCount(std::int64_t count);
  std::u16string useCountText() const;  // "This snippet has been used 3 times."

  // "1 image": how many pictures the text holds.
  std::u16string numberOFImagesString() const { return imageCountLabel(imageCount_); }

  // Null for a snippet without a folder.
  std::shared_ptr<QLCategory> category() const;
  void setCategory(QLCategory* category);

  // The applications in which the snippet may and must not expand. The second name is the stored one;
  // it holds applications.
  const RecordSet<QLApp>& allowedApps() const { return allowedApps_; }
  void addAllowedApp(QLApp& app);
  void removeAllowedApp(QLApp& app);
  const RecordSet<QLApp>& blockedSnippets() const { return blockedSnippets_; }
  void addBlockedSnippet(QLApp& app);
  void removeBlockedSnippet(QLApp& app);

  // Not stored: worked out from the text when first asked after it has changed.
  const std::vector<std::u16string>& macroStrings() const;
  const std::u16string& plainTextWithoutMacros() const;
  std::size_t numberOfCharacters() const;  // as the user counts them
  const AttributedString& attributedString() const;
  const AttributedString& attributedStringWithoutAttachments() const;

  // Not stored: the pictures of the text, in its order. They stay the same objects, whatever becomes of
  // the text, until updateImages is called or, having been asked for, the text changes next.
  const std::vector<std::shared_ptr<SnippetImage>>& images();
  void updateImages();
  void updateImagesAfterNextTextChange() { updatesImagesAfterTextChange_ = true; }

  // Not stored: the title as an observer last saw it.
  const std::u16string& lastTitle() const { return lastTitle_; }
  void setLastTitle(std::u16string title) { lastTitle_ = std::move(title); }

 private:
  friend class ManagedObjectContext;
  friend class QLApp;
  friend class QLCategory;
  friend class SearchIndex;
  friend class StoreAccess;

  void awakeFromInsert(ManagedObjectContext& context) override;
  void awakeFromFetch() override;
  void prepareForDeletion() override;
  void dropRelationships() override;
  void didLoseRow() override;
  void touch();
  void deriveTitle();
  void replaceText(std::u16string plainText, std::unique_ptr<const AttributedString> richText);
  // Null for plain text, and for rich text that cannot be read now.
  const AttributedString* richText() const;
  void loadRichText() const;
  void releaseRichText();
  SnippetTextCache& cache() const;

  // Around every change of what makes the snippet live or of its abbreviation.
  void leaveIndex();
  void enterIndex();

  std::string uuid_;
  std::optional<Date> creationDate_;
  std::optional<Date> modifiedDate_;
  std::optional<Date> deletionDate_;
  std::u16string title_;
  std::u16string abbreviation_;
  std::u16string plainText_;
  // Where the rich text is; null unless it is here. One that is unreadable stays in the store until the
  // text is changed.
  enum class RichTextPlace : std::uint8_t { none, here, store, both, unreadable };
  mutable std::unique_ptr<const AttributedString> richText_;
  std::int64_t formatted_ = 0;
  std::int64_t useCount_ = 0;
  std::int64_t storedUseCount_ = 0;  // as far as it is known here
  std::size_t imageCount_ = 0;
  QLCategory* category_ = nullptr;
  RecordSet<QLApp> allowedApps_;
  RecordSet<QLApp> blockedSnippets_;
  mutable std::unique_ptr<SnippetTextCache> cache_;
  std::vector<std::shared_ptr<SnippetImage>> images_;
  std::u16string lastTitle_;
  std::size_t searchEntry_ = 0;  // of the SearchIndex; 0 for none
  mutable RichTextPlace richTextPlace_ = RichTextPlace::none;
  bool titleIsCustom_ = false;
  bool isToBeReadAgain_ = false;
  bool emptyAbbreviationIsStored_ = false;  // by an old version, in place of nil
  bool isIndexed_ = false;
  bool imagesAreBuilt_ = false;
  bool updatesImagesAfterTextChange_ = false;
};

}  // namespace quorlo
