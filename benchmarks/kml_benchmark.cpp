// Measures the export of a long track against a plain loop of the C runtime's formatted output that writes the same
// bytes. Exits with 1 when a byte differs or the export is not at least three times as fast.
//
//   benchmarks/run kml_benchmark [POINTS]     by default 1000000
#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "camera/ports.h"
#include "kv/export/flight_track.h"
#include "kv/export/kml_export.h"

// MinGW has two families of formatted output; Visual Studio only has the runtime's.
#ifdef __MINGW32__
#define RUNTIME_FWPRINTF __ms_fwprintf
#else
#define RUNTIME_FWPRINTF fwprintf
#endif

namespace {

constexpr double kRequiredRatio = 3;
constexpr int kRepetitions = 3;

// A flight of many circles that climbs and sinks: by the smallest difference of doubles at each point, only at every
// 20th point, or in steps of 5 cm, where half of the altitudes are exactly in the middle between two texts.
enum class Altitudes { kSmooth, kEach20th, kSteps };

double AltitudeOf(size_t point, Altitudes altitudes) {
  const size_t moment = altitudes == Altitudes::kEach20th ? point / 20 : point;
  const double altitude = 120 + 80 * std::sin(static_cast<double>(moment) * 0.00037);
  if (altitudes != Altitudes::kSteps) return altitude;
  return std::round(altitude * 20 + static_cast<double>(point % 3)) / 20;
}

std::vector<kv::FlightTrackPoint> MakeFlight(size_t count, Altitudes altitudes) {
  std::vector<kv::FlightTrackPoint> points(count);
  for (size_t i = 0; i < count; ++i) {
    const double angle = static_cast<double>(i) * 0.001;
    points[i].dX = 900 * std::cos(angle) + 0.01 * static_cast<double>(i);
    points[i].dY = 700 * std::sin(angle * 1.01);
    points[i].dAltitude = AltitudeOf(i, altitudes);
    points[i].bKind = kv::kPointLocal;
  }
  return points;
}

void WriteWithRuntime(const wchar_t* path, const kv::FlightTrack& track,
                      const std::vector<kv::FlightTrackPoint>& points) {
  using kv::KmlTemplate;
  using kv::KmlTemplateText;
  FILE* file = _wfopen(path, L"w");
  const kv::LocalFrame frame = kv::LocalFrameOf(track);
  kv::GeodeticPosition previous = kv::PositionFromLocal(frame, points[0].dX, points[0].dY);
  double altitude = points[0].dAltitude;
  RUNTIME_FWPRINTF(file, KmlTemplateText(KmlTemplate::kHeader), previous.longitude, previous.latitude, 0.0, 0.0, 0.0,
                   0.0);
  RUNTIME_FWPRINTF(file, KmlTemplateText(KmlTemplate::kTrackHead), 0xFF00FF00ul, 5l, 0xC02FFF2Ful, 0l, 1l);
  const wchar_t* line = L"    %.10f,%.10f,%.1f\n";
  for (const auto& point : points) {
    const kv::GeodeticPosition at = kv::PositionFromLocal(frame, point.dX, point.dY);
    if (point.dAltitude != altitude) {
      altitude = point.dAltitude;
      RUNTIME_FWPRINTF(file, line, previous.longitude, previous.latitude, altitude);
    }
    RUNTIME_FWPRINTF(file, line, at.longitude, at.latitude, altitude);
    previous = at;
  }
  RUNTIME_FWPRINTF(file, KmlTemplateText(KmlTemplate::kTrackTail));
  RUNTIME_FWPRINTF(file, KmlTemplateText(KmlTemplate::kFooter));
  fclose(file);
}

std::string Contents(const wchar_t* path) {
  std::string text;
  FILE* file = _wfopen(path, L"rb");
  fseek(file, 0, SEEK_END);
  text.resize(static_cast<size_t>(ftell(file)));
  fseek(file, 0, SEEK_SET);
  text.resize(fread(text.data(), 1, text.size(), file));
  fclose(file);
  return text;
}

// The shortest of a few runs, which other load on the machine affects least.
template <class Action>
double BestSeconds(Action action) {
  double best = HUGE_VAL;
  for (int i = 0; i < kRepetitions; ++i) {
    const double start = camera::Now();
    action();
    best = std::min(best, camera::Now() - start);
  }
  return best;
}

bool CompareExport(const char* name, size_t count, Altitudes altitudes) {
  std::vector<kv::FlightTrackPoint> points = MakeFlight(count, altitudes);
  kv::FlightTrack track{};
  track.nPoints = static_cast<LONG>(count);
  track.dReferenceLatitude = 47.3;
  track.dReferenceLongitude = 8.5;
  track.lpPoints = points.data();

  constexpr wchar_t ours[] = L"kvBenchOurs.kml", theirs[] = L"kvBenchPlain.kml";
  const double ourTime = BestSeconds([&] { kv::WriteTrackKml(ours, track, points, kv::KmlSettings{}); });
  const double plainTime = BestSeconds([&] { WriteWithRuntime(theirs, track, points); });
  const std::string text = Contents(ours);
  const bool same = text == Contents(theirs);

  DeleteFileW(ours);
  DeleteFileW(theirs);

  const double ratio = plainTime / ourTime;
  printf("%-28s %zu points, %.1f MB: export %.3f s, plain fwprintf %.3f s, ratio %.1f, bytes %s\n", name, count,
         static_cast<double>(text.size()) / 1e6, ourTime, plainTime, ratio, same ? "equal" : "DIFFER");
  return same && ratio >= kRequiredRatio;
}

}  // namespace

int main(int argc, char** argv) {
  wchar_t folder[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  SetCurrentDirectoryW(folder);
  const int count = argc > 1 ? std::atoi(argv[1]) : 1000000;
  bool good = CompareExport("altitudes smooth", static_cast<size_t>(count), Altitudes::kSmooth);
  good &= CompareExport("altitude changes each 20th", static_cast<size_t>(count), Altitudes::kEach20th);
  good &= CompareExport("altitudes in 5 cm steps", static_cast<size_t>(count), Altitudes::kSteps);
  return good ? 0 : 1;
}
