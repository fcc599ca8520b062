#pragma once

#include "core/types.h"

// The transform maths of the FBX side, in the format's conventions: column vectors (p' = M p),
// rotations in degrees in XYZ order (R = Rz * Ry * Rx, X applied first), and the global matrix of
// a node as the parent's global times T * R * S.

struct FbxVector2 {
  f64 x = 0, y = 0;
};

struct FbxDouble3 {
  f64 x = 0, y = 0, z = 0;
  bool operator==(const FbxDouble3&) const = default;
};

struct FbxVector4 {
  f64 x = 0, y = 0, z = 0, w = 0;
};

struct FbxQuaternion {
  f64 x = 0, y = 0, z = 0, w = 1;
};

class FbxAMatrix {
 public:
  FbxAMatrix() { SetIdentity(); }

  void SetIdentity();
  // The rotation of `q` (normalised first, as a rig's may be slightly off unit length), with no
  // translation.
  void SetQ(const FbxQuaternion& q);
  // The rotation part as XYZ Euler angles in degrees: rx and rz in (-180, 180], ry in [-90, 90].
  FbxVector4 GetR() const;
  FbxVector4 GetT() const { return {m[0][3], m[1][3], m[2][3], 1}; }

  // T * R * S from a translation, XYZ Euler angles in degrees and a scale.
  static FbxAMatrix FromTRS(const FbxVector4& t, const FbxVector4& rDegrees, const FbxVector4& s);
  FbxAMatrix operator*(const FbxAMatrix& other) const;
  // The inverse of an affine matrix; the identity for a singular one.
  FbxAMatrix Inverse() const;

  f64 At(u32 row, u32 column) const { return m[row][column]; }
  f64& At(u32 row, u32 column) { return m[row][column]; }
  // The 16 values as the file stores them: column after column, the translation in 12 to 14.
  void ToFileOrder(f64 (&out)[16]) const;

 private:
  f64 m[4][4];  // m[row][column]
};

// A general 4x4 matrix, as a pose stores it; ours are only ever affine.
class FbxMatrix {
 public:
  FbxMatrix() = default;
  explicit FbxMatrix(const FbxAMatrix& affine) : values(affine) {}
  const FbxAMatrix& Affine() const { return values; }

 private:
  FbxAMatrix values;
};
