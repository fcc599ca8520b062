#include "mesh/unit_vector.h"

bool HasNormalSource(const ModelMesh& mesh, const InputLayout* layout) {
  if (!layout) return false;
  if (FindFittingElement(mesh, layout, kNormal)) return true;
  return FindFittingElement(mesh, layout, kBinormal) && FindFittingElement(mesh, layout, kTangent);
}
