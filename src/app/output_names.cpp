#include "app/output_names.h"

#include <unordered_set>

namespace {

// Linux takes 255 bytes in a name; the rest leaves room for a "~N" and the extension.
constexpr size_t kMaxComponentBytes = 200;

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

// One folder or file name, made safe: control characters become `_`, a name that starts with a dot
// gets a `_` in front (".." would climb out of the output folder, and others would be hidden), a
// long one is cut at a character.
std::string SafeComponent(std::string component) {
  for (char& c : component) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '_';
  }
  if (component.empty() || component[0] == '.') component = std::string(1, '_').append(component);
  if (component.size() > kMaxComponentBytes) {
    size_t cut = kMaxComponentBytes;
    while (cut > 0 && (static_cast<unsigned char>(component[cut]) & 0xC0) == 0x80) --cut;  // inside a UTF-8 sequence
    component.resize(cut);
  }
  return component;
}

// The path for one actor, without the extension: folders from its name, the file its stem.
std::string BasePath(const std::string& name) {
  std::vector<std::string> components;
  size_t start = 0;
  for (size_t i = 0; i <= name.size(); ++i) {
    if (i < name.size() && !IsSeparator(name[i])) continue;
    if (i > start) components.push_back(name.substr(start, i - start));
    start = i + 1;
  }
  if (components.empty()) components.push_back("_");
  std::string& file = components.back();
  const size_t dot = file.rfind('.');
  if (dot != std::string::npos && dot > 0) file.resize(dot);
  std::string path;
  for (const std::string& component : components) {
    if (!path.empty()) path += '/';
    path += SafeComponent(component);
  }
  return path;
}

}  // namespace

std::vector<std::string> OutputNames(const std::vector<std::string>& actorNames, const char* extension) {
  std::vector<std::string> paths;
  paths.reserve(actorNames.size());
  std::unordered_set<std::string> taken;
  for (const std::string& name : actorNames) {
    const std::string base = BasePath(name);
    std::string path = base + extension;
    for (unsigned n = 2; !taken.insert(path).second; ++n) path = base + "~" + std::to_string(n) + extension;
    paths.push_back(std::move(path));
  }
  return paths;
}
