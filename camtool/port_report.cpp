#include "camtool/port_report.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "camera/camera_record.h"
#include "camera/port_scan.h"
#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camera/text.h"

namespace camtool {

namespace {

constexpr size_t kSampleShown = 32;
// A pause that realigns Tarnwick's reader.
constexpr double kRealigningGap = 0.005;
constexpr char kIndent[] = "                      ";

std::string Line(int number, const char* state, const std::string& rest) {
  std::string line = camera::Format("%-7s%-15s", ("COM" + std::to_string(number)).c_str(), state) + rest;
  return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

std::string Rates(const std::vector<int>& rates) {
  std::string text;
  for (size_t i = 0; i < rates.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == rates.size() ? " or " : ", ") + std::to_string(rates[i]);
  }
  return text + " baud";
}

std::string Points(const camera::FoundRecord& record) {
  std::string text;
  for (const kv::CameraPoint& point : record.points) text += camera::Format(" %ld,%ld", point.x, point.y);
  return text;
}

std::string DescribeCamera(const camera::PortReport& report) {
  const camera::RecordStream& stream = report.stream;
  const std::string rate =
      stream.records > 1 ? camera::Format("%.1f records/s", camera::RecordRate(stream)) : std::string("1 record");
  std::string text = Line(report.number, "camera",
                          rate +
                              camera::Format(", %.1f %% well-formed, longest gap %.0f ms, points",
                                             camera::WellFormedShare(stream) * 100, stream.longestGap * 1000) +
                              Points(stream.last));
  if (stream.longestGap < kRealigningGap) {
    text += kIndent + std::string(
                          "never pauses for 5 ms: Tarnwick stays misaligned when it connects in mid-record, and shows "
                          "nothing; disconnect and connect again\n");
  }
  return text;
}

std::string DescribeOther(const camera::PortReport& report) {
  const std::string_view sample = std::string_view(report.sample).substr(0, kSampleShown);
  std::string text = Line(
      report.number, "sending",
      camera::Format("%lld bytes in %.1f s, but no camera records: ", report.stream.bytes, report.listenedSeconds) +
          "\"" + camera::Printable(sample) + "\"" + (report.sample.size() > sample.size() ? "..." : ""));
  if (!report.recordRates.empty()) {
    text += kIndent + ("a camera set to " + Rates(report.recordRates)) +
            ", at which its records make sense: set its board to 38400 baud\n";
  } else if (!report.textRates.empty()) {
    text += kIndent + ("readable text, but no records, at " + Rates(report.textRates)) + "\n";
  } else if (!report.guessedRates.empty()) {
    text += kIndent + ("probably a wrong baud rate: records sent at " + Rates(report.guessedRates)) +
            " would give these bytes\n";
  }
  return text;
}

// Returns the lines for a port that exists.
std::string DescribePort(const camera::PortReport& report) {
  if (!report.isComplete) {
    return Line(report.number, "hangs", "opening it takes longer than the scan; its device does not respond");
  }
  switch (report.port.state) {
    case camera::PortState::kAbsent: return Line(report.number, "absent", "");
    case camera::PortState::kBusy: return Line(report.number, "busy", camera::WhyNotOpened(report.number, report.port));
    case camera::PortState::kAccessDenied:
      return Line(report.number, "access denied", camera::WhyNotOpened(report.number, report.port));
    case camera::PortState::kUnusable:
      return Line(report.number, "unusable", camera::WhyNotOpened(report.number, report.port));
    default: break;
  }
  std::string text;
  if (camera::IsCamera(report)) {
    text = DescribeCamera(report);
  } else if (report.stream.bytes > 0) {
    text = DescribeOther(report);
  } else {
    text =
        Line(report.number, "silent", camera::Format("opens, but no data received in %.1f s", report.listenedSeconds));
  }
  if (report.wasDisconnected) text += kIndent + std::string("was disconnected during the scan\n");
  return text;
}

}  // namespace

std::string DescribePorts(std::span<const camera::PortReport> reports, bool all) {
  std::string text;
  const auto isAbsent = [](const camera::PortReport& report) {
    return report.isComplete && report.port.state == camera::PortState::kAbsent;
  };
  for (size_t i = 0; i < reports.size(); ++i) {
    if (all || !isAbsent(reports[i])) {
      text += DescribePort(reports[i]);
      continue;
    }
    size_t last = i;
    while (last + 1 < reports.size() && isAbsent(reports[last + 1])) ++last;
    text += last == i ? Line(reports[i].number, "absent", "")
                      : camera::Format("COM%d to COM%d  absent\n", reports[i].number, reports[last].number);
    i = last;
  }
  return text;
}

std::string DescribeVerdict(std::span<const camera::PortReport> reports) {
  // Tarnwick reads the ports in this order and selects the first that sends enough bytes, whatever they are.
  double stillSearching = 1, findsCamera = 0;
  const camera::PortReport* likeliest = nullptr;
  double likeliestChance = 0;
  bool isCameraThere = false;
  for (const camera::PortReport& report : reports) {
    isCameraThere |= camera::IsCamera(report);
    const double chance = stillSearching * report.detectionProbability;
    if (camera::IsCamera(report)) findsCamera += chance;
    if (chance > likeliestChance) {
      likeliest = &report;
      likeliestChance = chance;
    }
    stillSearching -= chance;
  }
  if (!likeliest) {
    return isCameraThere ? "Tarnwick would take no port: the camera sends too few bytes without a pause.\n"
                         : "Tarnwick would take no port: none sends what a camera would.\n";
  }
  if (!camera::IsCamera(*likeliest)) {
    return camera::Format("Tarnwick would take COM%d, which is no camera%s\n", likeliest->number,
                          isCameraThere ? ", before it comes to the camera; unplug that device."
                                        : ": it takes the first port that sends.");
  }
  return camera::Format("Tarnwick would take COM%d; one press of its button finds the camera in %.0f of 100 tries%s\n",
                        likeliest->number, findsCamera * 100,
                        findsCamera < 0.995 ? "; press again if it does not." : ".");
}

}  // namespace camtool
