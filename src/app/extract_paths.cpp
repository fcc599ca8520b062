#include "app/extract_paths.h"

#include <unordered_map>

namespace {

// Linux takes 255 bytes in a name; the rest leaves room for a "~N" and a new extension.
constexpr size_t kMaxComponentBytes = 200;

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

// The length of the UTF-8 sequence at `text` (of `left` bytes), or 0 when it isn't one.
size_t SequenceLength(const unsigned char* text, size_t left) {
  const unsigned char lead = text[0];
  const size_t length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3 : (lead >> 3) == 0x1E ? 4 : 0;
  if (length == 0 || length > left) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((text[i] & 0xC0) != 0x80) return 0;
  }
  return length;
}

// One part made safe: control characters and bytes that aren't UTF-8 become `_`; a long part is
// cut at a character.
std::string CleanComponent(const std::string& part) {
  std::string clean;
  const auto* text = reinterpret_cast<const unsigned char*>(part.data());
  for (size_t at = 0; at < part.size();) {
    const size_t length = SequenceLength(text + at, part.size() - at);
    if (length == 0 || text[at] < 0x20 || text[at] == 0x7F) {
      clean += '_';
      at += length ? length : 1;
      continue;
    }
    if (clean.size() + length > kMaxComponentBytes) break;
    clean.append(part, at, length);
    at += length;
  }
  return clean;
}

bool IsDrive(const std::string& part) {
  return part.size() == 2 && part[1] == ':' && ((part[0] | 0x20) >= 'a' && (part[0] | 0x20) <= 'z');
}

std::vector<std::string> Components(const std::string& name, bool asPng) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (size_t i = 0; i <= name.size(); ++i) {
    if (i < name.size() && !IsSeparator(name[i])) continue;
    std::string part = name.substr(start, i - start);
    start = i + 1;
    if (part.empty() || part == "." || part == ".." || (parts.empty() && IsDrive(part))) continue;
    parts.push_back(CleanComponent(part));
  }
  if (!parts.empty() && asPng) {
    std::string& file = parts.back();
    const size_t dot = file.rfind('.');
    if (dot != std::string::npos && dot > 0) file.resize(dot);
    file += ".png";
  }
  return parts;
}

// `name` with "~n" before its extension.
std::string Numbered(const std::string& name, unsigned n) {
  const size_t dot = name.rfind('.');
  const size_t at = dot != std::string::npos && dot > 0 ? dot : name.size();
  return name.substr(0, at) + "~" + std::to_string(n) + name.substr(at);
}

enum class Kind { kFile, kFolder };

}  // namespace

std::vector<std::string> ExtractPaths(const std::vector<ListedEntry>& files, const std::vector<bool>& asPng) {
  std::vector<std::string> paths(files.size());
  std::unordered_map<std::string, Kind> taken;           // output paths, "a/b", and what stands there
  std::unordered_map<std::string, std::string> folders;  // a folder as the names give it -> as made
  for (size_t n = 0; n < files.size(); ++n) {
    const std::vector<std::string> parts = Components(files[n].name, n < asPng.size() && asPng[n]);
    if (parts.empty()) continue;
    std::string given, made;  // the folder so far, as given and as made
    for (size_t i = 0; i + 1 < parts.size(); ++i) {
      given += (i ? "/" : "") + parts[i];
      const auto known = folders.find(given);
      if (known != folders.end()) {
        made = known->second;
        continue;
      }
      // A file already stands where the folder would go: the folder takes the next free name.
      const std::string plain = made + (i ? "/" : "") + parts[i];
      std::string path = plain;
      for (unsigned k = 2; taken.contains(path) && taken[path] == Kind::kFile; ++k) path = Numbered(plain, k);
      taken[path] = Kind::kFolder;
      folders[given] = path;
      made = path;
    }
    const std::string plain = made + (parts.size() > 1 ? "/" : "") + parts.back();
    std::string path = plain;
    for (unsigned k = 2; taken.contains(path); ++k) path = Numbered(plain, k);
    taken[path] = Kind::kFile;
    paths[n] = std::move(path);
  }
  return paths;
}
