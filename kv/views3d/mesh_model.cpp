#include "kv/views3d/mesh_model.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <utility>

#include "kv/framework/numbers.h"

namespace kv {

namespace {

constexpr int kDigitBits = 11, kDigits = 3;  // three digits cover the 32 bits of a key
constexpr std::uint32_t kDigitValues = 1u << kDigitBits;

struct DepthEntry {
  std::uint32_t key;       // position between the least and the greatest depth
  std::uint32_t triangle;  // its index before the sort
};

// Returns an integer with the same order as the depth, exact to the last bit.
std::uint64_t DepthKey(double depth) {
  if (std::isnan(depth)) return 0;
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  const auto bits = std::bit_cast<std::uint64_t>(depth + 0.0);  // converts -0 to 0
  return bits & kSign ? ~bits : bits | kSign;
}

std::uint32_t DigitOf(std::uint32_t key, int digit) {
  return (key >> (digit * kDigitBits)) & (kDigitValues - 1);
}

using DigitCounts = std::array<std::array<std::uint32_t, kDigitValues>, kDigits>;

// Keys increase with depth. If the range of depths is too large for that, all keys are 0.
void FillEntries(std::span<const MeshTriangle> triangles, DepthEntry* entries, DigitCounts* counts) {
  double least = std::numeric_limits<double>::infinity(), greatest = -least;
  for (const MeshTriangle& triangle : triangles) {
    const double depth = triangle.depth;  // may be misaligned, so no reference can be bound to it
    least = std::min(least, depth);
    greatest = std::max(greatest, depth);
  }
  const double range = greatest - least, perUnit = std::numeric_limits<std::uint32_t>::max() / range;
  const bool placed = range > 0 && std::isfinite(range) && std::isfinite(perUnit);
  for (std::uint32_t i = 0; i < triangles.size(); ++i) {
    const double depth = triangles[i].depth;
    const bool numbered = placed && !std::isnan(depth);
    entries[i] = {numbered ? static_cast<std::uint32_t>((depth - least) * perUnit) : 0, i};
    for (int digit = 0; digit < kDigits; ++digit) ++(*counts)[digit][DigitOf(entries[i].key, digit)];
  }
}

// Radix sort from the lowest digit to the highest, stable in each pass. A digit that is equal in all keys needs no
// pass. Returns the array that contains the result.
DepthEntry* SortByKeys(DepthEntry* entries, DepthEntry* other, size_t count, DigitCounts* counts) {
  for (int digit = 0; digit < kDigits; ++digit) {
    auto& starts = (*counts)[digit];
    if (starts[DigitOf(entries[0].key, digit)] == count) continue;
    std::uint32_t next = 0;
    for (std::uint32_t& start : starts) next += std::exchange(start, next);
    for (size_t i = 0; i < count; ++i) other[starts[DigitOf(entries[i].key, digit)]++] = entries[i];
    std::swap(entries, other);
  }
  return entries;
}

// Sorts triangles with equal keys by their exact depth.
void SortEqualKeys(std::span<const MeshTriangle> triangles, DepthEntry* entries) {
  const auto nearer = [triangles](const DepthEntry& first, const DepthEntry& second) {
    return DepthKey(triangles[first.triangle].depth) < DepthKey(triangles[second.triangle].depth);
  };
  DepthEntry* const end = entries + triangles.size();
  for (DepthEntry* run = entries; run != end;) {
    DepthEntry* next = run + 1;
    while (next != end && next->key == run->key) ++next;
    if (next - run > 1 && !std::is_sorted(run, next, nearer)) std::stable_sort(run, next, nearer);
    run = next;
  }
}

// Moves every triangle to its position, along the cycles of the permutation; clears the order.
void MoveIntoOrder(std::span<MeshTriangle> triangles, DepthEntry* order) {
  for (std::uint32_t first = 0; first < triangles.size(); ++first) {
    if (order[first].triangle == first) continue;
    const MeshTriangle moved = triangles[first];
    std::uint32_t position = first;
    for (std::uint32_t from; (from = std::exchange(order[position].triangle, position)) != first; position = from) {
      triangles[position] = triangles[from];
    }
    triangles[position] = moved;
  }
}

// Sorts the triangles by ascending depth, exactly and stably (0 and -0 are equal); NaN comes first. Takes linear time
// in any order, unless most depths are within a millionth of the range, and 16 bytes of memory for each triangle. If
// allocation fails, a slower sort is used.
void SortByDepth(std::span<MeshTriangle> triangles) {
  const size_t count = triangles.size();
  if (count < 2) return;
  const std::unique_ptr<DepthEntry[]> entries(new (std::nothrow) DepthEntry[2 * count]);
  const std::unique_ptr<DigitCounts> counts(new (std::nothrow) DigitCounts{});
  if (!entries || !counts) {
    std::ranges::stable_sort(triangles, [](const MeshTriangle& first, const MeshTriangle& second) {
      return DepthKey(first.depth) < DepthKey(second.depth);
    });
    return;
  }
  FillEntries(triangles, entries.get(), counts.get());
  DepthEntry* sorted = SortByKeys(entries.get(), entries.get() + count, count, counts.get());
  SortEqualKeys(triangles, sorted);
  MoveIntoOrder(triangles, sorted);
}

constexpr double kInitialScale = 3.5;
constexpr size_t kUnlockProbe = sizeof(MeshModel) + 1;

std::uint64_t BlockBytes(std::uint32_t vertexCapacity, std::uint32_t triangleCapacity) {
  return sizeof(MeshModel) + std::uint64_t{vertexCapacity} * sizeof(MeshVertex) +
         std::uint64_t{triangleCapacity} * sizeof(MeshTriangle);
}

MeshVertex* VerticesOf(MeshModel* model) {
  return reinterpret_cast<MeshVertex*>(model + 1);
}

MeshTriangle* TrianglesOf(MeshModel* model) {
  return reinterpret_cast<MeshTriangle*>(VerticesOf(model) + model->vertexCapacity);
}

size_t CountInUse(std::int32_t count, std::uint32_t capacity) {
  return count < 0 ? 0 : std::min<size_t>(static_cast<size_t>(count), capacity);
}

// A handle may have been reused for a smaller block, and a caller may have overwritten the capacities; neither must
// lead outside the block.
bool IsLiveModel(HGLOBAL mesh, MeshModel* model) {
  if (IsBadReadPtr(model, sizeof(*model)) || model->tag != kMeshTag) return false;
  const size_t size = GlobalSize(mesh);
  return size >= sizeof(*model) && BlockBytes(model->vertexCapacity, model->triangleCapacity) <= size;
}

template <class T>
void StoreIfWritable(T* target, T value) {
  if (!IsBadWritePtr(target, sizeof(*target))) *target = value;
}

// Removes full turns in one step; a loop would not end for a huge angle. A zero keeps the sign of the angle.
double WithinHalfTurn(double degrees) {
  const double angle = std::fmod(degrees, 360.0);
  if (angle > 180) return angle - 360;
  return angle < -180 ? angle + 360 : angle;
}

double NewAngle(double stored, double degrees) {
  return std::isfinite(degrees) ? WithinHalfTurn(degrees) : stored;
}

struct Turn {
  explicit Turn(double degrees) : sine(std::sin(Radians(degrees))), cosine(std::cos(Radians(degrees))) {}
  double sine, cosine;
};

void ProjectVertices(const MeshModel& model, std::span<MeshVertex> vertices) {
  const Turn a(model.angleA), b(model.angleB), c(model.angleC);
  const double scale = model.scale;
  for (MeshVertex& vertex : vertices) {
    const double x1 = vertex.x * a.cosine - vertex.y * a.sine;
    const double y1 = vertex.y * a.cosine + vertex.x * a.sine;
    const double z1 = vertex.z * b.cosine - y1 * b.sine;
    const double y2 = y1 * b.cosine + vertex.z * b.sine;
    const double x2 = x1 * c.cosine - z1 * c.sine;
    const double z2 = z1 * c.cosine + x1 * c.sine;
    const double perspective = y2 / kMeshEyeDistance + 1;
    vertex.projectedX = x2 * scale * perspective;
    vertex.depthY = y2 * scale;
    vertex.projectedZ = z2 * scale * perspective;
  }
}

// `vertices` is the whole array, including unused ones.
void MeasureDepths(std::span<const MeshVertex> vertices, std::span<MeshTriangle> triangles) {
  for (MeshTriangle& triangle : triangles) {
    double depth = 0;
    for (const std::uint32_t index : triangle.vertices) {
      if (index < vertices.size()) depth += vertices[index].depthY;
    }
    triangle.depth = depth;
  }
}

void ReverseShades(MeshVertex* ring, int from, int to) {
  for (; from < --to; ++from) std::swap(ring[from].shade, ring[to].shade);
}

}  // namespace

HGLOBAL meshCreate(std::uint32_t vertexCapacity, std::uint32_t triangleCapacity) {
  const std::uint64_t bytes = BlockBytes(vertexCapacity, triangleCapacity);
  if (bytes > std::numeric_limits<size_t>::max()) return nullptr;
  HGLOBAL mesh = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, static_cast<size_t>(bytes));
  if (!mesh) return nullptr;
  auto* model = static_cast<MeshModel*>(GlobalLock(mesh));
  const bool usable = model && !IsBadWritePtr(model, static_cast<UINT_PTR>(bytes));
  if (usable) {
    model->tag = kMeshTag;
    model->selfHandle = mesh;
    model->vertexCapacity = vertexCapacity;
    model->triangleCapacity = triangleCapacity;
    model->scale = kInitialScale;
    for (std::uint32_t level = 0; level < 256; ++level) model->shadeTable[level] = level * 0x10101;
  }
  if (model) GlobalUnlock(mesh);
  return usable ? mesh : GlobalFree(mesh);
}

BOOL meshDestroy(HGLOBAL mesh) {
  MeshModel* model = nullptr;
  if (!meshLock(mesh, &model, nullptr, nullptr)) return FALSE;
  const bool writable = !IsBadWritePtr(model, sizeof(*model));
  if (writable) model->tag = 0;
  GlobalUnlock(mesh);
  if (writable) GlobalFree(mesh);
  return writable;
}

BOOL meshLock(HGLOBAL mesh, MeshModel** model, MeshVertex** vertices, MeshTriangle** triangles) {
  if (!mesh || IsBadWritePtr(model, sizeof(*model))) return FALSE;
  auto* locked = static_cast<MeshModel*>(GlobalLock(mesh));
  if (!locked) return FALSE;
  if (!IsLiveModel(mesh, locked)) {
    GlobalUnlock(mesh);
    return FALSE;
  }
  *model = locked;
  StoreIfWritable(vertices, VerticesOf(locked));
  StoreIfWritable(triangles, TrianglesOf(locked));
  return TRUE;
}

BOOL meshUnlock(MeshModel* model) {
  if (IsBadWritePtr(model, kUnlockProbe) || model->tag != kMeshTag) return FALSE;
  GlobalUnlock(model->selfHandle);
  return TRUE;
}

BOOL meshSetView(HGLOBAL mesh, double factor1, double factor2, double angleA, double angleB, double angleC,
                 std::uint8_t flags) {
  MeshModel* model = nullptr;
  if (!meshLock(mesh, &model, nullptr, nullptr)) return FALSE;
  model->scale = factor1 * factor2;
  if (flags & kMeshSetAngleA) model->angleA = NewAngle(model->angleA, angleA);
  if (flags & kMeshSetAngleB) model->angleB = NewAngle(model->angleB, angleB);
  if (flags & kMeshSetAngleC) model->angleC = NewAngle(model->angleC, angleC);
  meshUnlock(model);
  return TRUE;
}

BOOL meshGetAngles(HGLOBAL mesh, double* angleA, double* angleB, double* angleC) {
  MeshModel* model = nullptr;
  if (!meshLock(mesh, &model, nullptr, nullptr)) return FALSE;
  StoreIfWritable<double>(angleA, model->angleA);
  StoreIfWritable<double>(angleB, model->angleB);
  StoreIfWritable<double>(angleC, model->angleC);
  meshUnlock(model);
  return TRUE;
}

BOOL meshProject(HGLOBAL mesh) {
  MeshModel* model = nullptr;
  MeshVertex* vertices = nullptr;
  MeshTriangle* triangles = nullptr;
  if (!meshLock(mesh, &model, &vertices, &triangles)) return FALSE;
  const std::span usedTriangles(triangles, CountInUse(model->triangleCount, model->triangleCapacity));
  ProjectVertices(*model, {vertices, CountInUse(model->vertexCount, model->vertexCapacity)});
  MeasureDepths({vertices, model->vertexCapacity}, usedTriangles);
  SortByDepth(usedTriangles);
  meshUnlock(model);
  return TRUE;
}

BOOL meshRotateShades(MeshVertex* vertices, int start, int length, int shift) {
  if (length < 0 || start < -1) return FALSE;
  const std::int64_t bytes = (std::int64_t{start} + 1 + length) * static_cast<std::int64_t>(sizeof(MeshVertex));
  if (bytes > std::numeric_limits<std::int32_t>::max() || IsBadWritePtr(vertices, static_cast<UINT_PTR>(bytes))) {
    return FALSE;
  }
  if (length < 2) return TRUE;

  // Three reversals rotate a ring back by `step` positions in place; one position forward is length - 1 back.
  const int step = shift < 0 ? length - 1 : std::max(1, std::min(shift, length / 2 - 1));
  MeshVertex* ring = vertices + (start + 1);
  ReverseShades(ring, 0, step);
  ReverseShades(ring, step, length);
  ReverseShades(ring, 0, length);
  return TRUE;
}

}  // namespace kv
