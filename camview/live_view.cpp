// A live port: connecting, showing, and recording.
#include <windows.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "camera/ports.h"
#include "camera/text.h"
#include "camview/chart_feed.h"
#include "camview/live_source.h"
#include "camview/port_dialog.h"
#include "camview/record_intake.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "camview/settings.h"
#include "camview/status_line.h"
#include "camview/view.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/file_path.h"
#include "kv/toolkit/ask_path.h"
#include "kv/toolkit/languages.h"

namespace camview {

namespace {

constexpr double kTimelineSeconds = 1;

void ShowLiveLines(View& view) {
  StatusLine line = DescribeLive(view.status);
  if (view.isHeld) line.text += L" " + kv::ResourceText(IDS_LIVE_HELD);
  if (!view.isExporting && !view.isLoading && std::isnan(view.lineUntil))
    SetStatusLine(view.window, IDC_STATUS, line, &view.line);
  ShowRecordingState(view);
}

// Shows the newest records in the charts, which scroll, and the time.
void ShowNewest(View& view) {
  const RecordStore& store = *view.received;
  const bool isFirst = view.feed.next == 0 && view.feed.fine.to == 0;
  if (store.IsEmpty()) return;
  view.playback.begin = store.Seconds(store.First());
  view.playback.end = view.playback.position = store.Seconds(store.End() - 1);
  ShowField(view);
  // The charts cost more, and twice as many images a second would not be seen.
  view.isFieldsTurn = !view.isFieldsTurn;
  if (view.isFieldsTurn && !isFirst) return;
  if (isFirst || !AppendNewRecords(view.window, store, &view.feed)) RefillCharts(view);
}

std::wstring ProposedRecording(const View& view) {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  wchar_t name[64] = L"";
  kv::FormatBounded(name, sizeof(name), L"COM%d %04d-%02d-%02d %02d.%02d.%02d.twr", view.status.port, now.wYear,
                    now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond);
  return FolderOf(Setting::kRecordings) + name;
}

}  // namespace

void ConnectTo(View& view, int port) {
  if (view.isExporting) return ShowLine(view, StatusMark::kWarning, kv::ResourceText(IDS_EXPORT_RUNS));
  CloseSource(view);
  view.received = std::make_unique<RecordStore>();
  view.live = std::make_unique<LiveSource>(port);
  view.status = view.live->Status();
  ShowSource(view);
  TickLive(view);
  SetFocus(GetDlgItem(view.window, IDC_PLAY));
}

void AskPort(View& view) {
  const int port = AskForPort(view.window);
  if (port > 0) ConnectTo(view, port);
}

void ToggleRecording(View& view) {
  if (!view.live) return;
  if (view.status.recording == LiveRecordingState::kOn) {
    view.live->StopRecording();
    return TickLive(view);
  }
  std::wstring path = ProposedRecording(view);
  if (!kv::AskSavePath(view.window, kv::ResourceText(IDS_RECORD_TITLE).c_str(), &path)) return;
  RememberFolder(Setting::kRecordings, path);
  std::string error;
  // The user has confirmed replacing a file.
  if (!view.live->StartRecording(camera::Narrow(path), true, &error)) {
    kv::ShowMessage(view.window,
                    TextWith(IDS_RECORDING_FAILED, kv::FileNameOf(path.c_str()), camera::Wide(error).c_str()),
                    kv::ResourceText(IDS_CAPTION), MB_ICONWARNING);
  }
  TickLive(view);
}

void TickLive(View& view) {
  if (!view.live) return;
  view.status = view.live->Status();
  // An export reads the store, so new records wait in the source.
  if (!view.isExporting) {
    view.live->Take(&view.batch);
    StoreBatch(&view.batch, view.received.get());
    if (!view.isHeld) ShowNewest(view);
  }
  ShowLiveLines(view);
  const double now = camera::Now();
  if (view.isHeld || now < view.timelineDue) return;
  view.timelineDue = now + kTimelineSeconds;
  ShowTimelineRange(view);
  ShowTime(view);
  if (!view.isMarked) RequestStatistics(view);
}

}  // namespace camview
