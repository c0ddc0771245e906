#include "gallery/pages/multirotor.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "kv/framework/numbers.h"
#include "kv/views3d/mesh_model.h"

namespace gallery {

namespace {

constexpr std::uint32_t kVertexCapacity = 6000, kTriangleCapacity = 10000;
constexpr double kRotorReach = 158;  // from the center to a motor
constexpr double kRotorRadius = 92;
constexpr double kGroundLevel = -120;
constexpr std::uint8_t kRingShade = 70, kLineShade = 46;
constexpr Vector kUp{0, 0, 1};
constexpr int kTurnSteps = 5;  // ring positions per frame

constexpr std::uint32_t kHull = 0x46505E | kPartShiny, kCanopy = 0x24508C | kPartShiny;
constexpr std::uint32_t kFrontArm = 0xF07820 | kPartShiny, kRearArm = 0x9AA4B2 | kPartShiny;
constexpr std::uint32_t kMotor = 0x2C323A | kPartShiny, kSkid = 0x707A86, kLens = 0x101418 | kPartShiny;
constexpr std::uint32_t kFrontLamp = 0xF4FFF0, kRearLamp = 0xFF3030;

// A horizontal unit vector.
Vector Direction(double degrees) {
  return {std::cos(kv::Radians(degrees)), std::sin(kv::Radians(degrees)), 0};
}

// A locked model while it is filled. Parts that exceed its capacity are omitted.
struct Builder {
  kv::MeshModel* model;
  kv::MeshVertex* vertices;
  kv::MeshTriangle* triangles;
};

std::uint32_t AddVertex(Builder* to, const Vector& place, std::uint8_t shade = 0) {
  if (static_cast<std::uint32_t>(to->model->vertexCount) >= to->model->vertexCapacity) return 0;
  const auto index = static_cast<std::uint32_t>(to->model->vertexCount++);
  to->vertices[index] = {.x = place.x, .y = place.y, .z = place.z, .shade = shade};
  return index;
}

void AddTriangle(Builder* to, std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t attributes) {
  if (static_cast<std::uint32_t>(to->model->triangleCount) >= to->model->triangleCapacity) return;
  to->triangles[to->model->triangleCount++] = {.attributes = attributes, .vertices = {a, b, c}};
}

struct ProfilePoint {
  double radius, along;
};

// Adds a body of revolution around the line from `base` in direction `axis` (of length 1), facing outward. Profiles
// that begin and end with radius 0 are closed. The triangles are small, because depth is sorted by triangle.
void AddTurned(Builder* to, const Vector& base, const Vector& axis, std::span<const ProfilePoint> profile,
               std::uint32_t around, std::uint32_t attributes, std::uint8_t shade = 0, double stretchForward = 1) {
  const Vector side = Unit(Cross(axis, std::fabs(axis.z) < 0.9 ? Vector{0, 0, 1} : Vector{1, 0, 0}));
  const Vector other = Cross(axis, side);
  auto first = static_cast<std::uint32_t>(to->model->vertexCount);
  for (const ProfilePoint& point : profile) {
    for (std::uint32_t i = 0; i < around; ++i) {
      const Vector turn = Direction(360.0 * i / around) * point.radius;
      Vector offset = side * turn.x + other * turn.y + axis * point.along;
      offset.y *= stretchForward;
      AddVertex(to, base + offset, shade);
    }
  }
  for (size_t row = 1; row < profile.size(); ++row, first += around) {
    for (std::uint32_t i = 0; i < around; ++i) {
      const std::uint32_t a = first + i, b = first + (i + 1) % around;
      AddTriangle(to, a, b, b + around, attributes);
      AddTriangle(to, a, b + around, a + around, attributes);
    }
  }
}

void AddBall(Builder* to, const Vector& middle, double radius, std::uint32_t attributes, std::uint32_t steps) {
  std::vector<ProfilePoint> profile;
  for (std::uint32_t i = 0; i <= steps; ++i) {
    const Vector turn = Direction(180.0 * i / steps) * radius;
    profile.push_back({turn.y, -turn.x});
  }
  AddTurned(to, middle, kUp, profile, steps * 2, attributes);
}

void AddTube(Builder* to, const Vector& from, const Vector& end, double radius, std::uint32_t attributes, int pieces) {
  const double length = Length(end - from);
  std::vector<ProfilePoint> profile = {{0, 0}};
  for (int i = 0; i <= pieces; ++i) profile.push_back({radius, length * i / pieces});
  profile.push_back({0, length});
  AddTurned(to, from, Unit(end - from), profile, 10, attributes);
}

// Adds a disc whose ring has two bright blades with fading tails: rotating the shades makes it spin.
int AddRotor(Builder* to, const Vector& middle, bool backwards) {
  const std::uint32_t hub = AddVertex(to, middle);
  for (int i = 0; i < kRotorRing; ++i) {
    const int behindBlade = (backwards ? kRotorRing - i : i) % (kRotorRing / 2);
    const auto shade = static_cast<std::uint8_t>(36 + 200 * std::exp(-behindBlade / 3.5));
    AddVertex(to, middle + Direction(360.0 * i / kRotorRing) * kRotorRadius, shade);
  }
  for (std::uint32_t i = 0; i < kRotorRing; ++i) {
    AddTriangle(to, hub, hub + 1 + i, hub + 1 + (i + 1) % kRotorRing, kPartGlass);
  }
  return static_cast<int>(hub);
}

int AddArm(Builder* to, double degrees, std::uint32_t color, std::uint32_t lamp, bool backwards) {
  constexpr ProfilePoint kProfile[] = {{0, -16}, {14, -14}, {16, -8}, {16, 8}, {14, 13}, {5, 14}, {5, 22}, {0, 23}};
  const Vector direction = Direction(degrees), end = direction * kRotorReach;
  AddTube(to, direction * 61, end, 7.5, color, 8);  // from the hull's rim
  AddTurned(to, end, kUp, kProfile, 18, kMotor);
  AddBall(to, end + direction * 17 + kUp * -2, 5, lamp, 6);
  return AddRotor(to, end + kUp * 20, backwards);
}

void AddGroundLine(Builder* to, double degrees) {
  const Vector along = Direction(degrees) * 360, across = Direction(degrees + 90) * 1.2, middle = kUp * kGroundLevel;
  const auto first = AddVertex(to, middle + along + across, kLineShade);
  AddVertex(to, middle + along - across, kLineShade);
  AddVertex(to, middle - along - across, kLineShade);
  AddVertex(to, middle - along + across, kLineShade);
  AddTriangle(to, first, first + 1, first + 2, kPartGlass);
  AddTriangle(to, first, first + 2, first + 3, kPartGlass);
}

bool StartBuilding(HGLOBAL mesh, Builder* builder) {
  return kv::meshLock(mesh, &builder->model, &builder->vertices, &builder->triangles);
}

}  // namespace

Multirotor CreateMultirotor() {
  Multirotor craft{.mesh = kv::meshCreate(kVertexCapacity, kTriangleCapacity)};
  Builder builder{};
  if (!StartBuilding(craft.mesh, &builder)) return craft;
  // Hull and canopy meet in a ring: intersecting triangles cannot be sorted by depth.
  constexpr ProfilePoint kHullProfile[] = {{0, -26}, {16, -25}, {32, -22}, {46, -15}, {55, -7},
                                           {58, 0},  {55, 8},   {49, 15},  {42, 19},  {36, 21}};
  constexpr ProfilePoint kCanopyProfile[] = {{36, 21}, {34, 26}, {30, 31}, {24, 35}, {16, 38}, {8, 39.5}, {0, 40}};
  AddTurned(&builder, {}, kUp, kHullProfile, 40, kHull, 0, 1.35);
  AddTurned(&builder, {}, kUp, kCanopyProfile, 40, kCanopy, 0, 1.35);
  AddBall(&builder, {0, 66, -26}, 15, kHull, 10);
  AddTube(&builder, {0, 74, -27}, {0, 84, -28}, 8, kLens, 2);
  for (int i = 0; i < kRotors; ++i) {
    const bool isFront = i < 2;
    craft.hubs[i] =
        AddArm(&builder, 45 + 90 * i, isFront ? kFrontArm : kRearArm, isFront ? kFrontLamp : kRearLamp, i % 2);
  }
  for (const double x : {-52.0, 52.0}) {
    for (const double y : {-34.0, 34.0}) AddTube(&builder, {x * 0.5, y * 0.8, -14}, {x, y, -62}, 3.2, kSkid, 5);
    AddTube(&builder, {x, -72, -62}, {x, 72, -62}, 4, kSkid, 12);
  }
  kv::meshUnlock(builder.model);
  return craft;
}

HGLOBAL CreateGround() {
  HGLOBAL mesh = kv::meshCreate(2000, 3000);
  Builder builder{};
  if (!StartBuilding(mesh, &builder)) return mesh;
  for (const double radius : {90.0, 180.0, 270.0, 360.0}) {
    const ProfilePoint ring[] = {{radius - 1, 0}, {radius + 1, 0}};
    AddTurned(&builder, kUp * kGroundLevel, kUp, ring, 72, kPartGlass, kRingShade);
  }
  for (int degrees = 0; degrees < 180; degrees += 30) AddGroundLine(&builder, degrees);
  kv::meshUnlock(builder.model);
  return mesh;
}

void TurnRotors(const Multirotor& craft) {
  Builder builder{};
  if (!StartBuilding(craft.mesh, &builder)) return;
  for (int i = 0; i < kRotors; ++i) {
    // Backwards, a ring rotates by one position only.
    const bool backwards = i % 2;
    for (int times = backwards ? kTurnSteps : 1; times > 0; --times) {
      kv::meshRotateShades(builder.vertices, craft.hubs[i], kRotorRing, backwards ? -1 : kTurnSteps);
    }
  }
  kv::meshUnlock(builder.model);
}

}  // namespace gallery
