// The drawing order of a mesh's triangles. Any thread.
#pragma once

#include <span>

#include "views3d/mesh_model.h"

namespace kv {

// Puts the triangles in ascending order of depth. Every difference counts, however small; equal depths (also 0 and -0)
// keep the order in which they came, and what is not a number comes first. Takes time in proportion to the triangles,
// in whatever order they came, unless most depths lie within a millionth of the whole range; and 16 bytes of memory for
// each. When that cannot be had it still sorts, more slowly.
void SortByDepth(std::span<MeshTriangle> triangles);

}  // namespace kv
