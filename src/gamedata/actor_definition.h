#pragma once

#include "core/byte_buffer.h"
#include "core/memory_hooks.h"
#include "core/value_string.h"

// A singly linked list that owns its items (made with MemNew) and keeps file order.
template <class T>
struct TOwnedList {
  T* first = nullptr;
  T* last = nullptr;
  u32 count = 0;

  TOwnedList() = default;
  TOwnedList(const TOwnedList&) = delete;
  TOwnedList& operator=(const TOwnedList&) = delete;
  // Freed one by one, not recursively, whatever the length.
  ~TOwnedList() {
    while (first) {
      T* next = first->next;
      MemDelete(first);
      first = next;
    }
  }
  void Append(T* item) {
    (last ? last->next : first) = item;
    last = item;
    ++count;
  }
};

struct TextureAlias {
  i32 semanticHash = 0;  // the material parameter that the alias replaces
  CStringA textureName;
  u32 materialIndex = 0;  // low 8 bits of the file's number
  bool isDefault = false;
  TextureAlias* next = nullptr;
};

struct TintAlias {
  i32 semanticHash = 0;
  f32 red = 0;
  f32 green = 0;
  f32 blue = 0;
  f32 alpha = 0;
  u32 materialIndex = 0;  // low 8 bits of the file's number
  bool isDefault = false;
  TintAlias* next = nullptr;
};

// Aliases filed under one aliasName, in file order.
template <class Alias>
struct TAliasGroup {
  CStringA name;
  TOwnedList<Alias> aliases;
  TAliasGroup* next = nullptr;
};

// What an actor (.adr) is made of: its model, an optional palette replacing the model's own
// materials, the rig network and animation set that give it a skeleton, and its aliases.
struct ActorDefinition {
  CStringA fileName;              // the model file in the packs
  CStringA paletteName;           // a palette file; empty when the model's own materials apply
  CStringA animationNetworkName;  // a .mrn path; its base name selects the rig network
  CStringA animSetName;
  CStringA boneAttachmentName;
  TOwnedList<TAliasGroup<TextureAlias>> textureAliases;
  TOwnedList<TAliasGroup<TintAlias>> tintAliases;
  bool borrowSkeleton = false;  // without network or set, look for any rig that fits the model
  bool invisible = false;
};

// False for malformed XML, a root other than ActorRuntime, a missing Base or Base fileName, or
// memory refused. Aliases lacking a required attribute are left out. A record is not emptied first.
[[nodiscard]] bool Read(ActorDefinition& actor, const CByteBuffer& bytes);
