// Opening a recording, playing it, and exporting a stretch of it or of a live port.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "camera/ports.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camview/live_source.h"
#include "camview/playback.h"
#include "camview/record_store.h"
#include "camview/recording_loader.h"
#include "camview/resource_ids.h"
#include "camview/settings.h"
#include "camview/status_line.h"
#include "camview/stretch_export.h"
#include "camview/view.h"
#include "kv/framework/file_path.h"
#include "kv/toolkit/ask_path.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"

namespace camview {

namespace {

constexpr wchar_t kRecordingExtension[] = L".twr", kCsvExtension[] = L".csv";

void OnLoaded(View& view) {
  view.isLoading = false;
  LoadedRecording loaded = view.loader.Take();
  ShowWork(view);
  const StatusLine line = DescribeRecording(loaded);
  const bool isCancelled = loaded.outcome == LoadOutcome::kCancelled,
             isEmpty = !loaded.store || loaded.store->IsEmpty();
  // Whatever was shown before remains.
  if (isCancelled && (isEmpty || RecordsOf(view) || view.live)) {
    return ShowLine(view, StatusMark::kNone, kv::ResourceText(IDS_LOADING_CANCELLED));
  }
  if (isEmpty) {
    ShowLine(view, line.mark, line.text);
    kv::ShowMessage(view.window, line.text, kv::ResourceText(IDS_CAPTION), MB_ICONWARNING);
    return;
  }
  CloseSource(view);
  view.recording = std::move(loaded);
  view.playback = {.begin = 0, .end = view.recording.seconds, .speed = view.playback.speed, .clock = camera::Now()};
  const RecordStore& store = *view.recording.store;
  view.playback.end = std::max(view.playback.end, store.Seconds(store.End() - 1));
  Seek(&view.playback, store.Seconds(store.First()));
  ShowSource(view);
  SetFocus(GetDlgItem(view.window, IDC_TIMELINE));
}

void OnExported(View& view) {
  view.isExporting = false;
  ShowWork(view);
  const ExportResult& result = view.exporter.Result();
  const wchar_t* name = kv::FileNameOf(view.exportTarget.c_str());
  if (result.isDone) {
    return ShowLine(view, StatusMark::kGood,
                    TextWith(IDS_EXPORTED, kv::NumberText(static_cast<double>(result.records)).c_str(), name));
  }
  if (result.error.empty()) return ShowLine(view, StatusMark::kNone, kv::ResourceText(IDS_EXPORT_CANCELLED));
  ShowLine(view, StatusMark::kError, TextWith(IDS_EXPORT_FAILED, name, camera::Wide(result.error).c_str()));
}

// Returns "FOLDER\NAME 1.15-1.20.csv" for a stretch of FOLDER\NAME.twr.
std::wstring ProposedTarget(const View& view) {
  std::wstring source = view.live ? FolderOf(Setting::kRecordings) + L"COM" + std::to_wstring(view.status.port)
                                  : camera::Wide(view.recording.path);
  source.erase(static_cast<size_t>(kv::ExtensionOf(source.c_str()) - source.c_str()));
  std::string times = FormatTime(view.mark.from, 0) + "-" + FormatTime(view.mark.to, 0);
  std::ranges::replace(times, ':', '.');
  return source + L" " + camera::Wide(times) + kCsvExtension;
}

}  // namespace

void OpenRecordingFile(View& view, const std::wstring& path) {
  if (view.isExporting) return ShowLine(view, StatusMark::kWarning, kv::ResourceText(IDS_EXPORT_RUNS));
  RememberFolder(Setting::kRecordings, path);
  if (!view.loader.Start(camera::Narrow(path))) {
    return ShowLine(view, StatusMark::kError, TextWith(IDS_FILE_UNREADABLE, kv::FileNameOf(path.c_str()), L""));
  }
  view.isLoading = true;
  ShowLine(view, StatusMark::kWaiting, TextWith(IDS_LOADING, kv::FileNameOf(path.c_str())));
  ShowWork(view);
  UpdateTimer(view);
}

void AskRecordingFile(View& view) {
  std::wstring path = FolderOf(Setting::kRecordings) + L"*" + kRecordingExtension;
  if (kv::AskOpenPath(view.window, kv::ResourceText(IDS_OPEN_TITLE).c_str(), &path)) OpenRecordingFile(view, path);
}

void ExportMarked(View& view) {
  const RecordStore* store = RecordsOf(view);
  if (!store || !view.isMarked || view.isExporting || view.isLoading) return;
  const kv::StripTimeRange mark = view.mark;
  std::wstring path = ProposedTarget(view);
  if (!kv::AskSavePath(view.window, kv::ResourceText(IDS_EXPORT_TITLE).c_str(), &path, kRecordingExtension)) return;
  const bool isRecording = lstrcmpiW(kv::ExtensionOf(path.c_str()), kRecordingExtension) == 0;
  ExportTask task{.target = camera::Narrow(path),
                  .format = isRecording ? ExportFormat::kRecording : ExportFormat::kCsv,
                  .overwrite = true,  // confirmed by the user
                  .from = mark.from,
                  .to = mark.to};
  if (view.live) {
    task.store = store;
    task.header = {.startTime = view.live->startTime(),
                   .baudRate = CBR_38400,
                   .port = static_cast<std::uint32_t>(view.status.port)};
  } else {
    task.source = view.recording.path;
    task.sourceSeconds = view.recording.seconds;
  }
  view.exportTarget = path;
  view.isExporting = view.exporter.Start(task);
  if (!view.isExporting) {
    return ShowLine(view, StatusMark::kError, TextWith(IDS_EXPORT_FAILED, kv::FileNameOf(path.c_str()), L""));
  }
  ShowLine(view, StatusMark::kWaiting, TextWith(IDS_EXPORTING, kv::FileNameOf(path.c_str())));
  ShowWork(view);
  UpdateTimer(view);
}

void TickWork(View& view) {
  if (!view.isLoading && !view.isExporting) return;
  const double progress = view.isLoading ? view.loader.Progress() : view.exporter.Progress();
  SendDlgItemMessageW(view.window, IDC_PROGRESS, PBM_SETPOS, static_cast<WPARAM>(progress * 1000), 0);
  if (view.isLoading && view.loader.IsDone()) OnLoaded(view);
  if (view.isExporting && view.exporter.IsDone()) OnExported(view);
}

void TickPlayback(View& view) {
  if (view.live || !view.playback.isPlaying) return;
  Advance(&view.playback, camera::Now());
  ScrollToTime(view, true);
  ShowTime(view);
  if (!view.playback.isPlaying) ShowPlaying(view);
}

void ShowRecordingLine(View& view) {
  const StatusLine line = DescribeRecording(view.recording);
  ShowLine(view, line.mark, line.text);
}

}  // namespace camview
