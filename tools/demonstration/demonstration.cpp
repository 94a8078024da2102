// quorlo-demo QUORLO LIBRARY PICTURE
//
// Shows Quorlo at work on a virtual desktop: an editor opens, two abbreviations of the library are typed on
// a virtual keyboard, and what then stands in the editor is printed last. Status 0 when it is what the
// library says, 1 otherwise.
#include "virtual_desktop/applications.h"
#include "virtual_desktop/quorlo_program.h"

#include <nlohmann/json.hpp>

#include <exception>
#include <filesystem>
#include <iostream>
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

  desktop.screenshot(std::filesystem::absolute(picture));
  std::cout << "Screenshot: " << std::filesystem::absolute(picture).string() << std::endl;
  if (arrived != expected) std::cerr << "Expected: " << expected << "\nQuorlo wrote:\n" << quorlo.log();
  std::cout << "arrived: " << arrived << std::endl;
  return arrived == expected ? 0 : 1;
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
