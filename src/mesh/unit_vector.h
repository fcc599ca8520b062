#pragma once

#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"
#include "mesh/vertex_stream.h"

// Normals, tangents and binormals are stored in the range 0 to 1, whatever their type: each
// component becomes component * 2 - 1.
Vec3 UnpackUnit(Vec3 v);
// x*x + y*y + z*z summed in binary32, its square root taken in binary64.
f32 VectorLength(const Vec3& v);
// A full-scale component with two equal others snaps to that axis; otherwise divides by the
// length, and a zero vector stays zero.
void NormalizeVector(Vec3& v);
// The length division alone, without the axis shortcut.
void NormalizeByLength(Vec3& v);
// tangent x binormal, scaled by tangentW * 2 - 1 and not normalised again.
Vec3 DeriveNormal(const Vec3& tangent, const Vec3& binormal, f32 tangentW);
// A Normal (usage index 0) that fits, or else a Tangent and a Binormal that both fit.
bool HasNormalSource(const ModelMesh& mesh, const InputLayout* layout);
