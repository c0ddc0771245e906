// Measures meshProject for several numbers of triangles, with depths that are random, equal, rising, falling, or in the
// order of the previous frame. Required: 100,000 triangles in at most 10 ms.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <random>

#include "camera/ports.h"
#include "kv/views3d/mesh_model.h"

namespace {

constexpr int kRounds = 9;

enum class Order { kRandom, kEqual, kRising, kFalling };

// Triangles that share no vertices; each has one depth.
void Fill(HGLOBAL mesh, std::uint32_t count, Order order) {
  kv::MeshModel* model = nullptr;
  kv::MeshVertex* vertices = nullptr;
  kv::MeshTriangle* triangles = nullptr;
  if (!kv::meshLock(mesh, &model, &vertices, &triangles)) return;
  std::mt19937 random(1);
  std::uniform_real_distribution<double> anywhere(-300, 300);
  for (std::uint32_t i = 0; i < count; ++i) {
    const double rising = 600.0 * i / count - 300;
    const double depth = order == Order::kRandom    ? anywhere(random)
                         : order == Order::kRising  ? rising
                         : order == Order::kFalling ? -rising
                                                    : 0.0;
    for (std::uint32_t corner = 0; corner < 3; ++corner) {
      vertices[i * 3 + corner] = {.x = anywhere(random), .y = depth, .z = anywhere(random)};
    }
    triangles[i] = {.vertices = {i * 3, i * 3 + 1, i * 3 + 2}};
  }
  model->vertexCount = static_cast<std::int32_t>(count * 3);
  model->triangleCount = static_cast<std::int32_t>(count);
  kv::meshUnlock(model);
}

double ProjectMs(HGLOBAL mesh) {
  const double start = camera::Now();
  kv::meshProject(mesh);
  return (camera::Now() - start) * 1000;
}

// The median of several rounds, each with newly filled triangles; or of a rotating model, where each frame starts with
// the order of the previous one.
double MedianMs(HGLOBAL mesh, std::uint32_t count, Order order, bool turns = false) {
  double rounds[kRounds];
  int degrees = 0;
  for (double& round : rounds) {
    if (!turns || degrees == 0) Fill(mesh, count, order);
    if (turns && degrees == 0) kv::meshProject(mesh);
    if (turns) kv::meshSetView(mesh, 1, 1, ++degrees, 0, 0, kv::kMeshSetAngleA);
    round = ProjectMs(mesh);
  }
  std::sort(rounds, rounds + kRounds);
  return rounds[kRounds / 2];
}

}  // namespace

int main() {
  std::printf("meshProject, milliseconds (median of %d)\n", kRounds);
  std::printf("%10s %9s %9s %9s %9s %13s\n", "triangles", "random", "equal", "rising", "falling", "turning 1 deg");
  for (const std::uint32_t count : {1000u, 10000u, 100000u}) {
    HGLOBAL mesh = kv::meshCreate(count * 3, count);
    if (!mesh) return 1;
    std::printf("%10u %9.3f %9.3f %9.3f %9.3f %13.3f\n", count, MedianMs(mesh, count, Order::kRandom),
                MedianMs(mesh, count, Order::kEqual), MedianMs(mesh, count, Order::kRising),
                MedianMs(mesh, count, Order::kFalling), MedianMs(mesh, count, Order::kRandom, true));
    kv::meshDestroy(mesh);
  }
  return 0;
}
