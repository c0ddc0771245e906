// Measures the accuracy of camtool's replay: replays a recording with known pauses into a null-modem pair and compares
// received bytes and pauses. Required: pauses within 2 ms on an idle machine.
//
//   replay_benchmark [SECONDS]      by default 10
#include <windows.h>

#include <timeapi.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "camera/files.h"
#include "camera/ports.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "tests/support/running_program.h"
#include "tests/support/serial_line.h"

namespace {

constexpr int kPort = 3, kFarPort = 4;
constexpr DWORD kQuietMs = 3000;

struct Moment {
  double seconds;
  char byte;
};

// Writes chunks of a few bytes with pauses of 5 to 60 ms to `path`: long enough that the reader does not join two
// chunks.
std::vector<Moment> MakeRecording(const std::string& path, double seconds) {
  std::mt19937 random(1);
  std::vector<Moment> moments;
  std::string file = camera::EncodeHeader({0, 38400, kPort}), error;
  double now = 0.5;
  for (; now < seconds; now += 0.005 + random() % 56 / 1000.0) {
    std::string bytes(1 + random() % 41, '\0');
    for (char& byte : bytes) moments.push_back({now, byte = static_cast<char>(random() >> 24)});
    file += camera::EncodeChunks(static_cast<std::uint64_t>(now * 1e6), bytes);
  }
  camera::OutputFile out;
  if (camera::OpenOutput(path, true, nullptr, &out, &error)) {
    camera::AppendToOutput(&out, file + camera::EncodeEnd(static_cast<std::uint64_t>(now * 1e6)), &error);
    camera::PublishOutput(&out, &error);
  }
  camera::CloseOutput(&out);
  return moments;
}

std::vector<Moment> Receive(HANDLE port, size_t count) {
  std::vector<Moment> moments;
  camera::PortReader reader(port);
  std::string bytes;
  double seconds = 0;
  // A long timeout until the replay has started.
  DWORD timeoutMs = 20000;
  while (moments.size() < count &&
         reader.Read(timeoutMs, nullptr, &bytes, &seconds) == camera::PortReader::Outcome::kBytes) {
    for (const char byte : bytes) moments.push_back({seconds, byte});
    timeoutMs = kQuietMs;
  }
  return moments;
}

int Compare(const std::vector<Moment>& sent, const std::vector<Moment>& received) {
  const bool isSame =
      std::ranges::equal(sent, received, [](const Moment& a, const Moment& b) { return a.byte == b.byte; });
  std::printf("%zu bytes sent, %zu received, %s\n", sent.size(), received.size(), isSame ? "the same" : "NOT THE SAME");
  if (!isSame) return 1;
  std::vector<double> errorsMs;
  for (size_t i = 1; i < sent.size(); ++i) {
    const double pause = sent[i].seconds - sent[i - 1].seconds;
    if (pause > 0) errorsMs.push_back(std::fabs(received[i].seconds - received[i - 1].seconds - pause) * 1000);
  }
  std::ranges::sort(errorsMs);
  const auto at = [&](double share) {
    return errorsMs[static_cast<size_t>(share * static_cast<double>(errorsMs.size() - 1))];
  };
  std::printf("%zu pauses of 5 to 60 ms, off by: median %.2f ms, 99 of 100 within %.2f ms, worst %.2f ms\n",
              errorsMs.size(), at(0.5), at(0.99), at(1));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const double seconds = argc > 1 ? std::atof(argv[1]) : 10;
  if (seconds < 1) return std::fputs("usage: replay_benchmark [SECONDS]\n", stderr), 2;
  timeBeginPeriod(1);
  const kvtest::SerialLine line({kPort, kFarPort});
  char folder[MAX_PATH];
  GetTempPathA(sizeof(folder), folder);
  const std::string path = std::string(folder) + "replay benchmark.twr";
  const std::vector<Moment> sent = MakeRecording(path, seconds);
  camera::Port port;
  if (camera::OpenPort(kPort, nullptr, &port).state != camera::PortState::kOpened) return 1;
  const kvtest::RunningProgram player(KV_CAMTOOL_EXE,
                                      camera::Wide(camera::Format("replay \"%s\" COM%d", path.c_str(), kFarPort)));
  const std::vector<Moment> received = Receive(port.handle(), sent.size());
  WaitForSingleObject(player.process(), 10000);
  DeleteFileA(path.c_str());
  timeEndPeriod(1);
  return Compare(sent, received);
}
