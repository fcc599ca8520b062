#include "preview/gl_render_device.h"

#include <QFile>

#include "platform/debug_channel.h"

namespace {

enum MatrixSlot { kWorld, kView, kViewInverse, kProjection };

// Magenta: far from the clear grey and from the colours of skin, cloth, metal and stone.
constexpr f32 kSkeletonColour[3] = {1.0f, 0.0f, 1.0f};
constexpr f32 kJointSize = 5.0f;  // pixels across a joint's point

}  // namespace

u32 GlRenderDevice::Compile(u32 stage, const char* path, const char* defines) {
  QFile file(QString::fromLatin1(path));
  if (!file.open(QIODevice::ReadOnly)) return 0;
  QByteArray source = file.readAll();
  if (!source.startsWith("#version")) source.prepend(QByteArray("#version 330 core\n") + defines);
  const u32 shader = glCreateShader(stage);
  const char* text = source.constData();
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  GLint compiled = GL_FALSE;
  glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
  if (compiled) return shader;
  char log[2048] = {};
  glGetShaderInfoLog(shader, sizeof(log), nullptr, log);
  DebugPrintA("%s: %s\n", path, log);
  glDeleteShader(shader);
  return 0;
}

bool GlRenderDevice::Build(Program& program, const char* vertexPath, const char* geometryPath, const char* fragmentPath,
                           const char* defines) {
  const u32 stages[3] = {Compile(GL_VERTEX_SHADER, vertexPath, defines),
                         geometryPath ? Compile(GL_GEOMETRY_SHADER, geometryPath, defines) : 0,
                         Compile(GL_FRAGMENT_SHADER, fragmentPath, defines)};
  const bool compiled = stages[0] && stages[2] && (!geometryPath || stages[1]);
  if (compiled) {
    program.id = glCreateProgram();
    for (const u32 stage : stages) {
      if (stage) glAttachShader(program.id, stage);
    }
    glLinkProgram(program.id);
  }
  for (const u32 stage : stages) {
    if (stage) glDeleteShader(stage);
  }
  if (!compiled) return false;
  GLint linked = GL_FALSE;
  glGetProgramiv(program.id, GL_LINK_STATUS, &linked);
  if (!linked) {
    char log[2048] = {};
    glGetProgramInfoLog(program.id, sizeof(log), nullptr, log);
    DebugPrintA("%s: %s\n", fragmentPath, log);
    return false;
  }
  program.world = glGetUniformLocation(program.id, "World");
  program.view = glGetUniformLocation(program.id, "View");
  program.viewInverse = glGetUniformLocation(program.id, "ViewInverse");
  program.projection = glGetUniformLocation(program.id, "Projection");
  program.diffuse = glGetUniformLocation(program.id, "TxDiffuse");
  program.colour = glGetUniformLocation(program.id, "Colour");
  program.rect = glGetUniformLocation(program.id, "Rect");
  return true;
}

bool GlRenderDevice::Open() {
  if (!initializeOpenGLFunctions()) return false;
  const bool built =
      Build(programs[int(Technique::kRender)], ":/preview/preview.vert", nullptr, ":/preview/preview.frag", "") &&
      Build(programs[int(Technique::kRenderTextured)], ":/preview/preview.vert", nullptr, ":/preview/preview.frag",
            "#define TEXTURED 1\n") &&
      Build(programs[int(Technique::kRenderNormals)], ":/preview/normals.vert", ":/preview/normals.geom",
            ":/preview/normals.frag", "");
  if (!built) {
    Close();
    return false;
  }
  // Only the skeleton view goes without its program: the model is drawn all the same.
  if (!Build(skeletonProgram, ":/preview/skeleton.vert", nullptr, ":/preview/skeleton.frag", "")) {
    if (skeletonProgram.id) glDeleteProgram(skeletonProgram.id);
    skeletonProgram = Program{};
  }
  // Nor images without theirs; a core context draws nothing without a vertex array bound.
  if (Build(imageProgram, ":/preview/image.vert", nullptr, ":/preview/image.frag", "")) {
    glGenVertexArrays(1, &imageVertexArray);
  } else {
    if (imageProgram.id) glDeleteProgram(imageProgram.id);
    imageProgram = Program{};
  }
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LESS);
  glFrontFace(GL_CW);
  glCullFace(GL_BACK);
  glDisable(GL_BLEND);
  return true;
}

void GlRenderDevice::Close() {
  for (Program* program : {&programs[0], &programs[1], &programs[2], &skeletonProgram, &imageProgram}) {
    if (program->id) glDeleteProgram(program->id);
    *program = Program{};
  }
  if (imageVertexArray) glDeleteVertexArrays(1, &imageVertexArray);
  imageVertexArray = 0;
}

bool GlRenderDevice::CreateMesh(const PreviewMesh& mesh, GpuMesh& out) {
  out = GpuMesh{};
  while (glGetError() != GL_NO_ERROR) {
  }
  glGenVertexArrays(1, &out.vertexArray);
  glBindVertexArray(out.vertexArray);
  glGenBuffers(1, &out.vertexBuffer);
  glBindBuffer(GL_ARRAY_BUFFER, out.vertexBuffer);
  glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(mesh.vertexCount) * GLsizeiptr(sizeof(PreviewVertex)), mesh.vertices.Data(),
               GL_STATIC_DRAW);
  glGenBuffers(1, &out.indexBuffer);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, out.indexBuffer);
  glBufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(mesh.indexCount) * GLsizeiptr(sizeof(u32)), mesh.indices.Data(),
               GL_STATIC_DRAW);
  constexpr GLsizei kStride = sizeof(PreviewVertex);
  glEnableVertexAttribArray(0);
  glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, kStride, reinterpret_cast<void*>(offsetof(PreviewVertex, position)));
  glEnableVertexAttribArray(1);
  glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, kStride, reinterpret_cast<void*>(offsetof(PreviewVertex, normal)));
  glEnableVertexAttribArray(2);
  glVertexAttribPointer(2, 2, GL_FLOAT, GL_FALSE, kStride, reinterpret_cast<void*>(offsetof(PreviewVertex, uv)));
  glBindVertexArray(0);
  if (glGetError() == GL_NO_ERROR) return true;
  ReleaseMesh(out);
  return false;
}

void GlRenderDevice::ReleaseMesh(GpuMesh& mesh) {
  if (mesh.vertexArray) glDeleteVertexArrays(1, &mesh.vertexArray);
  if (mesh.vertexBuffer) glDeleteBuffers(1, &mesh.vertexBuffer);
  if (mesh.indexBuffer) glDeleteBuffers(1, &mesh.indexBuffer);
  mesh = GpuMesh{};
}

u32 GlRenderDevice::CreateTexture(const DecodedImage& image) {
  if (image.width == 0 || image.height == 0) return 0;
  while (glGetError() != GL_NO_ERROR) {
  }
  u32 texture = 0;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  // The first row stored is the image's top, where texture coordinate v is 0.
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, GLsizei(image.width), GLsizei(image.height), 0, GL_RGBA, GL_UNSIGNED_BYTE,
               image.pixels.Data());
  glGenerateMipmap(GL_TEXTURE_2D);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
  glBindTexture(GL_TEXTURE_2D, 0);
  if (glGetError() == GL_NO_ERROR) return texture;
  glDeleteTextures(1, &texture);
  return 0;
}

void GlRenderDevice::ReleaseTexture(u32 texture) {
  if (texture) glDeleteTextures(1, &texture);
}

void GlRenderDevice::Clear(const f32 colour[4], f32 depth) {
  glClearColor(colour[0], colour[1], colour[2], colour[3]);
  glClearDepth(depth);
  glDepthMask(GL_TRUE);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void GlRenderDevice::SetMatrixUniforms(const Program& program) {
  // Stored row by row for row vectors, read column by column: the transpose that the shaders expect.
  glUniformMatrix4fv(program.world, 1, GL_FALSE, &matrices[kWorld].m[0][0]);
  glUniformMatrix4fv(program.view, 1, GL_FALSE, &matrices[kView].m[0][0]);
  glUniformMatrix4fv(program.viewInverse, 1, GL_FALSE, &matrices[kViewInverse].m[0][0]);
  glUniformMatrix4fv(program.projection, 1, GL_FALSE, &matrices[kProjection].m[0][0]);
}

void GlRenderDevice::SetMatrices(const Matrix4& world, const Matrix4& view, const Matrix4& viewInverse,
                                 const Matrix4& projection) {
  matrices[kWorld] = world;
  matrices[kView] = view;
  matrices[kViewInverse] = viewInverse;
  matrices[kProjection] = projection;
}

bool GlRenderDevice::Draw(Technique technique, const GpuMesh& mesh, u32 indexCount, u32 texture) {
  const Program& program = programs[int(technique)];
  if (!program.id || !mesh.vertexArray) return false;
  glUseProgram(program.id);
  SetMatrixUniforms(program);
  glUniform1i(program.diffuse, 0);
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture);
  if (technique == Technique::kRenderNormals) {
    glDisable(GL_CULL_FACE);
  } else {
    glEnable(GL_CULL_FACE);
  }
  glBindVertexArray(mesh.vertexArray);
  glDrawElements(GL_TRIANGLES, GLsizei(indexCount), GL_UNSIGNED_INT, nullptr);
  glBindVertexArray(0);
  return true;
}

bool GlRenderDevice::CreateSkeleton(const BindSkeleton& skeleton, GpuSkeleton& out) {
  out = GpuSkeleton{};
  if (skeleton.joints.Count() == 0) return false;
  while (glGetError() != GL_NO_ERROR) {
  }
  glGenVertexArrays(1, &out.vertexArray);
  glBindVertexArray(out.vertexArray);
  glGenBuffers(1, &out.vertexBuffer);
  glBindBuffer(GL_ARRAY_BUFFER, out.vertexBuffer);
  static_assert(sizeof(Vec3) == 3 * sizeof(f32));
  glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(skeleton.joints.Count()) * GLsizeiptr(sizeof(Vec3)), skeleton.joints.Data(),
               GL_STATIC_DRAW);
  glGenBuffers(1, &out.indexBuffer);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, out.indexBuffer);
  glBufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(skeleton.lines.Count()) * GLsizeiptr(sizeof(u32)),
               skeleton.lines.Data(), GL_STATIC_DRAW);
  glEnableVertexAttribArray(0);
  glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, sizeof(Vec3), nullptr);
  glBindVertexArray(0);
  out.jointCount = skeleton.joints.Count();
  out.lineIndexCount = skeleton.lines.Count();
  if (glGetError() == GL_NO_ERROR) return true;
  ReleaseSkeleton(out);
  return false;
}

void GlRenderDevice::ReleaseSkeleton(GpuSkeleton& skeleton) {
  if (skeleton.vertexArray) glDeleteVertexArrays(1, &skeleton.vertexArray);
  if (skeleton.vertexBuffer) glDeleteBuffers(1, &skeleton.vertexBuffer);
  if (skeleton.indexBuffer) glDeleteBuffers(1, &skeleton.indexBuffer);
  skeleton = GpuSkeleton{};
}

void GlRenderDevice::DrawSkeleton(const GpuSkeleton& skeleton) {
  if (!skeletonProgram.id || !skeleton.vertexArray) return;
  glUseProgram(skeletonProgram.id);
  SetMatrixUniforms(skeletonProgram);
  glUniform3fv(skeletonProgram.colour, 1, kSkeletonColour);
  // Over the model, not hidden in it: a bone runs inside the mesh that it moves.
  glDisable(GL_DEPTH_TEST);
  glBindVertexArray(skeleton.vertexArray);
  glDrawElements(GL_LINES, GLsizei(skeleton.lineIndexCount), GL_UNSIGNED_INT, nullptr);
  glPointSize(kJointSize);
  glDrawArrays(GL_POINTS, 0, GLsizei(skeleton.jointCount));
  glBindVertexArray(0);
  glEnable(GL_DEPTH_TEST);
}

void GlRenderDevice::SetWireframe(bool on) { glPolygonMode(GL_FRONT_AND_BACK, on ? GL_LINE : GL_FILL); }

void GlRenderDevice::DrawImage(u32 texture, const ViewRect& rect) {
  if (!imageProgram.id || !imageVertexArray || !texture) return;
  glUseProgram(imageProgram.id);
  glUniform4f(imageProgram.rect, rect.left, rect.bottom, rect.right, rect.top);
  glUniform1i(imageProgram.diffuse, 0);
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture);
  // Shown once, the edges must not blend with the opposite side; enlarged, each texel stays a sharp
  // square, which is what a look at a texture wants to see.
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_CULL_FACE);
  glBindVertexArray(imageVertexArray);
  glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
  glBindVertexArray(0);
  glEnable(GL_DEPTH_TEST);
}
