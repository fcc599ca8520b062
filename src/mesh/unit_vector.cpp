#include "mesh/unit_vector.h"

#include <cmath>

Vec3 UnpackUnit(Vec3 v) { return {v.x * 2.0f - 1.0f, v.y * 2.0f - 1.0f, v.z * 2.0f - 1.0f}; }

f32 VectorLength(const Vec3& v) {
  const f32 sum = v.x * v.x + v.y * v.y + v.z * v.z;
  return f32(std::sqrt(f64(sum)));
}

void NormalizeByLength(Vec3& v) {
  const f32 length = VectorLength(v);
  if (length == 0.0f) {
    v = {};
    return;
  }
  const f32 inverse = 1.0f / length;
  v = {v.x * inverse, v.y * inverse, v.z * inverse};
}

void NormalizeVector(Vec3& v) {
  const f32 ax = std::fabs(v.x);
  const f32 ay = std::fabs(v.y);
  const f32 az = std::fabs(v.z);
  if (ax == 1.0f && ay == az) {
    v.y = v.z = 0;
  } else if (ay == 1.0f && ax == az) {
    v.x = v.z = 0;
  } else if (az == 1.0f && ax == ay) {
    v.x = v.y = 0;
  } else {
    NormalizeByLength(v);
  }
}

Vec3 DeriveNormal(const Vec3& t, const Vec3& b, f32 tangentW) {
  const f32 s = tangentW * 2.0f - 1.0f;
  return {(t.y * b.z - t.z * b.y) * s, (t.z * b.x - t.x * b.z) * s, (t.x * b.y - t.y * b.x) * s};
}

bool HasNormalSource(const ModelMesh& mesh, const InputLayout* layout) {
  if (!layout) return false;
  if (FindFittingElement(mesh, layout, kNormal)) return true;
  return FindFittingElement(mesh, layout, kBinormal) && FindFittingElement(mesh, layout, kTangent);
}
