#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace testsupport {

// A binary FBX file read back for tests, value by value. Arrays are inflated.
struct FbxReadProperty {
  char code = 0;
  int64_t integer = 0;            // Y C I L, and C as its byte
  double real = 0;                // F D
  std::string bytes;              // S R
  std::vector<double> reals;      // f d
  std::vector<int64_t> integers;  // i l b c
  uint32_t encoding = 0;          // arrays: 0 plain, 1 zlib
};

struct FbxReadRecord {
  std::string name;
  std::vector<FbxReadProperty> properties;
  std::vector<FbxReadRecord> children;
  bool closedByNull = false;

  // The first child of that name, or null.
  const FbxReadRecord* Child(const std::string& childName) const;
};

struct FbxReadFile {
  uint32_t version = 0;
  std::vector<FbxReadRecord> records;
  std::string footerId;   // the 16 bytes after the closing null record
  bool footerOk = false;  // padding, version, zeros and end magic where the format puts them

  const FbxReadRecord* Record(const std::string& name) const;
};

// False, with a reason in `error`, for anything that doesn't add up: every offset and length is
// checked against the file.
bool ReadFbxBinary(const std::string& bytes, FbxReadFile& out, std::string& error);

}  // namespace testsupport
