#include "app/settings/json_list.h"

#include <nlohmann/json.hpp>

namespace quorlo {

Result<std::vector<std::string>> decodeJsonList(std::string_view json) {
  try {
    return nlohmann::json::parse(json).get<std::vector<std::string>>();
  } catch (const nlohmann::json::exception& error) {
    return Error{error.what()};
  }
}

std::string encodeJsonList(const std::vector<std::string>& list) {
  try {
    return nlohmann::json(list).dump();
  } catch (const nlohmann::json::exception&) {
    return "[]";
  }
}

}  // namespace quorlo
