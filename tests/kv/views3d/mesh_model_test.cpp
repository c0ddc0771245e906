#include "kv/views3d/mesh_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/test_window.h"

namespace kv {
namespace {

UINT LockCount(HGLOBAL memory) {
  return GlobalFlags(memory) & GMEM_LOCKCOUNT;
}

// A model that remains locked during the test. Each depth has one triangle with all three corners at that depth; its
// attribute word is its number.
struct LockedMesh {
  explicit LockedMesh(const std::vector<double>& depths) {
    const auto count = static_cast<std::uint32_t>(depths.size());
    handle = meshCreate(count, count);
    meshLock(handle, &model, &vertices, &triangles);
    model->scale = 1;
    model->vertexCount = model->triangleCount = static_cast<std::int32_t>(count);
    for (std::uint32_t i = 0; i < count; ++i) {
      vertices[i].y = depths[i];
      triangles[i] = {.attributes = i, .vertices = {i, i, i}};
    }
  }
  ~LockedMesh() {
    meshUnlock(model);
    meshDestroy(handle);
  }

  HGLOBAL handle;
  MeshModel* model = nullptr;
  MeshVertex* vertices = nullptr;
  MeshTriangle* triangles = nullptr;
};

using Vector = std::array<double, 3>;

Vector AnglesOf(const LockedMesh& mesh) {
  Vector angles{};
  EXPECT_TRUE(meshGetAngles(mesh.handle, &angles[0], &angles[1], &angles[2]));
  return angles;
}

TEST(MeshModel, IsOneBlockThatStartsEmpty) {
  HGLOBAL handle = meshCreate(3, 2);
  ASSERT_EQ(1144u + 3 * 52 + 2 * 32, GlobalSize(handle));
  MeshModel* model = nullptr;
  MeshVertex* vertices = nullptr;
  MeshTriangle* triangles = nullptr;
  ASSERT_TRUE(meshLock(handle, &model, &vertices, &triangles));
  EXPECT_EQ(1u, LockCount(handle));
  EXPECT_TRUE(model->tag == 0x20070806 && model->selfHandle == handle && model->scale == 3.5);
  EXPECT_TRUE(model->vertexCount == 0 && model->triangleCount == 0 && model->shadeTable[10] == 0x0A0A0A);
  EXPECT_EQ(reinterpret_cast<char*>(model) + 1144, reinterpret_cast<char*>(vertices));
  EXPECT_EQ(vertices + 3, static_cast<void*>(triangles));
  EXPECT_TRUE(meshUnlock(model));
  EXPECT_EQ(0u, LockCount(handle));
  EXPECT_TRUE(meshDestroy(handle));
  EXPECT_EQ(nullptr, meshCreate(82595524, 1));  // slightly more than 2^32 bytes
}

TEST(MeshModel, DestroyedNullAndForeignHandlesAreRejected) {
  HGLOBAL destroyed = meshCreate(1, 1);
  ASSERT_TRUE(meshDestroy(destroyed));
  HGLOBAL untagged = GlobalAlloc(GHND, 4096);
  HGLOBAL small = GlobalAlloc(GHND, 4);  // smaller than a header, although it has the tag
  *static_cast<std::uint32_t*>(GlobalLock(small)) = kMeshTag;
  GlobalUnlock(small);
  // The handle of a fixed block is its address. This one has the tag, but ends within a header.
  kvtest::GuardedBytes fixed(8);
  *fixed.as<std::uint32_t>() = kMeshTag;
  for (HGLOBAL handle : {destroyed, untagged, small, HGLOBAL{fixed.data()}, HGLOBAL{nullptr}}) {
    MeshModel* model = nullptr;
    double angle = 7;
    EXPECT_FALSE(meshLock(handle, &model, nullptr, nullptr) || model);
    EXPECT_FALSE(meshSetView(handle, 1, 1, 0, 0, 0, 7) || meshGetAngles(handle, &angle, &angle, &angle));
    EXPECT_EQ(7, angle);
    EXPECT_FALSE(meshProject(handle) || meshDestroy(handle));
  }
  EXPECT_EQ(0u, LockCount(untagged) + LockCount(small));
  GlobalFree(untagged);
  GlobalFree(small);
}

TEST(MeshModel, BadPointersAreRejectedOrSkipped) {
  HGLOBAL handle = meshCreate(1, 1);
  kvtest::GuardedBytes tooSmall(3), readOnly(sizeof(double));
  readOnly.MakeReadOnly();
  MeshModel* model = nullptr;
  EXPECT_FALSE(meshLock(handle, nullptr, nullptr, nullptr));
  EXPECT_FALSE(meshLock(handle, tooSmall.as<MeshModel*>(), nullptr, nullptr));
  EXPECT_EQ(0u, LockCount(handle));
  ASSERT_TRUE(meshLock(handle, &model, readOnly.as<MeshVertex*>(), tooSmall.as<MeshTriangle*>()));
  model->angleB = 12;
  double angle = 0;
  EXPECT_TRUE(meshGetAngles(handle, readOnly.as<double>(), &angle, nullptr));
  EXPECT_EQ(12, angle);
  meshUnlock(model);
  EXPECT_TRUE(meshDestroy(handle));

  HGLOBAL large = meshCreate(100000, 0);  // large enough to be allocated on separate pages
  ASSERT_TRUE(meshLock(large, &model, nullptr, nullptr));
  meshUnlock(model);
  DWORD protection = 0;
  VirtualProtect(model, 1, PAGE_READONLY, &protection);
  EXPECT_FALSE(meshDestroy(large));
  VirtualProtect(model, 1, protection, &protection);
  EXPECT_EQ(0u, LockCount(large));
  EXPECT_TRUE(meshDestroy(large));
}

// The end of a block cannot be determined from its header.
TEST(MeshModel, UnlockRequiresOneByteAfterTheHeader) {
  HGLOBAL handle = GlobalAlloc(GHND, 8);
  GlobalLock(handle);
  for (size_t size : {1143, 1144, 1145}) {
    kvtest::GuardedBytes bytes(size);
    auto* model = bytes.as<MeshModel>();
    if (size >= 1144) model->selfHandle = handle;
    EXPECT_FALSE(meshUnlock(model));
    model->tag = kMeshTag;
    EXPECT_EQ(size == 1145, meshUnlock(model)) << size;
    EXPECT_EQ(size == 1145 ? 0u : 1u, LockCount(handle));
  }
  GlobalFree(handle);
}

TEST(MeshSetView, NormalizesTheFlaggedAngles) {
  LockedMesh mesh({});
  const std::pair<double, double> cases[] = {{540, 180},      {-540, -180},      {180, 180},        {-180, -180},
                                             {180.5, -179.5}, {-1000.25, 79.75}, {3600000017.0, 17}};
  for (const auto& [given, stored] : cases) {
    ASSERT_TRUE(meshSetView(mesh.handle, 2, 1.25, given, given, given, 7));
    EXPECT_EQ((Vector{stored, stored, stored}), AnglesOf(mesh)) << given;
  }
  for (int flags = 0; flags < 8; ++flags) {
    meshSetView(mesh.handle, 1, 1, 1, 2, 3, 7);
    ASSERT_TRUE(meshSetView(mesh.handle, flags, 0.5, 41, 42, 43, static_cast<std::uint8_t>(flags)));
    EXPECT_EQ((Vector{flags & 1 ? 41.0 : 1, flags & 2 ? 42.0 : 2, flags & 4 ? 43.0 : 3}), AnglesOf(mesh)) << flags;
    EXPECT_EQ(flags * 0.5, mesh.model->scale);
  }
  ASSERT_TRUE(meshSetView(mesh.handle, 1, 1, 1e300, INFINITY, NAN, 7));
  EXPECT_LE(std::fabs(mesh.model->angleA), 180);
  EXPECT_EQ((Vector{mesh.model->angleA, 42, 43}), AnglesOf(mesh));
  EXPECT_EQ(1u, LockCount(mesh.handle));
}

TEST(MeshProject, RotatesXTowardYThenZTowardYThenXTowardZ) {
  LockedMesh mesh({2});
  MeshVertex& vertex = mesh.vertices[0];
  vertex.x = 1;
  vertex.z = 3;
  const double high = std::sqrt(0.75), root = std::sqrt(0.5);
  const std::pair<Vector, Vector> views[] = {{{0, 0, 0}, {1, 2, 3}},
                                             {{90, 0, 0}, {-2, 1, 3}},
                                             {{0, 90, 0}, {1, 3, -2}},
                                             {{0, 0, 90}, {-3, 2, 1}},
                                             {{90, 90, 0}, {-2, 3, -1}},
                                             {{90, 0, 90}, {-3, 1, -2}},
                                             {{0, 90, 90}, {2, 3, 1}},
                                             {{30, 0, 0}, {high - 1, 0.5 + 2 * high, 3}},
                                             {{0, -45, 0}, {1, -root, 5 * root}},
                                             {{0, 0, 135}, {-4 * root, 2, -2 * root}}};
  for (const auto& [angles, turned] : views) {
    SCOPED_TRACE(testing::PrintToString(angles));
    meshSetView(mesh.handle, 2, 1, angles[0], angles[1], angles[2], 7);
    ASSERT_TRUE(meshProject(mesh.handle));
    const double larger = (750 + turned[1]) / 750;
    EXPECT_NEAR(turned[0] * 2 * larger, vertex.projectedX, 1e-9);
    EXPECT_NEAR(turned[1] * 2, vertex.depthY, 1e-9);
    EXPECT_NEAR(turned[2] * 2 * larger, vertex.projectedZ, 1e-9);
  }
}

TEST(MeshProject, SortsFartherTrianglesFirst) {
  LockedMesh mesh({3, -1, 7, 0.5, -9});
  mesh.triangles[0].vertices[1] = 4;  // 3 - 9 + 3
  ASSERT_TRUE(meshProject(mesh.handle));
  const double depths[] = {-27, -3, -3, 1.5, 21};
  for (int i = 0; i < 5; ++i) EXPECT_DOUBLE_EQ(depths[i], mesh.triangles[i].depth);
  EXPECT_EQ(4u, mesh.triangles[0].vertices[2]);  // the whole struct moves
  EXPECT_TRUE(meshProject(LockedMesh({}).handle));
}

// Every difference determines the order, however small; equal depths keep their order, and no triangle is lost.
TEST(MeshProject, DepthsMayBeHugeNearlyEqualOrNotNumbers) {
  std::mt19937 random(9);
  const double special[] = {NAN, INFINITY, -INFINITY, 1e308, -1e308, 1e12, -1e12, 0, -0.0, 5, -5};
  // NaN comes first; the attribute word shows the former order of equal depths.
  const auto isBefore = [](const MeshTriangle& a, const MeshTriangle& b) {
    const bool alike = a.depth == b.depth || (std::isnan(a.depth) && std::isnan(b.depth));
    return alike ? a.attributes < b.attributes : std::isnan(a.depth) || a.depth < b.depth;
  };
  for (int count : {1, 2, 11, 300, 20000}) {
    for (const bool close : {false, true}) {
      std::vector<double> depths(count);
      for (double& depth : depths) depth = close ? random() % 1000 * 0.00002 : special[random() % std::size(special)];
      LockedMesh mesh(depths);
      ASSERT_TRUE(meshProject(mesh.handle));
      std::vector<bool> seen(count);
      for (int i = 0; i < count; ++i) {
        seen[mesh.triangles[i].attributes] = true;
        EXPECT_TRUE(i == 0 || isBefore(mesh.triangles[i - 1], mesh.triangles[i])) << i << " of " << count;
      }
      EXPECT_EQ(count, std::count(seen.begin(), seen.end(), true));
    }
  }
}

TEST(MeshProject, CountsAndIndicesStayInsideTheBlock) {
  LockedMesh mesh({4, 2});
  mesh.triangles[0].vertices[0] = 2;
  mesh.triangles[0].vertices[1] = 0x04000000;
  mesh.model->vertexCount = mesh.model->triangleCount = INT_MAX;
  ASSERT_TRUE(meshProject(mesh.handle));
  EXPECT_DOUBLE_EQ(4, mesh.triangles[0].depth);

  mesh.model->vertexCount = mesh.model->triangleCount = -INT_MAX;
  mesh.vertices[0].y = 100;
  ASSERT_TRUE(meshProject(mesh.handle));
  EXPECT_DOUBLE_EQ(4, mesh.vertices[0].depthY);

  // An overwritten capacity would lead beyond the block.
  mesh.model->vertexCapacity = 1000;
  EXPECT_FALSE(meshProject(mesh.handle));
  mesh.model->vertexCapacity = 2;
}

TEST(MeshRotateShades, ShiftsByTheLimitedStep) {
  const struct {
    int length, shift, step;  // position i gets the shade of position i + step
  } cases[] = {{0, 3, 0},       {1, 3, 0},   {2, 5, 1},   {2, -1, 1},    {3, 5, 1},
               {3, -1, -1},     {6, 5, 2},   {6, 0, 1},   {6, -4, -1},   {6, -INT_MAX, -1},
               {6, INT_MAX, 2}, {7, 100, 2}, {255, 9, 9}, {257, -9, -1}, {1000, 600, 499}};
  const auto shadeBefore = [](int i) { return static_cast<std::uint8_t>(i * 7 + 1); };
  for (const auto& [length, shift, step] : cases) {
    for (int first : {0, 1, 3}) {
      kvtest::GuardedBytes bytes((first + length) * sizeof(MeshVertex));
      auto* vertices = bytes.as<MeshVertex>();
      for (int i = 0; i < first + length; ++i) vertices[i].shade = shadeBefore(i);
      ASSERT_TRUE(meshRotateShades(vertices, first - 1, length, shift));
      for (int i = 0; i < first + length; ++i) {
        const int source = i < first ? i : first + (i - first + step + length) % length;
        EXPECT_EQ(shadeBefore(source), vertices[i].shade) << length << " by " << shift << " at " << i;
      }
    }
  }
}

TEST(MeshRotateShades, RejectsUnwritableMemory) {
  kvtest::GuardedBytes bytes(4 * sizeof(MeshVertex));
  auto* vertices = bytes.as<MeshVertex>();
  vertices[1].shade = 1;
  EXPECT_FALSE(meshRotateShades(nullptr, 0, 4, 1));
  // The second ring's last vertex would be beyond the array.
  const std::pair<int, int> rings[] = {{-1, 5}, {0, 4}, {-2, 3}, {0, -1}, {INT_MAX, INT_MAX}};
  for (const auto& [start, length] : rings) EXPECT_FALSE(meshRotateShades(vertices, start, length, 1)) << start;
  EXPECT_EQ(1, vertices[1].shade);
  bytes.MakeReadOnly();
  EXPECT_FALSE(meshRotateShades(vertices, 0, 3, 1));
}

}  // namespace
}  // namespace kv
