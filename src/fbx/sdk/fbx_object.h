#pragma once

#include "core/array.h"
#include "core/memory_hooks.h"
#include "core/value_string.h"
#include "fbx/sdk/fbx_math.h"

class FbxManager;

// What an object is, for the writer: each kind has its own record in the file.
enum class FbxObjectKind : u8 {
  Scene,
  Node,
  Skeleton,
  Mesh,
  Skin,
  Cluster,
  Pose,
  SurfacePhong,
  DocumentInfo,
  IOSettings,
  Exporter,
  Texture,
  Video,
};

// A value of an object that a file may carry. `IsModified` tells a value that was set from one left
// at its default, so that a file writes only what differs from its type's template.
template <class T>
class FbxPropertyT {
 public:
  FbxPropertyT() = default;
  explicit FbxPropertyT(const T& initial) : value(initial) {}
  void Set(const T& newValue) {
    value = newValue;
    modified = true;
  }
  const T& Get() const { return value; }
  bool IsModified() const { return modified; }

 private:
  T value{};
  bool modified = false;
};

// The base of everything a manager makes. An object belongs to its manager from Create to the
// manager's Destroy (or its own Destroy); other objects refer to it by plain pointer.
class FbxObject {
 public:
  virtual ~FbxObject() = default;
  FbxObject(const FbxObject&) = delete;
  FbxObject& operator=(const FbxObject&) = delete;

  virtual FbxObjectKind Kind() const = 0;
  const char* GetName() const { return objectName.Text(); }
  FbxManager* GetFbxManager() const { return manager; }
  // Unique within the manager, never 0 (which stands for the scene root in a file), and given in
  // order of creation, so a scene built the same way gets the same ids.
  i64 GetUniqueID() const { return id; }
  // Frees the object now; nothing may refer to it any more.
  void Destroy();

 protected:
  FbxObject() = default;

 private:
  friend class FbxManager;
  FbxManager* manager = nullptr;
  i64 id = 0;
  CStringA objectName;
};

// Gives a class the two ways of making it: in a manager, or beside an object of one (as a scene's
// meshes are made "in" the scene).
template <class T>
struct FbxCreatable {
  static T* Create(FbxManager* manager, const char* name);
  static T* Create(FbxObject* container, const char* name) {
    return container ? Create(container->GetFbxManager(), name) : nullptr;
  }
};

class FbxIOSettings;

// The file formats this layer can write: one, its own binary format.
class FbxIOPluginRegistry {
 public:
  int GetNativeWriterFormat() const { return 0; }
};

// The time a file is stamped with; the manager's source gives the current local time unless a
// test fixes it.
struct FbxCreationTime {
  i32 year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0, millisecond = 0;
};
using FbxCreationTimeSource = FbxCreationTime (*)();

// Owns every object made through it, frees them all in Destroy.
class FbxManager {
 public:
  // Null when memory is refused.
  static FbxManager* Create();
  // Frees the manager with every object it made.
  void Destroy();

  FbxIOSettings* GetIOSettings() const { return ioSettings; }
  void SetIOSettings(FbxIOSettings* settings) { ioSettings = settings; }
  FbxIOPluginRegistry* GetIOPluginRegistry() { return &registry; }
  // The version of the files this layer writes.
  static void GetFileFormatVersion(int& major, int& minor, int& revision);

  void SetCreationTimeSource(FbxCreationTimeSource source) { timeSource = source; }
  FbxCreationTime CreationTime() const;

  // Makes an object of `T` named `name` (null is taken as empty). Null when memory is refused.
  template <class T>
  T* Make(const char* name) {
    TOwned<T> object(MemNew<T>());
    return object && Adopt(object.get(), name) ? static_cast<T*>(Keep(TOwned<FbxObject>(object.release()))) : nullptr;
  }

  u32 ObjectCount() const { return objects.Count(); }
  const FbxObject* ObjectAt(u32 index) const { return objects[index].get(); }
  // Takes `object` out of the manager and frees it.
  void Remove(const FbxObject* object);

  FbxManager() = default;
  ~FbxManager() = default;
  FbxManager(const FbxManager&) = delete;
  FbxManager& operator=(const FbxManager&) = delete;

 private:
  bool Adopt(FbxObject* object, const char* name);
  FbxObject* Keep(TOwned<FbxObject> object);

  TArray<TOwned<FbxObject>> objects;  // in order of creation
  i64 nextId = 1;
  FbxIOSettings* ioSettings = nullptr;
  FbxCreationTimeSource timeSource = nullptr;
  FbxIOPluginRegistry registry;
};

template <class T>
T* FbxCreatable<T>::Create(FbxManager* manager, const char* name) {
  return manager ? manager->Make<T>(name) : nullptr;
}
