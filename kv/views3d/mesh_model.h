// Geometry of three-dimensional views: a mesh of vertices and triangles in one movable memory block, its view angles
// and scale, projection of the vertices, depth sorting of the triangles, and rotation of vertex shades, which animates
// rotors. Draws nothing.
//
// A model is accessed through its memory handle. Lock it, write vertices, triangles and the two counts, unlock it, then
// set the view and project as often as needed. Every function returns 1, or 0 when it rejects an argument (a null,
// destroyed or foreign handle, a failed lock, a pointer that is not writable), without changing anything.
//
// Any thread, but only one thread at a time may project or change a model; the lock count is thread-safe.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace kv {

inline constexpr std::uint32_t kMeshTag = 0x20070806;
inline constexpr double kMeshEyeDistance = 750;  // of the perspective, in units of the model

// Packed: in an array of 52-byte vertices every second one is misaligned for double.
#pragma pack(push, 1)

// The header of the block, followed by the vertices and the triangles without a gap.
struct MeshModel {
  std::uint32_t tag;  // kMeshTag as long as the model exists
  HGLOBAL selfHandle;
  std::uint32_t vertexCapacity;  // set at creation, like triangleCapacity; do not change
  std::uint32_t triangleCapacity;
  std::int32_t vertexCount;    // vertices in use; projection clamps it to 0..vertexCapacity
  std::int32_t triangleCount;  // triangles in use; likewise
  std::uint8_t reserved[64];
  double angleA;  // degrees, -180..180: rotation in the x-y plane
  double angleB;  // rotation in the z-y plane
  double angleC;  // rotation in the x-z plane
  double scale;
  std::uint32_t shadeTable[256];  // colors; initially entry i is the gray of level i
};

struct MeshVertex {
  double x, y, z;  // model coordinates
  double projectedX;
  double depthY;  // larger is nearer
  double projectedZ;
  std::uint8_t attributes[2];
  std::uint8_t shade;  // index into the shade table
  std::uint8_t lastAttribute;
};

struct MeshTriangle {
  std::uint32_t attributes;
  std::uint32_t vertices[3];  // an index at or beyond the vertex capacity adds no depth
  double depth;               // sum of the three vertices' depths
  std::uint8_t reserved[8];
};

#pragma pack(pop)

static_assert(sizeof(MeshModel) == 1144 && offsetof(MeshModel, vertexCount) == 16 &&
              offsetof(MeshModel, reserved) == 24 && offsetof(MeshModel, angleA) == 88 &&
              offsetof(MeshModel, scale) == 112 && offsetof(MeshModel, shadeTable) == 120);
static_assert(sizeof(MeshVertex) == 52 && offsetof(MeshVertex, projectedX) == 24 &&
              offsetof(MeshVertex, depthY) == 32 && offsetof(MeshVertex, projectedZ) == 40 &&
              offsetof(MeshVertex, shade) == 50);
static_assert(sizeof(MeshTriangle) == 32 && offsetof(MeshTriangle, vertices) == 4 &&
              offsetof(MeshTriangle, depth) == 16);

// Creates an empty model with these capacities: counts and angles 0, scale 3.5. Returns null when allocation fails. The
// caller owns it and frees it with meshDestroy.
HGLOBAL meshCreate(std::uint32_t vertexCapacity, std::uint32_t triangleCapacity);
BOOL meshDestroy(HGLOBAL mesh);

// Locks the model and stores its address; `vertices` and `triangles` may be null. Each success requires one meshUnlock.
BOOL meshLock(HGLOBAL mesh, MeshModel** model, MeshVertex** vertices, MeshTriangle** triangles);
// Rejects an address that is not writable for the header and one more byte; every existing model is larger.
BOOL meshUnlock(MeshModel* model);

// The angles that meshSetView sets.
inline constexpr std::uint8_t kMeshSetAngleA = 1, kMeshSetAngleB = 2, kMeshSetAngleC = 4;

// Sets the scale to factor1 * factor2 in any case, and each angle (degrees) whose flag is set, normalized to -180..180.
// An angle that is not finite does not change the stored one.
BOOL meshSetView(HGLOBAL mesh, double factor1, double factor2, double angleA, double angleB, double angleC,
                 std::uint8_t flags);
// Copies the stored angles to those pointers that are writable.
BOOL meshGetAngles(HGLOBAL mesh, double* angleA, double* angleB, double* angleC);

// Rotates and projects every vertex, then sorts the triangles by ascending depth, so that nearer ones are painted over
// farther ones. The sort is stable; NaN depths come first.
BOOL meshProject(HGLOBAL mesh);

// Rotates the shades of the vertices start+1 .. start+length: a positive or zero shift by that many positions, clamped
// to 1 .. length/2 - 1; a negative one always by one position in the other direction. The vertex at `start` is the hub
// and keeps its shade; -1 means a ring without a hub. Rejects an array that is not writable from its first vertex to
// the ring's last one. Rings may have any length.
BOOL meshRotateShades(MeshVertex* vertices, int start, int length, int shift);

}  // namespace kv
