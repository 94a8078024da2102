// quorlo-demo QUORLO LIBRARY PICTURE
//
// Shows Quorlo at work on a virtual desktop: an editor opens, two abbreviations of the library are typed on
// a virtual keyboard, and what then stands in the editor is printed last. Status 0 when it is what the
// library says, 1 otherwise.
#include "virtual_desktop/applications.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/wait.h"
#include "virtual_desktop/window_picture.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>

namespace quorlo {
namespace {

constexpr const char* kPlain = "brb";
// Its macros press a key, put another snippet in and leave the cursor between brackets.
constexpr const char* kWithMacros = "pps";
constexpr const char* kNested = "omw";

std::string textOf(const std::string& library, const std::string& abbreviation) {
  const auto document = nlohmann::json::parse(library);
  for (const auto& snippet : document.at("snippets")) {
    if (snippet.value("abbreviation", "") == abbreviation) return snippet.at("text").get<std::string>();
  }
  throw std::runtime_error("The library has no snippet with the abbreviation " + abbreviation);
}

// An editor paints later than it saves. Another one with the same text looks the same, but for the carets.
bool waitUntilShown(VirtualDesktop& desktop, Mousepad& editor, const std::string& text) {
  constexpr int kColumnsOfTwoCarets = 4;
  const auto pictureOf = [&](Mousepad& each) {
    each.activate();
    return WindowPicture::of(desktop.connection(), each.window());
  };
  std::optional<Mousepad> sample(std::in_place, desktop, "sample.txt", text);
  WindowPicture expected;
  const auto isShown = [&] { return differingColumns(expected, pictureOf(editor)) <= kColumnsOfTwoCarets; };
  const bool looksLikeSample = waitUntil([&] {
    expected = pictureOf(*sample);
    return isShown();
  });
  const auto sampleWindow = sample->window();
  sample.reset();
  const auto sampleIsGone = [&] { return std::ranges::count(desktop.windows().all(), sampleWindow) == 0; };
  return looksLikeSample && waitUntil([&] { return sampleIsGone() && isShown(); });
}

int demonstrate(const std::string& program, const std::string& libraryFile, const std::string& picture) {
  const auto library = readFile(libraryFile);
  const auto plain = textOf(library, kPlain);
  const auto nested = textOf(library, kNested);
  VirtualDesktop desktop;
  Mousepad editor(desktop, "letter.txt");
  QuorloProgram quorlo(desktop, program, library);
  std::cout << "A text editor is open on the virtual display " << desktop.display() << ", and Quorlo runs."
            << std::endl;

  const std::string typed =
      std::string("Hello Ada, ") + kPlain + " - yours, Charles. " + kWithMacros + " by train";
  std::cout << "Typing on a virtual keyboard: " << typed << std::endl;
  desktop.keyboard().type(typed, std::chrono::milliseconds(30));
  const auto expected = "Hello Ada, " + plain + " - yours, Charles. PS: " + nested + " (by train) ";
  const auto arrived = editor.textOnceItIs(expected);

  const bool isShown = waitUntilShown(desktop, editor, arrived);
  desktop.screenshot(std::filesystem::absolute(picture));
  std::cout << "Screenshot: " << std::filesystem::absolute(picture).string() << std::endl;
  if (arrived != expected) std::cerr << "Expected: " << expected << "\nQuorlo wrote:\n" << quorlo.log();
  std::cout << "arrived: " << arrived << std::endl;
  if (!isShown) std::cerr << "The picture does not show what arrived.\n";
  return arrived == expected && isShown ? 0 : 1;
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: quorlo-demo QUORLO LIBRARY PICTURE\n";
    return 2;
  }
  try {
    return quorlo::demonstrate(argv[1], argv[2], argv[3]);
  } catch (const std::exception& problem) {
    std::cerr << "The demonstration failed: " << problem.what() << "\n";
    return 1;
  }
}
