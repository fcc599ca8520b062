#pragma once

#include "fbx/sdk/fbx_record.h"

// The property templates of the Definitions section: the defaults that a reader gives every
// property an object of the type doesn't write. They hold the format's standard values, which
// readers that ignore templates assume as well.
enum class FbxTemplate { Node, Skeleton, Mesh, SurfacePhong };

// Adds `PropertyTemplate: "<class>"` with its Properties70 to `objectType`.
[[nodiscard]] bool AddPropertyTemplate(FbxRecord& objectType, FbxTemplate kind);
