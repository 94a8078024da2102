#include "virtual_desktop/window_picture.h"

#include "virtual_desktop/xcb_reply.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <stdexcept>

namespace quorlo {

WindowPicture WindowPicture::of(xcb_connection_t* connection, xcb_window_t window) {
  const Reply<xcb_get_geometry_reply_t> place(
      xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
  if (!place) throw std::runtime_error("The window is gone");
  const Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(
      connection,
      xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0, place->width, place->height, ~0U),
      nullptr));
  if (!image) throw std::runtime_error("The window is not on the screen");
  WindowPicture picture{place->width, place->height, {}};
  picture.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
  const auto size = picture.pixels.size() * sizeof(std::uint32_t);
  if (static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < size) {
    throw std::runtime_error("The screen has no four bytes for a pixel");
  }
  std::memcpy(picture.pixels.data(), xcb_get_image_data(image.get()), size);
  return picture;
}

int differingColumns(const WindowPicture& left, const WindowPicture& right) {
  if (left.width != right.width || left.height != right.height) return std::max(left.width, right.width);
  std::vector<bool> differs(static_cast<std::size_t>(left.width));
  for (std::size_t i = 0; i < left.pixels.size(); ++i) {
    if (left.pixels[i] != right.pixels[i]) differs[i % differs.size()] = true;
  }
  return static_cast<int>(std::ranges::count(differs, true));
}

}  // namespace quorlo
