// camtool replay: sends a recording to a port, byte for byte and pause for pause.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "camera/files.h"
#include "camera/ports.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camtool/commands.h"
#include "camtool/console.h"
#include "kv/toolkit/arguments.h"

namespace camtool {

namespace {

constexpr DWORD kTimeoutMs = 20;
// Between the rounds of a truncated recording, whose duration is unknown.
constexpr double kSeamSeconds = 0.011;

struct Settings {
  double speed = 1;
  double seconds = 0;  // 0 = no limit
  bool loop = false;
} settings;

const kv::Option kOptions[] = {
    {"--speed", "FACTOR", "times as fast; 0.5 is half as fast (default 1)",
     kv::NumberOption{&settings.speed, 0.001, 1000}},
    {"--loop", nullptr, "start again at the end, until Ctrl+C", &settings.loop},
    {"--seconds", "SECONDS", "end after this time (default: at the end of the recording)",
     kv::NumberOption{&settings.seconds, 0.1, 1e9}},
};

constexpr int kExits[] = {kDone, kFailed, kUsageError, kNoPort, kDamaged, kEmpty};

struct Player {
  camera::Port port;
  camera::RecordingFile recording;
  double start = 0;
  long long bytes = 0, lostBytes = 0, rounds = 0;
  bool isGone = false;
};

bool IsOver(const Player& player) {
  return player.isGone || IsStopRequested() || !player.recording.error.empty() ||
         (settings.seconds > 0 && camera::Now() - player.start >= settings.seconds);
}

// Waits until `moment`, but not beyond the time limit. Returns false when the replay is over by then.
bool WaitUntilDue(const Player& player, double moment) {
  const double end = settings.seconds > 0 ? player.start + settings.seconds : moment;
  return camera::WaitExactlyUntil(std::min(moment, end), StopEvent()) && moment <= end;
}

// Replays one round, which begins at `begin`; returns when the next one begins.
double PlayRound(Player* player, double begin, ProgressLine* progress) {
  camera::Chunk chunk;
  while (!IsOver(*player) && camera::NextChunk(&player->recording, &chunk)) {
    if (!WaitUntilDue(*player, begin + static_cast<double>(chunk.microseconds) / 1e6 / settings.speed)) break;
    const camera::Written written =
        camera::WritePort(player->port.handle(), chunk.bytes.data(), chunk.bytes.size(), kTimeoutMs);
    const auto size = static_cast<long long>(chunk.bytes.size());
    (written == camera::Written::kAll ? player->bytes : player->lostBytes) += size;
    player->isGone = written == camera::Written::kGone;
    if (!progress->IsDue()) continue;
    progress->Show(camera::Format("%7.1f s  %lld bytes  round %lld", camera::Now() - player->start, player->bytes,
                                  player->rounds + 1));
  }
  ++player->rounds;
  const camera::RecordingDecoder& decoder = player->recording.decoder;
  const double length = static_cast<double>(decoder.endTime) / 1e6 + (decoder.hasEnd ? 0 : kSeamSeconds);
  return begin + std::max(length / settings.speed, 0.001);
}

int Play(Player* player, int port) {
  player->start = camera::Now();
  std::string damage;
  {
    ProgressLine progress;
    double begin = player->start;
    do {
      if (player->rounds > 0) camera::Rewind(&player->recording);
      begin = PlayRound(player, begin, &progress);
      if (player->rounds == 1) damage = camera::DescribeDamage(player->recording);
      if (player->recording.decoder.chunks == 0) break;
    } while (settings.loop && !IsOver(*player) && WaitUntilDue(*player, begin));
    // The silence at the end is part of the recording.
    if (!settings.loop && !IsOver(*player)) WaitUntilDue(*player, begin);
  }
  std::printf("%lld bytes sent, %lld lost because nothing read them, %.1f s\n", player->bytes, player->lostBytes,
              camera::Now() - player->start);
  if (player->isGone) PrintError("COM" + std::to_string(port) + " was disconnected");
  if (!player->recording.error.empty()) PrintError(player->recording.error);
  if (player->isGone || !player->recording.error.empty()) return kFailed;
  const bool wasInterrupted = player->rounds == 1 && IsOver(*player);
  if (!damage.empty() && !wasInterrupted) PrintError(damage);
  return player->recording.decoder.damageCount > 0 ? kDamaged : kDone;
}

int RunReplay(const std::vector<std::string>& operands) {
  const int port = PortOrPrintError(operands[1]);
  if (port == 0) return kUsageError;
  if (settings.loop && operands[0] == "-") {
    PrintError("--loop requires a file; standard input can be read only once");
    return kUsageError;
  }
  Player player{};
  int result = OpenRecordingOrPrintError(operands[0], &player.recording);
  if (result != kDone) return result;
  result = kNoPort;
  if (OpenPortOrPrintError(port, &player.port)) {
    std::fprintf(stderr, "replaying to COM%d; Ctrl+C ends\n", port);
    result = Play(&player, port);
  }
  camera::CloseRecording(&player.recording);
  return result;
}

}  // namespace

const Command kReplayCommand = {"replay",
                                "FILE PORT",
                                "sends a recording to a port with its original timing",
                                "A truncated recording is sent up to its end. FILE may be - for standard input.\n",
                                kOptions,
                                kExits,
                                RunReplay};

}  // namespace camtool
