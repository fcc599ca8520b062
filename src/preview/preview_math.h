#pragma once

#include "core/types.h"

// The few matrix and quaternion operations of the preview, with the results of the classic
// row-vector conventions: a point is a row vector multiplied on the left (v * M), so the product
// A * B applies A first, and a translation lives in the fourth row (m[3][0..2]).
struct Vector3 {
  f32 x = 0, y = 0, z = 0;
};

struct Quaternion {
  f32 x = 0, y = 0, z = 0, w = 1;
};

struct Matrix4 {
  f32 m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};  // the identity
};

Matrix4 MatrixMultiply(const Matrix4& a, const Matrix4& b);  // a, then b
Matrix4 MatrixTranslation(f32 x, f32 y, f32 z);
// The rotation of `q`, which need not be of unit length (the formula is used as it stands).
Matrix4 MatrixRotationQuaternion(const Quaternion& q);
// False, leaving `out` alone, when `m` has no inverse.
bool MatrixInverse(Matrix4& out, const Matrix4& m);
// The rotation `a` followed by the rotation `b`.
Quaternion QuaternionMultiply(const Quaternion& a, const Quaternion& b);
// Right-handed perspective projection: depth 0 at `zNear`, 1 at `zFar`.
Matrix4 MatrixPerspectiveFovRH(f32 verticalFov, f32 aspect, f32 zNear, f32 zFar);
