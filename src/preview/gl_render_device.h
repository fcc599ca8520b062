#pragma once

#include <QOpenGLFunctions_3_3_Core>

#include "preview/render_device.h"

// The render device on an OpenGL 3.3 core context: the three techniques as shader programs, the
// vertex format as a vertex array per mesh. Front faces run clockwise on screen, and back faces
// are culled, as the game's meshes are wound.
class GlRenderDevice final : public IRenderDevice, private QOpenGLFunctions_3_3_Core {
 public:
  GlRenderDevice() = default;
  ~GlRenderDevice() override = default;  // Close runs while the context is current
  GlRenderDevice(const GlRenderDevice&) = delete;
  GlRenderDevice& operator=(const GlRenderDevice&) = delete;

  // With the context current: compiles the shaders and sets the fixed state. False when the
  // context isn't 3.3 core or a shader fails; the compiler's text goes to the debug channel.
  [[nodiscard]] bool Open();
  void Close();

  bool CreateMesh(const PreviewMesh& mesh, GpuMesh& out) override;
  void ReleaseMesh(GpuMesh& mesh) override;
  u32 CreateTexture(const DecodedImage& image) override;
  void ReleaseTexture(u32 texture) override;
  void Clear(const f32 colour[4], f32 depth) override;
  void SetMatrices(const Matrix4& world, const Matrix4& view, const Matrix4& viewInverse,
                   const Matrix4& projection) override;
  bool Draw(Technique technique, const GpuMesh& mesh, u32 indexCount, u32 texture) override;
  bool CreateSkeleton(const BindSkeleton& skeleton, GpuSkeleton& out) override;
  void ReleaseSkeleton(GpuSkeleton& skeleton) override;
  void DrawSkeleton(const GpuSkeleton& skeleton) override;
  void SetWireframe(bool on) override;
  void DrawImage(u32 texture, const ViewRect& rect) override;

 private:
  struct Program {
    u32 id = 0;
    i32 world = -1, view = -1, viewInverse = -1, projection = -1, diffuse = -1, colour = -1, rect = -1;
  };

  bool Build(Program& program, const char* vertexPath, const char* geometryPath, const char* fragmentPath,
             const char* defines);
  u32 Compile(u32 stage, const char* path, const char* defines);

  void SetMatrixUniforms(const Program& program);

  Program programs[3];  // by Technique
  Program skeletonProgram;
  Program imageProgram;
  u32 imageVertexArray = 0;  // bound for the image's quad, which reads no attributes
  Matrix4 matrices[4];       // world, view, view inverse, projection, as last set
};
