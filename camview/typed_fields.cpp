#include "camview/typed_fields.h"

#include <windows.h>

#include <string>

#include "camera/line_model.h"
#include "camera/text.h"
#include "camview/display.h"
#include "camview/resource_ids.h"
#include "camview/source.h"
#include "camview/status_line.h"
#include "camview/view_time.h"
#include "camview/window.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"

namespace camview {

namespace {

// Goes to a time, or selects a range. Returns why not, or nothing.
std::wstring GoTo(ViewTime* time, const wchar_t* text) {
  const std::string typed = camera::Narrow(text);
  double position = 0;
  TimeRange range;
  if (ParseTime(typed, &position)) {
    Seek(time, position);
    return {};
  }
  if (!ParseTimeRange(typed, &range)) return kv::TextWith(IDS_BAD_TIME, text);
  if (range.to <= range.from) return kv::TextWith(IDS_RANGE_REVERSED, text);
  if (range.from >= time->end || range.to <= time->begin) {
    return kv::TextWith(IDS_RANGE_OUTSIDE, text, TimeAsText(time->begin), TimeAsText(time->end));
  }
  SelectAndShow(time, range);
  return {};
}

}  // namespace

void OnTimeTyped(View& view) {
  wchar_t text[64] = L"";
  GetDlgItemTextW(view.window, IDC_TIME, text, ARRAYSIZE(text));
  const std::wstring reason = view.source.Records() ? GoTo(&view.time, text) : std::wstring();
  if (!reason.empty()) {
    view.display.Say(StatusMark::kError, reason);
    SendDlgItemMessageW(view.window, IDC_TIME, EM_SETSEL, 0, -1);
    return;
  }
  view.display.TakeBack();
  SetFocus(GetDlgItem(view.window, IDC_TIMELINE));
}

// An empty field: estimated.
void OnRateTyped(View& view) {
  wchar_t text[64] = L"";
  GetDlgItemTextW(view.window, IDC_RATE, text, ARRAYSIZE(text));
  double rate = 0;
  const std::string typed = camera::Narrow(text);
  const bool isEmpty = typed.find_first_not_of(' ') == typed.npos;
  const bool isRate = typed.find(':') == typed.npos && ParseTime(typed, &rate) && rate >= camera::kLowestRate &&
                      rate <= camera::kHighestRate;
  if (!isEmpty && !isRate) {
    const std::wstring lowest = kv::NumberText(camera::kLowestRate), highest = kv::NumberText(camera::kHighestRate, 1);
    view.display.Say(StatusMark::kError, kv::TextWith(IDS_BAD_RATE, text, lowest, highest));
    SendDlgItemMessageW(view.window, IDC_RATE, EM_SETSEL, 0, -1);
    return;
  }
  view.display.TakeBack();
  view.source.SetRate(isEmpty ? 0 : rate);
}

}  // namespace camview
