// The geometry of the three-dimensional views: a mesh of vertices and triangles in one movable memory block, its view
// angles and scale, the projection of every vertex, the depth order of the triangles, and the ring shift of vertex
// shades that makes rotors turn. Draws nothing.
//
// A model is reached only through its memory handle. Its user locks it, writes vertices, triangles and the two counts,
// unlocks it, and then sets the view and projects as often as he likes. Every operation returns 1, or 0 when it
// rejected (null, destroyed or foreign handle, failed lock, pointer that cannot be written); what it rejected is
// unchanged.
//
// Any thread, but one model is projected and changed by one thread at a time; only the lock count is shared.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace kv {

inline constexpr std::uint32_t kMeshTag = 0x20070806;
inline constexpr double kMeshEyeDistance = 750;  // of the perspective, in units of the model

// Without padding or alignment: in an array of 52-byte vertices every second one is off a double's natural place.
#pragma pack(push, 1)

// The head of the block; the vertices and then the triangles follow it without a gap.
struct MeshModel {
  std::uint32_t tag;  // kMeshTag while the model lives
  HGLOBAL selfHandle;
  std::uint32_t vertexCapacity;  // as given at creation, like triangleCapacity: not to be changed
  std::uint32_t triangleCapacity;
  std::int32_t vertexCount;    // vertices in use; projection limits it to 0..vertexCapacity
  std::int32_t triangleCount;  // triangles in use; likewise
  std::uint8_t reserved[64];
  double angleA;  // degrees, -180..180: rotation in the x-y plane
  double angleB;  // rotation in the z-y plane
  double angleC;  // rotation in the x-z plane
  double scale;
  std::uint32_t shadeTable[256];  // colours; at creation entry i is the grey of level i
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

// Creates an empty model with capacity for so many vertices and triangles: counts and angles 0, scale 3.5. Null when
// there is no memory for it. The caller owns it and gives it to meshDestroy.
HGLOBAL meshCreate(std::uint32_t vertexCapacity, std::uint32_t triangleCapacity);
BOOL meshDestroy(HGLOBAL mesh);

// Locks the model and gives its address; `vertices` and `triangles` may be null. Each success requires one meshUnlock.
BOOL meshLock(HGLOBAL mesh, MeshModel** model, MeshVertex** vertices, MeshTriangle** triangles);
// Rejects an address that is not writable for one byte more than the head: a live model never ends there.
BOOL meshUnlock(MeshModel* model);

// Which angles meshSetView sets.
inline constexpr std::uint8_t kMeshSetAngleA = 1, kMeshSetAngleB = 2, kMeshSetAngleC = 4;

// The scale becomes factor1 * factor2 in any case; each angle (degrees) whose flag is set is brought into -180..180 by
// whole turns and stored. An angle that is not finite has no such form: the stored one stays.
BOOL meshSetView(HGLOBAL mesh, double factor1, double factor2, double angleA, double angleB, double angleC,
                 std::uint8_t flags);
// Copies the stored angles to those pointers that can be written.
BOOL meshGetAngles(HGLOBAL mesh, double* angleA, double* angleB, double* angleC);

// Rotates and projects every vertex, then puts the triangles in drawing order: by ascending depth, so that nearer faces
// are painted over farther ones. Equal depths keep the order in which they stood; depths that are not numbers come
// first.
BOOL meshProject(HGLOBAL mesh);

// Turns the shades of the vertices start+1 .. start+length one ring: a positive or zero shift by that many places,
// at least 1 and at most length/2 - 1; a negative one always by one place the other way. The vertex at `start` is the
// hub and keeps its shade; -1 is a ring without a hub. Rejects an array that is not writable from its first vertex to
// the ring's last one. Rings may have any length.
BOOL meshRotateShades(MeshVertex* vertices, int start, int length, int shift);

}  // namespace kv
