#include "cli/library/spooled_input.h"

#include "base/whole_file.h"
#include "cli/command_session.h"
#include "import/import_file_kind.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace quorlo {
namespace {

// A property list says itself of which program it is.
std::string endingOf(const std::string& content, const std::string& format) {
  if (!format.empty()) return "." + format;
  if (looksLikePropertyList(content)) return {};
  return looksLikeJson(content) ? ".json" : ".csv";
}

}  // namespace

SpooledInput::~SpooledInput() {
  std::error_code ignored;
  if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
}

Result<std::filesystem::path> SpooledInput::read(CommandSession& session, const std::string& format) {
  const auto content = session.readInput();
  if (!content) return content.error();
  std::error_code failure;
  auto name = (std::filesystem::temp_directory_path(failure) / "quorlo-XXXXXX").string();
  if (failure || ::mkdtemp(name.data()) == nullptr) {
    return Error{"There is no room for standard input in the folder of temporary files: " +
                 (failure ? failure : std::error_code(errno, std::generic_category())).message() + "."};
  }
  folder_ = name;
  const auto file = folder_ / ("standard input" + endingOf(content.value(), format));
  if (const auto status = writeWholeFile(file, content.value(), 0600); !status) return status.error();
  return file;
}

}  // namespace quorlo
