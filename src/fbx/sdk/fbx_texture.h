#pragma once

#include "core/string_buffer.h"
#include "fbx/sdk/fbx_object.h"

// The media behind a texture: one image file, by its absolute path and by its path relative to
// the file being written (readers try the relative one first, beside the file).
class FbxVideo final : public FbxObject, public FbxCreatable<FbxVideo> {
 public:
  FbxObjectKind Kind() const override { return FbxObjectKind::Video; }

  [[nodiscard]] bool SetFileName(const char* absolute, const char* relative) {
    return fileName.Assign(absolute) && relativeFileName.Assign(relative);
  }
  const char* GetFileName() const { return fileName.Text(); }
  const char* GetRelativeFileName() const { return relativeFileName.Text(); }

 private:
  TStringBufferA<260> fileName;
  TStringBufferA<128> relativeFileName;
};

// An image texture on a material's property: its video, the file's names again (readers take
// them from either record) and the UV set it is laid on.
class FbxFileTexture final : public FbxObject, public FbxCreatable<FbxFileTexture> {
 public:
  FbxObjectKind Kind() const override { return FbxObjectKind::Texture; }

  void SetVideo(FbxVideo* media) { video = media; }
  const FbxVideo* GetVideo() const { return video; }
  [[nodiscard]] bool SetUVSet(const char* name) { return uvSet.Assign(name); }
  const char* GetUVSet() const { return uvSet.Text(); }

 private:
  FbxVideo* video = nullptr;
  TStringBufferA<32> uvSet;
};
