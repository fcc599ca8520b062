#include "fbx/sdk/fbx_math.h"

#include <cmath>
#include <numbers>

namespace {

constexpr f64 kDegrees = 180.0 / std::numbers::pi;
constexpr f64 kRadians = std::numbers::pi / 180.0;
// Below this distance from 1 the middle angle is taken as +-90 degrees: gimbal lock.
constexpr f64 kGimbalEpsilon = 1e-12;

f64 Clamp(f64 v) { return v < -1 ? -1 : v > 1 ? 1 : v; }

}  // namespace

void FbxAMatrix::SetIdentity() {
  for (u32 r = 0; r < 4; ++r) {
    for (u32 c = 0; c < 4; ++c) m[r][c] = r == c ? 1 : 0;
  }
}

void FbxAMatrix::SetQ(const FbxQuaternion& q) {
  const f64 length = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
  const f64 s = length > 0 ? 1 / length : 0;
  const f64 x = q.x * s, y = q.y * s, z = q.z * s, w = length > 0 ? q.w * s : 1;
  SetIdentity();
  m[0][0] = 1 - 2 * (y * y + z * z);
  m[0][1] = 2 * (x * y - z * w);
  m[0][2] = 2 * (x * z + y * w);
  m[1][0] = 2 * (x * y + z * w);
  m[1][1] = 1 - 2 * (x * x + z * z);
  m[1][2] = 2 * (y * z - x * w);
  m[2][0] = 2 * (x * z - y * w);
  m[2][1] = 2 * (y * z + x * w);
  m[2][2] = 1 - 2 * (x * x + y * y);
}

FbxVector4 FbxAMatrix::GetR() const {
  const f64 ry = std::asin(Clamp(-m[2][0]));
  f64 rx;
  f64 rz;
  if (std::fabs(m[2][0]) < 1 - kGimbalEpsilon) {
    rx = std::atan2(m[2][1], m[2][2]);
    rz = std::atan2(m[1][0], m[0][0]);
  } else {
    rz = 0;
    rx = std::atan2(-m[1][2], m[1][1]);
  }
  return {rx * kDegrees, ry * kDegrees, rz * kDegrees, 0};
}

FbxAMatrix FbxAMatrix::FromTRS(const FbxVector4& t, const FbxVector4& r, const FbxVector4& s) {
  const f64 cx = std::cos(r.x * kRadians), sx = std::sin(r.x * kRadians);
  const f64 cy = std::cos(r.y * kRadians), sy = std::sin(r.y * kRadians);
  const f64 cz = std::cos(r.z * kRadians), sz = std::sin(r.z * kRadians);
  const f64 rotation[3][3] = {{cy * cz, sx * sy * cz - cx * sz, cx * sy * cz + sx * sz},
                              {cy * sz, sx * sy * sz + cx * cz, cx * sy * sz - sx * cz},
                              {-sy, sx * cy, cx * cy}};
  const f64 scale[3] = {s.x, s.y, s.z};
  const f64 translation[3] = {t.x, t.y, t.z};
  FbxAMatrix out;
  for (u32 row = 0; row < 3; ++row) {
    for (u32 column = 0; column < 3; ++column) out.m[row][column] = rotation[row][column] * scale[column];
    out.m[row][3] = translation[row];
  }
  return out;
}

FbxAMatrix FbxAMatrix::operator*(const FbxAMatrix& other) const {
  FbxAMatrix out;
  for (u32 r = 0; r < 4; ++r) {
    for (u32 c = 0; c < 4; ++c) {
      f64 sum = 0;
      for (u32 k = 0; k < 4; ++k) sum += m[r][k] * other.m[k][c];
      out.m[r][c] = sum;
    }
  }
  return out;
}

FbxAMatrix FbxAMatrix::Inverse() const {
  // The 3x3 part by its adjugate, then the translation through it.
  const f64 a = m[0][0], b = m[0][1], c = m[0][2];
  const f64 d = m[1][0], e = m[1][1], f = m[1][2];
  const f64 g = m[2][0], h = m[2][1], i = m[2][2];
  const f64 determinant = a * (e * i - f * h) - b * (d * i - f * g) + c * (d * h - e * g);
  FbxAMatrix out;
  if (determinant == 0) return out;
  const f64 k = 1 / determinant;
  const f64 inverse[3][3] = {{(e * i - f * h) * k, (c * h - b * i) * k, (b * f - c * e) * k},
                             {(f * g - d * i) * k, (a * i - c * g) * k, (c * d - a * f) * k},
                             {(d * h - e * g) * k, (b * g - a * h) * k, (a * e - b * d) * k}};
  for (u32 r = 0; r < 3; ++r) {
    for (u32 col = 0; col < 3; ++col) out.m[r][col] = inverse[r][col];
    out.m[r][3] = -(inverse[r][0] * m[0][3] + inverse[r][1] * m[1][3] + inverse[r][2] * m[2][3]);
  }
  return out;
}

void FbxAMatrix::ToFileOrder(f64 (&out)[16]) const {
  for (u32 column = 0; column < 4; ++column) {
    for (u32 row = 0; row < 4; ++row) out[column * 4 + row] = m[row][column];
  }
}
