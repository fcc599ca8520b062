#pragma once

#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// Reads back the .glb files of the tests: the container checked byte by byte, the JSON parsed and
// any accessor's values widened to doubles.
namespace glbtest {

struct Glb {
  nlohmann::json json;
  std::string bin;
};

inline uint32_t U32(const std::string& bytes, size_t at) {
  uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = value << 8 | uint8_t(bytes[at + size_t(i)]);
  return value;
}

// False, with the reason, for anything the container's layout forbids.
inline bool ReadGlb(const std::string& bytes, Glb& glb, std::string& error) {
  if (bytes.size() < 20 || bytes.compare(0, 4, "glTF") != 0 || U32(bytes, 4) != 2) return error = "header", false;
  if (U32(bytes, 8) != bytes.size()) return error = "length", false;
  const uint32_t jsonLength = U32(bytes, 12);
  if (jsonLength % 4 || U32(bytes, 16) != 0x4E4F534A || 20 + uint64_t(jsonLength) > bytes.size()) {
    return error = "JSON chunk", false;
  }
  glb.json = nlohmann::json::parse(bytes.substr(20, jsonLength), nullptr, false);
  if (glb.json.is_discarded()) return error = "JSON text", false;
  const size_t binAt = 20 + jsonLength;
  if (binAt == bytes.size()) return true;
  if (binAt + 8 > bytes.size() || U32(bytes, binAt + 4) != 0x004E4942 || U32(bytes, binAt) % 4 ||
      binAt + 8 + U32(bytes, binAt) != bytes.size()) {
    return error = "BIN chunk", false;
  }
  glb.bin = bytes.substr(binAt + 8);
  return true;
}

// The bytes of buffer view `view`.
inline std::string ViewBytes(const Glb& glb, size_t view) {
  const auto& v = glb.json["bufferViews"][view];
  return glb.bin.substr(v.value("byteOffset", size_t(0)), v["byteLength"].get<size_t>());
}

// Every component of accessor `index` in order, widened to double.
inline std::vector<double> Values(const Glb& glb, size_t index) {
  const auto& accessor = glb.json["accessors"][index];
  const std::string bytes = ViewBytes(glb, accessor["bufferView"].get<size_t>());
  const std::string type = accessor["type"];
  const size_t width = type == "SCALAR" ? 1 : type == "VEC2" ? 2 : type == "VEC3" ? 3 : type == "VEC4" ? 4 : 16;
  const size_t count = width * accessor["count"].get<size_t>();
  std::vector<double> values;
  for (size_t i = 0; i < count; ++i) {
    switch (accessor["componentType"].get<int>()) {
      case 5121: values.push_back(uint8_t(bytes.at(i))); break;
      case 5123: values.push_back(uint16_t(uint8_t(bytes.at(2 * i)) | uint8_t(bytes.at(2 * i + 1)) << 8)); break;
      case 5125: values.push_back(U32(bytes, 4 * i)); break;
      case 5126: {
        float f;
        const uint32_t raw = U32(bytes, 4 * i);
        std::memcpy(&f, &raw, 4);
        values.push_back(f);
        break;
      }
      default: return {};
    }
  }
  return values;
}

}  // namespace glbtest
