// The text of a snippet and what is made from it.

#include "store/records/ql_snippet.h"

#include "base/log.h"
#include "store/context/managed_object_context.h"
#include "store/records/snippet_image.h"
#include "store/records/snippet_text_cache.h"

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

constexpr char16_t kAttachmentCharacter = 0xFFFC;

std::size_t imageCount(const AttributedString& text) {
  std::size_t count = 0;
  text.forEachRun([&](const AttributedString::Run& run) {
    if (!run.attributes.image) return;
    const auto characters = std::u16string_view(text.string()).substr(run.range.location, run.range.length);
    count += static_cast<std::size_t>(std::ranges::count(characters, kAttachmentCharacter));
  });
  return count;
}

}  // namespace

AttributedString QLSnippet::text() const {
  const auto* rich = richText();
  return rich != nullptr ? *rich : AttributedString(plainText_);
}

Result<AttributedString> QLSnippet::readText() const {
  if (richText_) return *richText_;
  if (richTextPlace_ == RichTextPlace::none || managedObjectContext() == nullptr) {
    return AttributedString(plainText_);
  }
  auto read = managedObjectContext()->richText(*this);
  if (!read) return read.error();
  // Somebody else has made it plain since.
  if (!read.value()) return AttributedString(plainText_);
  return *std::move(read).value();
}

const AttributedString* QLSnippet::richText() const {
  if (richTextPlace_ == RichTextPlace::store && managedObjectContext() != nullptr) loadRichText();
  return richText_.get();
}

void QLSnippet::loadRichText() const {
  auto read = managedObjectContext()->richText(*this);
  if (!read) {
    logError("ERROR: #rT3xtLd; Couldn't read the formats of a snippet's text. " + read.error().message);
    richTextPlace_ = RichTextPlace::unreadable;
  } else if (read.value()) {
    richText_ = std::make_unique<const AttributedString>(*std::move(read).value());
    richTextPlace_ = RichTextPlace::both;
  }
}

// Everything made from it can be made again, but for pictures that somebody else holds.
void QLSnippet::releaseRichText() {
  if (richTextPlace_ != RichTextPlace::both && richTextPlace_ != RichTextPlace::unreadable) return;
  richTextPlace_ = RichTextPlace::store;
  richText_.reset();
  cache_.reset();
  if (std::ranges::all_of(images_, [](const auto& each) { return each.use_count() == 1; })) {
    images_.clear();
    imagesAreBuilt_ = false;
  }
}

void QLSnippet::setText(AttributedString text) {
  if (text.isPlain()) {
    if (richText() != nullptr || text.string() != plainText_) replaceText(text.string(), nullptr);
    return;
  }
  if (const auto* rich = richText(); rich != nullptr && *rich == text) return;
  auto plainText = text.string();
  replaceText(std::move(plainText), std::make_unique<const AttributedString>(std::move(text)));
}

void QLSnippet::setPlainText(std::u16string text) {
  if (text != plainText_) replaceText(std::move(text), nullptr);
}

void QLSnippet::replaceText(std::u16string plainText, std::unique_ptr<const AttributedString> richText) {
  const auto images = richText ? imageCount(*richText) : 0;
  const bool hasOtherPlainText = plainText != plainText_;
  const bool hasOtherImageCount = images != imageCount_;
  plainText_ = std::move(plainText);
  richText_ = std::move(richText);
  richTextPlace_ = richText_ ? RichTextPlace::here : RichTextPlace::none;
  imageCount_ = images;
  cache_.reset();
  if (std::exchange(updatesImagesAfterTextChange_, false)) updateImages();

  didChange(kText);
  if (hasOtherPlainText) didChange(kPlainText);
  if (hasOtherImageCount) didChange(kNumberOFImagesString);
  touch();
}

SnippetTextCache& QLSnippet::cache() const {
  if (!cache_) cache_ = std::make_unique<SnippetTextCache>();
  return *cache_;
}

const std::vector<std::u16string>& QLSnippet::macroStrings() const {
  return cache().macroStrings([this] {
    const auto* context = managedObjectContext();
    return context == nullptr ? std::vector<std::u16string>() : context->macroStrings(plainText_);
  });
}

const std::u16string& QLSnippet::plainTextWithoutMacros() const {
  return cache().plainTextWithoutMacros(plainText_, macroStrings());
}
std::size_t QLSnippet::numberOfCharacters() const {
  return cache().numberOfCharacters(plainText_);
}
const AttributedString& QLSnippet::attributedString() const {
  const auto* rich = richText();
  return rich != nullptr ? *rich : cache().plainAttributedString(plainText_);
}
const AttributedString& QLSnippet::attributedStringWithoutAttachments() const {
  return imageCount_ == 0 ? attributedString() : cache().withoutAttachments(attributedString());
}

const std::vector<std::shared_ptr<SnippetImage>>& QLSnippet::images() {
  if (!imagesAreBuilt_) updateImages();
  return images_;
}

void QLSnippet::updateImages() {
  imagesAreBuilt_ = true;
  images_.clear();
  const auto* rich = richText();
  if (rich == nullptr) return;
  const auto self = std::static_pointer_cast<QLSnippet>(shared_from_this());
  rich->forEachRun([&](const AttributedString::Run& run) {
    if (!run.attributes.image) return;
    const auto& [bytes, mediaType] = *run.attributes.image;
    images_.push_back(std::make_shared<SnippetImage>(self, mediaType, bytes));
  });
}

}  // namespace quorlo
