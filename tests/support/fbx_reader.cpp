#include "support/fbx_reader.h"

#include <zlib.h>

#include <cstring>

namespace testsupport {

namespace {

constexpr size_t kHeaderSize = 27;
constexpr unsigned char kEndMagic[16] = {0xF8, 0x5A, 0x8C, 0x6A, 0xDE, 0xF5, 0xD9, 0x7E,
                                         0xEC, 0xE9, 0x0C, 0xE3, 0x75, 0x8F, 0x29, 0x0B};

struct Cursor {
  const std::string& bytes;
  size_t at;
  std::string& error;

  bool Need(size_t n) {
    if (bytes.size() - at >= n) return true;
    error = "runs past the end at " + std::to_string(at);
    return false;
  }
  template <class T>
  bool Read(T& value) {
    if (!Need(sizeof(T))) return false;
    std::memcpy(&value, bytes.data() + at, sizeof(T));
    at += sizeof(T);
    return true;
  }
};

size_t ElementSize(char code) { return (code == 'd' || code == 'l') ? 8 : (code == 'f' || code == 'i') ? 4 : 1; }

bool ReadArray(Cursor& in, FbxReadProperty& property) {
  uint32_t count, encoding, stored;
  if (!in.Read(count) || !in.Read(encoding) || !in.Read(stored) || !in.Need(stored)) return false;
  property.encoding = encoding;
  std::string raw(size_t(count) * ElementSize(property.code), '\0');
  if (encoding == 0) {
    if (stored != raw.size()) return in.error = "array length doesn't match its count", false;
    std::memcpy(raw.data(), in.bytes.data() + in.at, stored);
  } else {
    uLongf size = raw.size();
    const int result = uncompress(reinterpret_cast<Bytef*>(raw.data()), &size,
                                  reinterpret_cast<const Bytef*>(in.bytes.data() + in.at), stored);
    if (result != Z_OK || size != raw.size()) return in.error = "bad zlib stream", false;
  }
  in.at += stored;
  for (size_t i = 0; i < count; ++i) {
    const char* p = raw.data() + i * ElementSize(property.code);
    switch (property.code) {
      case 'f': {
        float v;
        std::memcpy(&v, p, 4);
        property.reals.push_back(v);
        break;
      }
      case 'd': {
        double v;
        std::memcpy(&v, p, 8);
        property.reals.push_back(v);
        break;
      }
      case 'i': {
        int32_t v;
        std::memcpy(&v, p, 4);
        property.integers.push_back(v);
        break;
      }
      case 'l': {
        int64_t v;
        std::memcpy(&v, p, 8);
        property.integers.push_back(v);
        break;
      }
      default: property.integers.push_back(static_cast<unsigned char>(*p));
    }
  }
  return true;
}

bool ReadProperty(Cursor& in, FbxReadProperty& property) {
  if (!in.Read(property.code)) return false;
  switch (property.code) {
    case 'Y': {
      int16_t v;
      if (!in.Read(v)) return false;
      property.integer = v;
      return true;
    }
    case 'C': {
      uint8_t v;
      if (!in.Read(v)) return false;
      property.integer = v;
      return true;
    }
    case 'I': {
      int32_t v;
      if (!in.Read(v)) return false;
      property.integer = v;
      return true;
    }
    case 'L': return in.Read(property.integer);
    case 'F': {
      float v;
      if (!in.Read(v)) return false;
      property.real = v;
      return true;
    }
    case 'D': return in.Read(property.real);
    case 'S':
    case 'R': {
      uint32_t length;
      if (!in.Read(length) || !in.Need(length)) return false;
      property.bytes.assign(in.bytes.data() + in.at, length);
      in.at += length;
      return true;
    }
    case 'f':
    case 'd':
    case 'i':
    case 'l':
    case 'b':
    case 'c': return ReadArray(in, property);
    default: in.error = std::string("unknown property code ") + property.code; return false;
  }
}

bool ReadRecord(Cursor& in, FbxReadRecord& record, bool& isNull, int depth) {
  uint32_t end, count, listLength;
  uint8_t nameLength;
  const size_t start = in.at;
  if (depth > 64) return in.error = "too deep", false;
  if (!in.Read(end) || !in.Read(count) || !in.Read(listLength) || !in.Read(nameLength)) return false;
  isNull = end == 0 && count == 0 && listLength == 0 && nameLength == 0;
  if (isNull) return true;
  if (end <= start || end > in.bytes.size() || !in.Need(nameLength)) return in.error = "bad end offset", false;
  record.name.assign(in.bytes.data() + in.at, nameLength);
  in.at += nameLength;
  const size_t propertiesStart = in.at;
  record.properties.resize(count);
  for (FbxReadProperty& property : record.properties) {
    if (!ReadProperty(in, property)) return false;
  }
  if (in.at - propertiesStart != listLength) return in.error = record.name + ": property list length is off", false;
  if (in.at == end) return true;
  while (true) {
    FbxReadRecord child;
    bool childNull = false;
    if (!ReadRecord(in, child, childNull, depth + 1)) return false;
    if (childNull) break;
    record.children.push_back(std::move(child));
  }
  record.closedByNull = true;
  if (in.at != end) return in.error = record.name + ": end offset doesn't match", false;
  return true;
}

}  // namespace

const FbxReadRecord* FbxReadRecord::Child(const std::string& childName) const {
  for (const FbxReadRecord& child : children) {
    if (child.name == childName) return &child;
  }
  return nullptr;
}

const FbxReadRecord* FbxReadFile::Record(const std::string& name) const {
  for (const FbxReadRecord& record : records) {
    if (record.name == name) return &record;
  }
  return nullptr;
}

bool ReadFbxBinary(const std::string& bytes, FbxReadFile& out, std::string& error) {
  if (bytes.size() < kHeaderSize || bytes.compare(0, 23, std::string("Kaydara FBX Binary  \0\x1A\0", 23)) != 0) {
    error = "not a binary FBX file";
    return false;
  }
  std::memcpy(&out.version, bytes.data() + 23, 4);
  Cursor in{bytes, kHeaderSize, error};
  while (true) {
    FbxReadRecord record;
    bool isNull = false;
    if (!ReadRecord(in, record, isNull, 0)) return false;
    if (isNull) break;
    out.records.push_back(std::move(record));
  }
  if (!in.Need(16)) return false;
  out.footerId = bytes.substr(in.at, 16);
  const size_t afterId = in.at + 16;
  const size_t padding = 16 - afterId % 16;
  const size_t version = afterId + padding + 4;
  uint32_t footerVersion = 0;
  out.footerOk = bytes.size() == version + 4 + 120 + 16 && bytes.find_first_not_of('\0', afterId) >= version;
  if (out.footerOk) {
    std::memcpy(&footerVersion, bytes.data() + version, 4);
    out.footerOk = footerVersion == out.version && bytes.find_first_not_of('\0', version + 4) == version + 124 &&
                   std::memcmp(bytes.data() + version + 124, kEndMagic, 16) == 0;
  }
  return true;
}

}  // namespace testsupport
