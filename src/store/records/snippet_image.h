#pragma once

#include "base/observers.h"
#include "base/subscription.h"

#include <any>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class QLSnippet;

// One picture inside a snippet while it is shown or edited; not stored. Equal only to itself.
class SnippetImage {
 public:
  using Data = std::shared_ptr<const std::vector<std::uint8_t>>;

  SnippetImage(std::weak_ptr<QLSnippet> snippet, std::string fileType, Data imageData);
  SnippetImage(const SnippetImage&) = delete;
  SnippetImage& operator=(const SnippetImage&) = delete;

  const SnippetImage* id() const { return this; }
  bool operator==(const SnippetImage& other) const { return this == &other; }

  // Null when the snippet is gone.
  std::shared_ptr<QLSnippet> snippet() const { return snippet_.lock(); }

  // A media type such as "image/png".
  const std::string& fileType() const { return fileType_; }
  void setFileType(std::string fileType);

  // As encoded in the file; null counts as no bytes.
  const Data& imageData() const { return imageData_; }
  void setImageData(Data data);  // forgets the decoded picture

  // The decoded picture and the views that show it, still and animated, in the user interface's own
  // types; empty until it sets them.
  const std::any& image() const { return image_; }
  void setImage(std::any image);
  const std::any& stillView() const { return stillView_; }
  void setStillView(std::any view);
  const std::any& animatedView() const { return animatedView_; }
  void setAnimatedView(std::any view);

  // Calls with the name of each property that was set.
  Subscription observeChanges(std::function<void(std::string_view name)> callback);

 private:
  std::weak_ptr<QLSnippet> snippet_;
  std::string fileType_;
  Data imageData_;
  std::any image_;
  std::any stillView_;
  std::any animatedView_;
  Observers<std::string_view> observers_;
};

}  // namespace quorlo
