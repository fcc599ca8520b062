#pragma once

#include "assets/pack_index.h"
#include "core/byte_buffer.h"
#include "core/string_buffer.h"
#include "gamedata/actor_files.h"
#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"
#include "preview/arc_ball_camera.h"
#include "preview/render_device.h"
#include "preview/texture_cache.h"

// Chooses the rig that the skeleton view shows for an actor: the one its conversion would take.
class ISkeletonSource {
 public:
  virtual ~ISkeletonSource() = default;
  // The rig, with the name it goes by in `name` (never null with a rig); null when the actor has none.
  virtual const RigSkeleton* ShownRig(const ActorDefinition& actor, const ModelFile& model, const char*& name) = 0;
};

// The views for checking a model, both off at start.
struct PreviewViews {
  bool skeleton = false;   // the rig's bones over the model
  bool wireframe = false;  // the triangles' edges only
};

// The preview as the application sees it. Main thread only.
class IRenderWindow {
 public:
  virtual ~IRenderWindow() = default;
  // Opens the graphics on the control and keeps `packIndex` for loads. False leaves the control
  // blank, and every other call then does nothing.
  virtual bool Init(PackIndex* packIndex) = 0;
  virtual void Shutdown() = 0;
  // Draws a frame.
  virtual void Tick() = 0;
  // Shows the actor definition of `entry`, listed as `name`; false when it can't be shown.
  // `skeletons` picks the rig of the skeleton view; null: the actor shows none.
  virtual bool LoadActor(const PackEntry* entry, const char* name, const MaterialDefinitionSet* materials,
                         ISkeletonSource* skeletons) = 0;
  // Shows `image` whole, at its aspect, in place of any model, with `info` as the panel's text;
  // false, the preview left clear, when it can't be uploaded.
  virtual bool ShowImage(const DecodedImage& image, const char* info) = 0;
  // Clears the preview of any model or image, with `info` as the panel's text.
  virtual void ShowText(const char* info) = 0;
  // The info panel's text, never null; valid until the next LoadActor, ShowImage or ShowText.
  virtual const char* GetInfoText() = 0;
};

// One mesh ready to draw. The texture belongs to the texture cache.
struct DrawNode {
  GpuMesh mesh;
  u32 indexCount = 0;
  u32 texture = 0;  // 0: drawn flat with Technique::kRender
};

// Where textures come from: the packs, decoded into the cache's textures on the device.
struct TextureSource {
  const PackIndex* packIndex = nullptr;
  IRenderDevice* device = nullptr;
  CByteBuffer imageBytes{0x1000000};  // the last fetched image file, reused
  TextureCache cache;
};

// The render control: camera, the shown model's meshes and textures, and the info text.
class CRenderWindow final : public IRenderWindow {
 public:
  // `host` is the control's window; `width` and `height` a first guess at its size.
  CRenderWindow(IRenderHost& host, i32 width, i32 height);
  ~CRenderWindow() override;
  CRenderWindow(const CRenderWindow&) = delete;
  CRenderWindow& operator=(const CRenderWindow&) = delete;

  bool Init(PackIndex* packIndex) override;
  void Shutdown() override;
  void Tick() override;
  bool LoadActor(const PackEntry* entry, const char* name, const MaterialDefinitionSet* materials,
                 ISkeletonSource* skeletons) override;
  bool ShowImage(const DecodedImage& image, const char* info) override;
  void ShowText(const char* info) override;
  const char* GetInfoText() override { return infoText.Text(); }

  // Turns the views on or off; the info text names the skeleton while its view is on.
  void SetViews(const PreviewViews& views);
  const PreviewViews& Views() const { return views; }
  // Frames the shown model again, as loading it did: turned and moved back to where it started.
  void Reframe();
  // The control's drawable is now `width` x `height` pixels, as when the window is fitted to
  // another screen: projection and gestures follow.
  void Resize(i32 width, i32 height);

  // A mouse message of the control; `capture` takes and gives back the pointer.
  void HandleMouse(IMouseCapture& capture, u32 message, u32 buttons, i32 x, i32 y, bool captureToSelf = false);

  const ArcBallCamera& Camera() const { return camera; }
  const Matrix4& ModelOffset() const { return modelOffset; }
  const Matrix4& Projection() const { return projectionMatrix; }
  // The model's matrix of the last frame, offset and camera together: the meshes' world.
  const Matrix4& FrameWorld() const { return frameWorld; }
  // The skeleton of the shown actor on the device; all 0 when it has none.
  const GpuSkeleton& Skeleton() const { return skeleton; }
  u32 DrawCount() const { return drawList.Count(); }
  const DrawNode& DrawAt(u32 index) const { return drawList[index]; }
  f32 HorizontalFov() const { return horizontalFov; }

 private:
  bool BuildDrawNode(const ModelMaterial& material, const ModelMesh& mesh, const MaterialDefinitionSet& materials);
  u32 GetTexture(const char* name);
  void ReleaseDrawList();
  void ReleaseImage();
  // Frees whatever is shown and makes the context current for what comes next; false without it.
  bool ClearShown();
  void SetSize(i32 width, i32 height);
  void LoadSkeleton(const ActorFiles& files, ISkeletonSource* skeletons);
  // The info text of the shown actor, with the skeleton's line while its view is on.
  void WriteSkeletonLine();

  IRenderHost& host;
  ArcBallCamera camera;
  CByteBuffer actorBytes{0x8000};
  CByteBuffer modelBytes{0x1000000};
  CByteBuffer paletteBytes{0x100000};
  PackIndex* packIndex = nullptr;
  IRenderDevice* device = nullptr;  // null while the control is blank
  Matrix4 worldMatrix;
  Matrix4 modelOffset;
  Matrix4 projectionMatrix;
  Matrix4 frameWorld;
  TArray<DrawNode> drawList;  // in mesh order, which is the drawing order
  GpuSkeleton skeleton;
  TStringBufferA<128> skeletonName;  // the shown rig's name; meaningful while `skeleton` is held
  ModelBounds shownBounds = {};
  bool modelShown = false;  // a model was framed, and Reframe has bounds
  u32 infoLength = 0;       // the info text's length without the skeleton's line
  PreviewViews views;
  TextureSource textures;
  // The image shown in place of a model; texture 0 while there is none.
  struct ShownImage {
    u32 texture = 0;
    u32 width = 0;
    u32 height = 0;
  };
  ShownImage shownImage;
  i32 viewWidth = 0;  // the drawable, in pixels
  i32 viewHeight = 0;
  CStringBufferA infoText;
  f32 verticalFov = 0;
  f32 horizontalFov = 0;
  f32 aspect = 0;
};
