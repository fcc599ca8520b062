#include "preview/preview_math.h"

#include <cmath>
#include <glm/gtc/quaternion.hpp>
#include <glm/mat4x4.hpp>

namespace {

// GLM stores columns and multiplies column vectors, so its matrix with our rows as its columns is
// our matrix transposed, which is what the column-vector maths needs: (A * B)^T = B^T * A^T.
glm::mat4 ToGlm(const Matrix4& matrix) {
  glm::mat4 out(1.0f);
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) out[r][c] = matrix.m[r][c];
  }
  return out;
}

Matrix4 FromGlm(const glm::mat4& matrix) {
  Matrix4 out;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) out.m[r][c] = matrix[r][c];
  }
  return out;
}

glm::quat ToGlm(const Quaternion& q) { return glm::quat(q.w, q.x, q.y, q.z); }

}  // namespace

Matrix4 MatrixMultiply(const Matrix4& a, const Matrix4& b) { return FromGlm(ToGlm(b) * ToGlm(a)); }

Matrix4 MatrixTranslation(f32 x, f32 y, f32 z) {
  Matrix4 out;
  out.m[3][0] = x;
  out.m[3][1] = y;
  out.m[3][2] = z;
  return out;
}

Matrix4 MatrixRotationQuaternion(const Quaternion& q) {
  // GLM's cast leaves the length alone and its column-vector matrix, read by columns, is ours.
  return FromGlm(glm::mat4_cast(ToGlm(q)));
}

bool MatrixInverse(Matrix4& out, const Matrix4& m) {
  const glm::mat4 transposed = ToGlm(m);
  if (glm::determinant(transposed) == 0.0f) return false;
  // The inverse of the transpose is the transpose of the inverse.
  out = FromGlm(glm::inverse(transposed));
  return true;
}

Quaternion QuaternionMultiply(const Quaternion& a, const Quaternion& b) {
  // The Hamilton product applies its right factor first, so `a` goes on the right.
  const glm::quat product = ToGlm(b) * ToGlm(a);
  return {product.x, product.y, product.z, product.w};
}

Matrix4 MatrixPerspectiveFovRH(f32 verticalFov, f32 aspect, f32 zNear, f32 zFar) {
  const f32 yScale = 1.0f / std::tan(verticalFov * 0.5f);
  const f32 xScale = yScale / aspect;
  Matrix4 out;
  out.m[0][0] = xScale;
  out.m[1][1] = yScale;
  out.m[2][2] = zFar / (zNear - zFar);
  out.m[2][3] = -1.0f;
  out.m[3][2] = zNear * zFar / (zNear - zFar);
  out.m[3][3] = 0.0f;
  return out;
}
