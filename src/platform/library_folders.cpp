#include "platform/library_folders.h"

#include "platform/path_case.h"

namespace {

enum class Token { End, Text, Open, Close, Bad };

bool IsDigits(const std::string& text) {
  if (text.empty()) return false;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

// Reads the text one token at a time; every look stays inside `text`.
class VdfReader {
 public:
  explicit VdfReader(std::string_view source) : text(source) {}

  Token Next(std::string& value) {
    value.clear();
    SkipSpaceAndComments();
    if (at >= text.size()) return Token::End;
    const char c = text[at];
    if (c == '{' || c == '}') {
      ++at;
      return c == '{' ? Token::Open : Token::Close;
    }
    if (c != '"') {
      // An unquoted word runs to the next space, brace or quote.
      while (at < text.size() && !IsSpace(text[at]) && text[at] != '{' && text[at] != '}' && text[at] != '"') {
        value += text[at++];
      }
      return Token::Text;
    }
    for (++at; at < text.size(); ++at) {
      char next = text[at];
      if (next == '"') {
        ++at;
        return Token::Text;
      }
      if (next == '\\' && at + 1 < text.size()) {
        next = text[++at];
        if (next == 'n') next = '\n';
        if (next == 't') next = '\t';
      }
      value += next;
    }
    return Token::Bad;  // the quote is never closed
  }

 private:
  static bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

  void SkipSpaceAndComments() {
    for (;;) {
      while (at < text.size() && IsSpace(text[at])) ++at;
      if (at + 1 >= text.size() || text[at] != '/' || text[at + 1] != '/') return;
      while (at < text.size() && text[at] != '\n') ++at;
    }
  }

  std::string_view text;
  size_t at = 0;
};

class LibraryFoldersParser {
 public:
  explicit LibraryFoldersParser(std::string_view text) : reader(text) {}

  bool Parse(std::vector<std::string>& folders) {
    std::string key;
    const Token first = reader.Next(key);
    if (first != Token::Text || !EqualIgnoringCase(key.c_str(), "libraryfolders")) return false;
    std::string value;
    if (reader.Next(value) != Token::Open) return false;
    if (!Block(1, folders, nullptr)) return false;
    return reader.Next(value) == Token::End;
  }

 private:
  // The pairs of one block up to its closing brace. At depth 1 the numbered keys are libraries; at
  // depth 2 `path` keeps the "path" value of the library block being read.
  bool Block(unsigned depth, std::vector<std::string>& folders, std::string* path) {
    if (depth > kMaxLibraryFoldersDepth) return false;
    std::string key;
    std::string value;
    for (;;) {
      const Token token = reader.Next(key);
      if (token == Token::Close) return true;
      if (token != Token::Text) return false;
      const Token valueToken = reader.Next(value);
      if (valueToken == Token::Text) {
        if (depth == 1 && IsDigits(key)) folders.push_back(value);
        if (path && EqualIgnoringCase(key.c_str(), "path")) *path = value;
        continue;
      }
      if (valueToken != Token::Open) return false;
      std::string libraryPath;
      const bool library = depth == 1 && IsDigits(key);
      if (!Block(depth + 1, folders, library ? &libraryPath : nullptr)) return false;
      if (library && !libraryPath.empty()) folders.push_back(libraryPath);
    }
  }

  VdfReader reader;
};

}  // namespace

bool ParseLibraryFolders(std::string_view text, std::vector<std::string>& folders) {
  folders.clear();
  LibraryFoldersParser parser(text);
  if (parser.Parse(folders)) return true;
  folders.clear();
  return false;
}
