#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/types.h"

// A JSON document built from values already written out as text. Unlike a tree of parsed values,
// nothing here allocates to be destroyed, so a conversion that runs out of memory unwinds cleanly.
namespace json {

// A number, written as the shortest text that reads back to the same double.
std::string Number(f64 value);
inline std::string Number(u64 value) { return std::to_string(value); }
inline std::string Number(u32 value) { return std::to_string(value); }
inline std::string Number(i32 value) { return std::to_string(value); }
// A string, with bytes that aren't UTF-8 replaced: names come from the game's files.
std::string String(const char* text);
// The values in order, as an array.
std::string Array(const std::vector<std::string>& values);

// An object whose members come out in the order of their names.
class Object {
 public:
  Object& Set(const std::string& name, std::string value) {
    members[name] = std::move(value);
    return *this;
  }
  bool Has(const std::string& name) const { return members.contains(name); }
  std::string Text() const;

 private:
  std::map<std::string, std::string> members;
};

// The objects in order, as an array.
std::string Array(const std::vector<Object>& objects);

}  // namespace json
