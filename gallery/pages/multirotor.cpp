#include "gallery/pages/multirotor.h"

#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "framework/numbers.h"
#include "views3d/mesh_model.h"

namespace gallery {

namespace {

constexpr std::uint32_t kVertexRoom = 6000, kTriangleRoom = 10000;
constexpr double kRotorReach = 158;  // from the middle to a motor
constexpr double kRotorRadius = 92;
constexpr double kGroundLevel = -120;
constexpr int kTurnSteps = 5;  // ring places a picture

constexpr std::uint32_t kHull = 0x46505E | kPartShiny, kCanopy = 0x24508C | kPartShiny;
constexpr std::uint32_t kFrontArm = 0xF07820 | kPartShiny, kRearArm = 0x9AA4B2 | kPartShiny;
constexpr std::uint32_t kMotor = 0x2C323A | kPartShiny, kSkid = 0x707A86, kLens = 0x101418 | kPartShiny;
constexpr std::uint32_t kFrontLamp = 0xF4FFF0, kRearLamp = 0xFF3030;

struct Vector {
  double x, y, z;
};

Vector operator+(const Vector& a, const Vector& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Vector operator-(const Vector& a, const Vector& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Vector operator*(const Vector& a, double factor) {
  return {a.x * factor, a.y * factor, a.z * factor};
}
double Length(const Vector& a) {
  return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
}
Vector Cross(const Vector& a, const Vector& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Vector Unit(const Vector& a) {
  return a * (1 / Length(a));
}

// A locked model that is being filled. What does not fit is left out.
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

// A body of revolution around the line from `base` in direction `axis` (of length 1), faces outward. Profiles that
// begin and end with radius 0 are closed. Small triangles: the depth order is by triangle.
void AddTurned(Builder* to, const Vector& base, const Vector& axis, std::span<const ProfilePoint> profile, int around,
               std::uint32_t attributes, const Vector& stretch = {1, 1, 1}) {
  const Vector side = Unit(Cross(axis, std::fabs(axis.z) < 0.9 ? Vector{0, 0, 1} : Vector{1, 0, 0}));
  const Vector other = Cross(axis, side);
  const auto first = static_cast<std::uint32_t>(to->model->vertexCount);
  for (const ProfilePoint& point : profile) {
    for (int i = 0; i < around; ++i) {
      const double angle = 2 * kv::kPi * i / around;
      const Vector offset =
          side * (std::cos(angle) * point.radius) + other * (std::sin(angle) * point.radius) + axis * point.along;
      AddVertex(to, base + Vector{offset.x * stretch.x, offset.y * stretch.y, offset.z * stretch.z});
    }
  }
  const auto ring = static_cast<std::uint32_t>(around);
  for (std::uint32_t row = 0; row + 1 < profile.size(); ++row) {
    for (std::uint32_t i = 0; i < ring; ++i) {
      const std::uint32_t a = first + row * ring + i, b = first + row * ring + (i + 1) % ring;
      AddTriangle(to, a, b, b + ring, attributes);
      AddTriangle(to, a, b + ring, a + ring, attributes);
    }
  }
}

void AddBall(Builder* to, const Vector& middle, double radius, std::uint32_t attributes,
             const Vector& stretch = {1, 1, 1}, int steps = 10) {
  std::vector<ProfilePoint> profile;
  for (int i = 0; i <= steps; ++i) {
    const double angle = kv::kPi * i / steps;
    profile.push_back({radius * std::sin(angle), -radius * std::cos(angle)});
  }
  AddTurned(to, middle, {0, 0, 1}, profile, steps * 2, attributes, stretch);
}

void AddTube(Builder* to, const Vector& from, const Vector& end, double radius, std::uint32_t attributes,
             int pieces = 8) {
  const double length = Length(end - from);
  std::vector<ProfilePoint> profile = {{0, 0}};
  for (int i = 0; i <= pieces; ++i) profile.push_back({radius, length * i / pieces});
  profile.push_back({0, length});
  AddTurned(to, from, Unit(end - from), profile, 10, attributes);
}

// Hull and canopy meet in a ring and do not cross: what crosses cannot be sorted by depth.
void AddHull(Builder* to) {
  constexpr Vector kStretch{1, 1.35, 1};
  constexpr int kAround = 40;
  const ProfilePoint hull[] = {{0, -26}, {16, -25}, {32, -22}, {46, -15}, {55, -7},
                               {58, 0},  {55, 8},   {49, 15},  {42, 19},  {36, 21}};
  const ProfilePoint canopy[] = {{36, 21}, {34, 26}, {30, 31}, {24, 35}, {16, 38}, {8, 39.5}, {0, 40}};
  AddTurned(to, {0, 0, 0}, {0, 0, 1}, hull, kAround, kHull, kStretch);
  AddTurned(to, {0, 0, 0}, {0, 0, 1}, canopy, kAround, kCanopy, kStretch);
}

// A disc whose ring carries two bright blades, each with a tail that fades: shifting the shades makes it turn.
int AddRotor(Builder* to, const Vector& middle, bool backwards) {
  const std::uint32_t hub = AddVertex(to, middle);
  for (int i = 0; i < kRotorRing; ++i) {
    const double angle = 2 * kv::kPi * i / kRotorRing;
    const int behindBlade = (backwards ? kRotorRing - i : i) % (kRotorRing / 2);
    const auto shade = static_cast<std::uint8_t>(36 + 200 * std::exp(-behindBlade / 3.5));
    AddVertex(to, middle + Vector{std::cos(angle), std::sin(angle), 0} * kRotorRadius, shade);
  }
  for (std::uint32_t i = 0; i < kRotorRing; ++i) {
    AddTriangle(to, hub, hub + 1 + i, hub + 1 + (i + 1) % kRotorRing, kPartGlass);
  }
  return static_cast<int>(hub);
}

int AddArm(Builder* to, double degrees, std::uint32_t color, std::uint32_t lamp, bool backwards) {
  const Vector direction{std::cos(kv::Radians(degrees)), std::sin(kv::Radians(degrees)), 0};
  const Vector end = direction * kRotorReach;
  AddTube(to, direction * 61, end, 7.5, color, 8);  // from the hull's rim
  const ProfilePoint motor[] = {{0, -16}, {14, -14}, {16, -8}, {16, 8}, {14, 13}, {5, 14}, {5, 22}, {0, 23}};
  AddTurned(to, end, {0, 0, 1}, motor, 18, kMotor);
  AddBall(to, end + direction * 17 + Vector{0, 0, -2}, 5, lamp, {1, 1, 1}, 6);
  return AddRotor(to, end + Vector{0, 0, 20}, backwards);
}

void AddSkid(Builder* to, double x) {
  const double level = -62;
  for (const double y : {-34.0, 34.0}) AddTube(to, {x * 0.5, y * 0.8, -14}, {x, y, level}, 3.2, kSkid, 5);
  AddTube(to, {x, -72, level}, {x, 72, level}, 4, kSkid, 12);
}

bool StartBuilding(HGLOBAL mesh, Builder* builder) {
  return kv::meshLock(mesh, &builder->model, &builder->vertices, &builder->triangles);
}

// A flat ring of the ground, faces upward.
void AddGroundRing(Builder* to, double inner, double outer, std::uint8_t shade) {
  constexpr std::uint32_t kAround = 72;
  const auto first = static_cast<std::uint32_t>(to->model->vertexCount);
  for (std::uint32_t i = 0; i < kAround; ++i) {
    const double angle = 2 * kv::kPi * i / kAround;
    const Vector direction{std::cos(angle), std::sin(angle), 0};
    AddVertex(to, direction * inner + Vector{0, 0, kGroundLevel}, shade);
    AddVertex(to, direction * outer + Vector{0, 0, kGroundLevel}, shade);
  }
  for (std::uint32_t i = 0; i < kAround; ++i) {
    const std::uint32_t a = first + i * 2, b = first + (i + 1) % kAround * 2;
    AddTriangle(to, a, a + 1, b + 1, kPartGlass);
    AddTriangle(to, a, b + 1, b, kPartGlass);
  }
}

void AddGroundLine(Builder* to, double degrees, double length, std::uint8_t shade) {
  const Vector along{std::cos(kv::Radians(degrees)), std::sin(kv::Radians(degrees)), 0};
  const Vector across = Vector{-along.y, along.x, 0} * 1.2;
  const Vector base{0, 0, kGroundLevel};
  const std::uint32_t a = AddVertex(to, base + along * length + across, shade);
  const std::uint32_t b = AddVertex(to, base + along * length - across, shade);
  const std::uint32_t c = AddVertex(to, base - along * length - across, shade);
  const std::uint32_t d = AddVertex(to, base - along * length + across, shade);
  AddTriangle(to, a, b, c, kPartGlass);
  AddTriangle(to, a, c, d, kPartGlass);
}

}  // namespace

Multirotor CreateMultirotor() {
  Multirotor craft{.mesh = kv::meshCreate(kVertexRoom, kTriangleRoom)};
  Builder builder{};
  if (!StartBuilding(craft.mesh, &builder)) return craft;
  AddHull(&builder);
  AddBall(&builder, {0, 66, -26}, 15, kHull, {1, 1, 1}, 10);
  AddTube(&builder, {0, 74, -27}, {0, 84, -28}, 8, kLens, 2);
  craft.hubs[0] = AddArm(&builder, 45, kFrontArm, kFrontLamp, false);
  craft.hubs[1] = AddArm(&builder, 135, kFrontArm, kFrontLamp, true);
  craft.hubs[2] = AddArm(&builder, 225, kRearArm, kRearLamp, false);
  craft.hubs[3] = AddArm(&builder, 315, kRearArm, kRearLamp, true);
  AddSkid(&builder, -52);
  AddSkid(&builder, 52);
  kv::meshUnlock(builder.model);
  return craft;
}

HGLOBAL CreateGround() {
  HGLOBAL mesh = kv::meshCreate(2000, 3000);
  Builder builder{};
  if (!StartBuilding(mesh, &builder)) return mesh;
  for (const double radius : {90.0, 180.0, 270.0, 360.0}) AddGroundRing(&builder, radius - 1, radius + 1, 70);
  for (int degrees = 0; degrees < 180; degrees += 30) AddGroundLine(&builder, degrees, 360, 46);
  kv::meshUnlock(builder.model);
  return mesh;
}

void TurnRotors(const Multirotor& craft) {
  Builder builder{};
  if (!StartBuilding(craft.mesh, &builder)) return;
  for (int i = 0; i < kRotors; ++i) {
    // Backwards a ring goes one place at a time only.
    if (i % 2 == 0) {
      kv::meshRotateShades(builder.vertices, craft.hubs[i], kRotorRing, kTurnSteps);
    } else {
      for (int step = 0; step < kTurnSteps; ++step) {
        kv::meshRotateShades(builder.vertices, craft.hubs[i], kRotorRing, -1);
      }
    }
  }
  kv::meshUnlock(builder.model);
}

}  // namespace gallery
