#include "camview/events_view.h"

#include <windows.h>

#include <cstddef>
#include <iterator>
#include <optional>
#include <string>

#include "camera/events.h"
#include "camview/commands.h"
#include "camview/event_table.h"
#include "camview/resource_ids.h"
#include "camview/source.h"
#include "camview/status_line.h"
#include "camview/view_time.h"
#include "camview/window.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/file_path.h"
#include "kv/framework/output_file.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/error_text.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/list_columns.h"
#include "kv/toolkit/locale_text.h"

namespace camview {

namespace {

const kv::ListColumn kColumns[] = {{MAKEINTRESOURCEW(IDS_COLUMN_TIME), 85, DT_RIGHT},
                                   {MAKEINTRESOURCEW(IDS_COLUMN_EVENT), 95},
                                   {MAKEINTRESOURCEW(IDS_COLUMN_DURATION), 80, DT_RIGHT},
                                   {MAKEINTRESOURCEW(IDS_COLUMN_AMOUNT), 110}};

std::wstring AmountText(const camera::Event& event) {
  switch (event.kind) {
    case camera::EventKind::kSilence: return {};
    case camera::EventKind::kLoss: return RecordsAsText(event.amount);
    case camera::EventKind::kUnseen: return kv::TextWith(IDS_EVENT_POINT, event.point + 1);
    default: return BytesAsText(event.amount);
  }
}

std::wstring CellText(const EventTable& events, size_t row, int column) {
  if (row >= events.Events().size()) {
    if (column != 1 || events.Omitted() == 0) return {};
    return kv::TextWith(IDS_EVENTS_OMITTED, kv::NumberText(static_cast<double>(events.Omitted())));
  }
  const camera::Event& event = events.Events()[row];
  switch (column) {
    case 0: return TimeAsText(event.from);
    case 1: return kv::ResourceText(IDS_EVENT_KIND_FIRST + static_cast<UINT>(event.kind));
    case 2: return kv::TextWith(IDS_SECONDS, kv::NumberText(event.to - event.from, 3));
    default: return AmountText(event);
  }
}

void GoTo(View& view, size_t event) {
  view.events.GoTo(event);
  Seek(&view.time, view.events.Events()[event].from);
}

void UpdateEvents(View& view) {
  const Source& source = view.source;
  view.events.Update(source.Number(), source.Records(), view.time.end);
}

}  // namespace

void DrawEventRow(const DRAWITEMSTRUCT& item, const EventTable& events) {
  const auto text = [&](UINT row, int column) { return CellText(events, row, column); };
  // As in the table of statistics.
  kv::DrawListRow(item, kColumns, text, {}, static_cast<int>(item.rcItem.bottom - item.rcItem.top) * 7 / 10);
}

void NameEventRow(HWND list, const EventTable& events) {
  kv::NameListRow(list, kv::ResourceText(IDS_EVENTS_NAME), kColumns,
                  [&](UINT row, int column) { return CellText(events, row, column); });
}

size_t EventRows(const EventTable& events) {
  return events.Events().size() + (events.Omitted() > 0);
}

void GoToEvent(View& view, bool isForward) {
  if (!view.source.Records()) return;
  UpdateEvents(view);
  const EventTable& events = view.events;
  const std::optional<size_t> next = events.Next(view.time.position, isForward);
  if (!next) {
    return view.display.Say(StatusMark::kNone, kv::ResourceText(isForward ? IDS_NO_EVENT_AFTER : IDS_NO_EVENT_BEFORE));
  }
  GoTo(view, *next);
  const std::wstring number = kv::NumberText(static_cast<double>(*next + 1));
  const std::wstring all =
      kv::NumberText(static_cast<double>(events.Events().size()) + static_cast<double>(events.Omitted()));
  view.display.Say(StatusMark::kNone, kv::TextWith(IDS_EVENT_OF, number, all, DescribeEvent(events.Events()[*next])));
}

void OnEventList(View& view, UINT code) {
  const HWND list = GetDlgItem(view.window, IDC_EVENTS);
  const UINT row = kv::SelectedListRow(list);
  if ((code != LBN_SELCHANGE && code != LBN_DBLCLK) || row >= view.events.Events().size()) return;
  view.display.TakeBack();
  GoTo(view, row);
}

void CopyEvents(View& view) {
  UpdateEvents(view);
  constexpr int kLast = static_cast<int>(std::size(kColumns)) - 1;
  std::wstring table;
  for (int i = 0; i <= kLast; ++i) table += kv::ListColumnTitle(kColumns[i]) + (i < kLast ? L"\t" : L"\r\n");
  for (size_t row = 0; row < view.events.Events().size(); ++row) {
    for (int i = 0; i <= kLast; ++i) table += CellText(view.events, row, i) + (i < kLast ? L"\t" : L"\r\n");
  }
  const bool isCopied = kv::CopyTextToClipboard(view.window, table) != 0;
  view.display.Say(isCopied ? StatusMark::kGood : StatusMark::kError,
                   kv::ResourceText(isCopied ? IDS_EVENTS_COPIED : IDS_NOT_COPIED));
}

void ExportEvents(View& view) {
  if (!view.source.Records()) return;
  UpdateEvents(view);
  // As they are when the user asks for it.
  std::string rows = camera::EventCsvHeader();
  for (const camera::Event& event : view.events.Events()) camera::AppendEventCsvRow(event, &rows);
  std::wstring path = ProposedPath(view.source) + L" " + kv::ResourceText(IDS_EVENTS_NAME) + L".csv";
  if (!AskTarget(view, IDS_EVENTS_TITLE, &path)) return;
  const wchar_t* name = kv::FileNameOf(path.c_str());
  if (kv::WriteWholeFile(path, rows)) return view.display.Say(StatusMark::kGood, kv::TextWith(IDS_EVENTS_SAVED, name));
  const std::wstring reason = kv::ErrorText();
  view.display.Say(StatusMark::kError, kv::TextWith(IDS_NOT_SAVED, name) + L" " + reason);
}

}  // namespace camview
