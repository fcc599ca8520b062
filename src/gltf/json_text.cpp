#include "gltf/json_text.h"

#include <nlohmann/json.hpp>

namespace json {

// nlohmann's scalars own no children, so making and dropping them never allocates beyond their text.
std::string Number(f64 value) { return nlohmann::json(value).dump(); }

std::string String(const char* text) {
  return nlohmann::json(std::string(text)).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string Array(const std::vector<std::string>& values) {
  std::string text = "[";
  for (size_t i = 0; i < values.size(); ++i) text.append(i ? "," : "").append(values[i]);
  return text.append("]");
}

std::string Array(const std::vector<Object>& objects) {
  std::string text = "[";
  for (size_t i = 0; i < objects.size(); ++i) text.append(i ? "," : "").append(objects[i].Text());
  return text.append("]");
}

std::string Object::Text() const {
  std::string text = "{";
  bool first = true;
  for (const auto& [name, value] : members) {
    text.append(first ? "" : ",").append(String(name.c_str())).append(":").append(value);
    first = false;
  }
  return text.append("}");
}

}  // namespace json
