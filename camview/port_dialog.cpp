#include "camera/ports.h"
#include "camview/dialogs.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "camera/text.h"
#include "camview/port_finder.h"
#include "camview/resource_ids.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/scaled_dialog.h"

namespace camview {

namespace {

constexpr UINT_PTR kFindTimer = 1;
constexpr UINT kFindMs = 100;
constexpr int kHighestPort = 999;
constexpr INT_PTR kChosen =
    0x10000;  // added to the port's number in the dialog's result, because the number may equal IDCANCEL

struct PortDialog {
  PortFinder finder;
  std::vector<FoundPort> found;  // in the list's order
  bool isTyped = false;          // the user has typed the name
};

std::wstring LineOf(const FoundPort& port) {
  const auto text = [&](UINT id) { return kv::TextWith(id, port.number); };
  switch (port.state) {
    case FoundState::kCamera: return kv::TextWith(IDS_PORT_CAMERA, port.number, kv::NumberText(port.recordsPerSecond));
    case FoundState::kSending: return text(IDS_PORT_SENDING);
    case FoundState::kSilent: return text(IDS_PORT_SILENT);
    case FoundState::kBusy:
      if (port.holder.empty()) return text(IDS_PORT_BUSY);
      return kv::TextWith(IDS_PORT_BUSY_WITH, port.number, camera::Wide(port.holder));
    case FoundState::kAccessDenied: return text(IDS_PORT_DENIED);
    case FoundState::kUnusable: return text(IDS_PORT_UNUSABLE);
    case FoundState::kHangs: return text(IDS_PORT_HANGS);
  }
  return {};
}

PortDialog& StateOf(HWND dialog) {
  return *reinterpret_cast<PortDialog*>(GetWindowLongW(dialog, DWL_USER));
}

void Select(HWND dialog, int index) {
  SendDlgItemMessageW(dialog, IDC_PORTS, LB_SETCURSEL, index, 0);
  const std::wstring name = L"COM" + std::to_wstring(StateOf(dialog).found[index].number);
  SetDlgItemTextW(dialog, IDC_PORT_NAME, name.c_str());
}

// Cameras first, then by number.
bool ComesBefore(const FoundPort& one, const FoundPort& other) {
  const bool first = one.state == FoundState::kCamera, second = other.state == FoundState::kCamera;
  return first != second ? first : one.number < other.number;
}

void AddPort(HWND dialog, const FoundPort& port) {
  PortDialog& state = StateOf(dialog);
  const auto place = std::ranges::upper_bound(state.found, port, ComesBefore);
  const int index = static_cast<int>(place - state.found.begin());
  state.found.insert(place, port);
  const std::wstring line = LineOf(port);
  SendDlgItemMessageW(dialog, IDC_PORTS, LB_INSERTSTRING, index, reinterpret_cast<LPARAM>(line.c_str()));
  // Most users look for the first camera.
  if (port.state == FoundState::kCamera && !state.isTyped) Select(dialog, 0);
}

void ShowSearch(HWND dialog) {
  PortDialog& state = StateOf(dialog);
  const bool isDone = state.finder.IsDone();
  const UINT text = !isDone ? IDS_PORTS_SEARCHING : state.found.empty() ? IDS_PORTS_NONE : IDS_PORTS_FOUND;
  SetDlgItemTextW(dialog, IDC_PORTS_STATUS, kv::ResourceText(text).c_str());
  kv::EnableControl(dialog, IDC_PORTS_AGAIN, isDone);
}

INT_PTR StartSearch(HWND dialog) {
  PortDialog& state = StateOf(dialog);
  state.found.clear();
  SendDlgItemMessageW(dialog, IDC_PORTS, LB_RESETCONTENT, 0, 0);
  state.finder.Start();
  SetTimer(dialog, kFindTimer, kFindMs, nullptr);
  ShowSearch(dialog);
  return TRUE;
}

INT_PTR OnInit(HWND dialog, LPARAM state) {
  SetWindowLongW(dialog, DWL_USER, static_cast<LONG>(state));
  return StartSearch(dialog);
}

INT_PTR OnTimer(HWND dialog) {
  PortDialog& state = StateOf(dialog);
  const bool isDone = state.finder.IsDone();
  for (const FoundPort& port : state.finder.Take()) AddPort(dialog, port);
  if (!isDone) return TRUE;
  KillTimer(dialog, kFindTimer);
  ShowSearch(dialog);
  return TRUE;
}

INT_PTR OnConnect(HWND dialog) {
  wchar_t name[64] = L"";
  GetDlgItemTextW(dialog, IDC_PORT_NAME, name, ARRAYSIZE(name));
  const int port = PortOfName(name);
  if (port > 0) return EndDialog(dialog, kChosen + port);
  SetDlgItemTextW(dialog, IDC_PORTS_STATUS, kv::TextWith(IDS_BAD_PORT, name).c_str());
  SetFocus(GetDlgItem(dialog, IDC_PORT_NAME));
  SendDlgItemMessageW(dialog, IDC_PORT_NAME, EM_SETSEL, 0, -1);
  return TRUE;
}

INT_PTR OnCommand(HWND dialog, UINT id, UINT code) {
  switch (id) {
    case IDC_PORTS:
      if (code == LBN_SELCHANGE) {
        StateOf(dialog).isTyped = true;
        Select(dialog, static_cast<int>(SendDlgItemMessageW(dialog, IDC_PORTS, LB_GETCURSEL, 0, 0)));
      }
      return code == LBN_DBLCLK ? OnConnect(dialog) : TRUE;
    case IDC_PORT_NAME:
      if (code == EN_CHANGE && GetFocus() == GetDlgItem(dialog, IDC_PORT_NAME)) StateOf(dialog).isTyped = true;
      return TRUE;
    case IDC_PORTS_AGAIN: return StartSearch(dialog);
    case IDOK: return OnConnect(dialog);
    default: return FALSE;
  }
}

INT_PTR CALLBACK PortProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(dialog, lParam);
    case kv::kLanguageChanged: return SetWindowTextW(dialog, kv::ResourceText(IDS_PORTS_CAPTION).c_str());
    case WM_TIMER: return OnTimer(dialog);
    case WM_COMMAND: return OnCommand(dialog, LOWORD(wParam), HIWORD(wParam));
    default: return FALSE;
  }
}

}  // namespace

int AskForPort(HWND parent) {
  PortDialog state;
  const INT_PTR result = kv::RunModalDialog(parent, {.templateName = L"PORTS",
                                                     .procedure = PortProcedure,
                                                     .parameter = reinterpret_cast<LPARAM>(&state),
                                                     .positionName = "Camview.Ports"});
  return result > kChosen ? static_cast<int>(result - kChosen) : 0;
}

int PortOfName(std::wstring_view name) {
  constexpr wchar_t kBlanks[] = L" \t:";
  const size_t begin = name.find_first_not_of(kBlanks);
  if (begin == name.npos) return 0;
  const std::string text = camera::Narrow(name.substr(begin, name.find_last_not_of(kBlanks) + 1 - begin));
  const bool isNumber = text.find_first_not_of("0123456789") == text.npos;
  const int number = camera::ParsePort(isNumber ? "COM" + text : text);
  return number <= kHighestPort ? number : 0;
}

}  // namespace camview
