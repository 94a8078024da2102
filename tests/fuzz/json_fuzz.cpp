// Checks a text as JSON, and reads what passes as a library. JSON that another reader takes passes too, apart
// from the limits and from keys that stand twice.

#include "fuzz/fuzz_target.h"
#include "store/exchange/json_check.h"
#include "store/exchange/json_document.h"
#include "store/exchange/library_exchange.h"

#include <nlohmann/json.hpp>

#include <string_view>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorlo;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto status = checkJson(text);
  if (!status) {
    const std::string_view message = status.error().message;
    const bool isLimit =
        message.find("is not JSON") == message.npos || message.find("already") != message.npos;
    const bool holdsNul = text.find('\0') != text.npos;  // the end of the text to the other reader
    require(isLimit || holdsNul || !nlohmann::json::accept(text));
    return 0;
  }
  require(nlohmann::json::accept(text));
  const auto value = parseJson(text);
  require(value || isUtf16(text));
  if (!value) return 0;
  const auto library = libraryFromJson(value.value());
  if (!library) require(!library.error().message.empty());
  return 0;
}
