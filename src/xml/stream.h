#pragma once

#include "core/types.h"

// The stream interface that the XML document reads through: the operations, slot order and result
// codes of the platform stream it stands in for. Only Read, Seek and Stat do real work.
using HResult = u32;

constexpr HResult S_OK = 0;
constexpr HResult S_FALSE = 1;
constexpr HResult E_NOTIMPL = 0x80004001;
constexpr HResult E_NOINTERFACE = 0x80004002;
constexpr HResult E_POINTER = 0x80004003;
constexpr HResult E_INVALIDARG = 0x80070057;
constexpr HResult STG_E_INVALIDFUNCTION = 0x80030001;
constexpr HResult STG_E_ACCESSDENIED = 0x80030005;
constexpr HResult STG_E_INVALIDHANDLE = 0x80030006;
constexpr HResult STG_E_INVALIDPOINTER = 0x80030009;
constexpr HResult STG_E_SEEKERROR = 0x80030019;
constexpr HResult STG_E_INVALIDPARAMETER = 0x80030057;
constexpr HResult STG_E_UNIMPLEMENTEDFUNCTION = 0x800300FE;

enum class InterfaceId { Unknown, SequentialStream, Stream };

constexpr u32 STREAM_SEEK_SET = 0;
constexpr u32 STREAM_SEEK_CUR = 1;
constexpr u32 STREAM_SEEK_END = 2;
constexpr u32 STATFLAG_DEFAULT = 0;
constexpr u32 STATFLAG_NONAME = 1;
constexpr u32 STGTY_STREAM = 2;
constexpr u32 STGM_READ = 0;
constexpr u32 STGM_READWRITE = 2;

struct StreamStat {
  char16_t* name = nullptr;  // from MemAllocate, freed by the caller with MemFree
  u32 type = 0;
  u64 size = 0;
  u32 mode = 0;
};

class IStream;

// QueryInterface of both streams: the stream itself, with one more reference, for the stream and
// base interfaces; anything else, the sequential one included, is refused.
HResult QueryStreamInterface(IStream* self, InterfaceId id, void** object);

class IStream {
 public:
  virtual HResult QueryInterface(InterfaceId id, void** object) = 0;
  virtual u32 AddRef() = 0;
  virtual u32 Release() = 0;
  virtual HResult Read(void* buffer, u32 count, u32* got) = 0;
  virtual HResult Write(const void* buffer, u32 count, u32* written) = 0;
  virtual HResult Seek(i64 move, u32 origin, u64* newPosition) = 0;
  virtual HResult SetSize(u64 size) = 0;
  virtual HResult CopyTo(IStream* target, u64 count, u64* read, u64* written) = 0;
  virtual HResult Commit(u32 flags) = 0;
  virtual HResult Revert() = 0;
  virtual HResult LockRegion(u64 offset, u64 count, u32 type) = 0;
  virtual HResult UnlockRegion(u64 offset, u64 count, u32 type) = 0;
  virtual HResult Stat(StreamStat* record, u32 flags) = 0;
  virtual HResult Clone(IStream** clone) = 0;

 protected:
  // Streams end through Release.
  virtual ~IStream() = default;
};

inline HResult QueryStreamInterface(IStream* self, InterfaceId id, void** object) {
  if (!object) return E_POINTER;
  if (id != InterfaceId::Stream && id != InterfaceId::Unknown) {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  *object = self;
  self->AddRef();
  return S_OK;
}
