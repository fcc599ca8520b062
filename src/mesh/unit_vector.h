#pragma once

#include <cmath>

#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"
#include "mesh/vertex_stream.h"

// Inline: the mesh loops call these once or twice for every vertex.

// Normals, tangents and binormals are stored in the range 0 to 1, whatever their type: each
// component becomes component * 2 - 1.
inline Vec3 UnpackUnit(Vec3 v) { return {v.x * 2.0f - 1.0f, v.y * 2.0f - 1.0f, v.z * 2.0f - 1.0f}; }

// x*x + y*y + z*z summed in binary32, its square root taken in binary64.
inline f32 VectorLength(const Vec3& v) {
  const f32 sum = v.x * v.x + v.y * v.y + v.z * v.z;
  return f32(std::sqrt(f64(sum)));
}

// The length division alone, without the axis shortcut.
inline void NormalizeByLength(Vec3& v) {
  const f32 length = VectorLength(v);
  if (length == 0.0f) {
    v = {};
    return;
  }
  const f32 inverse = 1.0f / length;
  v = {v.x * inverse, v.y * inverse, v.z * inverse};
}

// A full-scale component with two equal others snaps to that axis; otherwise divides by the
// length, and a zero vector stays zero.
inline void NormalizeVector(Vec3& v) {
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

// tangent x binormal, scaled by tangentW * 2 - 1 and not normalised again.
inline Vec3 DeriveNormal(const Vec3& t, const Vec3& b, f32 tangentW) {
  const f32 s = tangentW * 2.0f - 1.0f;
  return {(t.y * b.z - t.z * b.y) * s, (t.z * b.x - t.x * b.z) * s, (t.x * b.y - t.y * b.x) * s};
}

// A Normal (usage index 0) that fits, or else a Tangent and a Binormal that both fit.
bool HasNormalSource(const ModelMesh& mesh, const InputLayout* layout);
