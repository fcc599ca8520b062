#pragma once

#include "core/types.h"
#include "image/image_decode.h"
#include "mesh/bind_skeleton.h"
#include "mesh/preview_mesh.h"
#include "preview/image_fit.h"
#include "preview/preview_math.h"

// A mesh in graphics memory: its buffers, 0 when absent.
struct GpuMesh {
  u32 vertexArray = 0;
  u32 vertexBuffer = 0;
  u32 indexBuffer = 0;
};

// A skeleton in graphics memory: its joints as points and its bones as lines; 0 when absent.
struct GpuSkeleton {
  u32 vertexArray = 0;
  u32 vertexBuffer = 0;
  u32 indexBuffer = 0;
  u32 jointCount = 0;
  u32 lineIndexCount = 0;
};

// The three ways of drawing a mesh. Normals is there for debugging; nothing draws with it.
enum class Technique { kRender, kRenderTextured, kRenderNormals };

// What the render control needs of a graphics API, with its shaders ready. Every call is made with
// the device current on the calling thread.
class IRenderDevice {
 public:
  virtual ~IRenderDevice() = default;

  // Uploads a mesh; false (with nothing held) when the buffers can't be made.
  [[nodiscard]] virtual bool CreateMesh(const PreviewMesh& mesh, GpuMesh& out) = 0;
  virtual void ReleaseMesh(GpuMesh& mesh) = 0;
  // A texture with mipmaps, sampled linearly and wrapped; 0 on failure.
  virtual u32 CreateTexture(const DecodedImage& image) = 0;
  virtual void ReleaseTexture(u32 texture) = 0;

  virtual void Clear(const f32 colour[4], f32 depth) = 0;
  virtual void SetMatrices(const Matrix4& world, const Matrix4& view, const Matrix4& viewInverse,
                           const Matrix4& projection) = 0;
  // False when the technique can't be used, and the mesh is skipped.
  virtual bool Draw(Technique technique, const GpuMesh& mesh, u32 indexCount, u32 texture) = 0;

  // The views for checking a model, off until asked for.
  // Uploads a skeleton; false (with nothing held) when the buffers can't be made.
  [[nodiscard]] virtual bool CreateSkeleton(const BindSkeleton& skeleton, GpuSkeleton& out) = 0;
  virtual void ReleaseSkeleton(GpuSkeleton& skeleton) = 0;
  // Draws the skeleton over everything drawn so far, whatever lies nearer, in one colour.
  virtual void DrawSkeleton(const GpuSkeleton& skeleton) = 0;
  // Meshes drawn from here on show their triangles' edges only.
  virtual void SetWireframe(bool on) = 0;

  // Draws a texture made by CreateTexture once, whole, over `rect`, without depth or culling.
  virtual void DrawImage(u32 texture, const ViewRect& rect) = 0;
};

// The window that the render control draws in.
class IRenderHost {
 public:
  virtual ~IRenderHost() = default;
  // The device with its graphics context current and the drawable size, or null when graphics
  // can't be had. The device stays the host's.
  virtual IRenderDevice* OpenDevice(i32& width, i32& height) = 0;
  // Makes the device's context current again, for work outside a frame; false without one.
  virtual bool MakeCurrent() = 0;
  virtual void CloseDevice() = 0;
  // Asks for a frame: the next tick draws.
  virtual void RequestFrame() = 0;
};
