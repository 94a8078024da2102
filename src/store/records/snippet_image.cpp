#include "store/records/snippet_image.h"

#include "store/records/ql_snippet.h"

#include <utility>

namespace quorlo {

SnippetImage::SnippetImage(std::weak_ptr<QLSnippet> snippet, std::string fileType, Data imageData)
    : snippet_(std::move(snippet)), fileType_(std::move(fileType)), imageData_(std::move(imageData)) {}

void SnippetImage::setFileType(std::string fileType) {
  fileType_ = std::move(fileType);
  observers_.notify("fileType");
}

void SnippetImage::setImageData(Data data) {
  imageData_ = std::move(data);
  image_.reset();
  observers_.notify("imageData");
  observers_.notify("image");
}

void SnippetImage::setImage(std::any image) {
  image_ = std::move(image);
  observers_.notify("image");
}

void SnippetImage::setStillView(std::any view) {
  stillView_ = std::move(view);
  observers_.notify("stillView");
}

void SnippetImage::setAnimatedView(std::any view) {
  animatedView_ = std::move(view);
  observers_.notify("animatedView");
}

Subscription SnippetImage::observeChanges(std::function<void(std::string_view)> callback) {
  return observers_.add(std::move(callback));
}

}  // namespace quorlo
