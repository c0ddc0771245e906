#include "gallery/pages.h"

#include <optional>
#include <string>

#include "gallery/resource_ids.h"
#include "kv/export/dde_client.h"
#include "kv/framework/bounded_format.h"
#include "kv/toolkit/dde_conversation.h"
#include "kv/toolkit/empty_text.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr DWORD kReplyTimeoutMs = 2000;
constexpr LONG kMaxLogCharacters = 20000;

std::optional<kv::DdeConversation> conversation;  // there is one page
bool isWaiting = false;                           // for a server; meanwhile the system dispatches messages

std::string FieldText(HWND page, int controlId) {
  char text[256] = "";
  GetDlgItemTextA(page, controlId, text, sizeof(text));
  return text;
}

void AppendToLog(HWND page, const std::wstring& line) {
  HWND log = GetDlgItem(page, IDC_DDE_LOG);
  LONG end = GetWindowTextLengthW(log);
  if (end > kMaxLogCharacters) {
    SetWindowTextW(log, L"");
    end = 0;
  }
  SendMessageW(log, EM_SETSEL, end, end);
  SendMessageW(log, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>((line + L"\r\n").c_str()));
}

// Appends a line of 8-bit text, as received from servers.
void AppendLine(HWND page, const std::string& line) {
  std::wstring wide(line.size(), L'\0');
  const int length = static_cast<int>(wide.size());
  wide.resize(MultiByteToWideChar(CP_ACP, 0, line.data(), length, wide.data(), length));
  AppendToLog(page, wide);
}

template <class... Values>
void Log(HWND page, const char* format, Values... values) {
  char line[1024];
  kv::FormatBoundedA(line, sizeof(line), format, values...);
  AppendLine(page, line);
}

void ShowWord(HWND page, int controlId, const void* word) {
  if (!word) {
    SetDlgItemTextW(page, controlId, (L" " + kv::ResourceText(IDS_DDE_NOT_CONNECTED) + L" ").c_str());
    return;
  }
  char text[16];
  kv::FormatBoundedA(text, sizeof(text), " %08X", word);
  SetDlgItemTextA(page, controlId, text);
}

void ShowState(HWND page) {
  const kv::ExcelLinkState& link = kv::excelLinkState;
  ShowWord(page, IDC_DDE_INSTANCE, reinterpret_cast<void*>(link.ddeInstance));
  ShowWord(page, IDC_DDE_SYSTEM, link.systemConversation);
  ShowWord(page, IDC_DDE_WORKBOOK, link.workbookConversation);
  // Enable before disabling, because the focus may have to move there.
  if (!conversation) kv::EnableControl(page, IDC_DDE_CONNECT, true);
  for (int id : {IDC_DDE_DISCONNECT, IDC_DDE_REQUEST, IDC_DDE_POKE, IDC_DDE_EXECUTE})
    kv::EnableControl(page, id, conversation.has_value());
  if (conversation) kv::EnableControl(page, IDC_DDE_CONNECT, false);
}

void SetLink(HWND page, BOOL open) {
  const BOOL result = kv::excelLink(open);
  Log(page, "excelLink %d = %d", open, result);
}

void Connect(HWND page) {
  const std::string service = FieldText(page, IDC_DDE_SERVICE), topic = FieldText(page, IDC_DDE_TOPIC);
  conversation.emplace(service.c_str(), topic.c_str());
  Log(page, "Connect \"%s\" \"%s\" = %d", service.c_str(), topic.c_str(), conversation->IsOpen());
  if (!conversation->IsOpen()) conversation.reset();
}

void Disconnect(HWND page) {
  conversation.reset();
  Log(page, "Disconnect");
}

void Request(HWND page) {
  const std::string item = FieldText(page, IDC_DDE_ITEM);
  std::string reply;
  const BOOL done = conversation->Request(item.c_str(), &reply, kReplyTimeoutMs);
  Log(page, "Request \"%s\" = %d", item.c_str(), done);
  if (done) AppendLine(page, reply);
}

void Poke(HWND page) {
  const std::string item = FieldText(page, IDC_DDE_ITEM);
  std::string text = FieldText(page, IDC_DDE_TEXT);
  if (kv::IsChecked(page, IDC_DDE_COMMA)) kv::decimalPointToComma(text.data());
  const BOOL done = conversation->Poke(item.c_str(), text.c_str(), kReplyTimeoutMs);
  Log(page, "Poke \"%s\" \"%s\" = %d", item.c_str(), text.c_str(), done);
}

void Execute(HWND page) {
  const std::string command = FieldText(page, IDC_DDE_TEXT);
  Log(page, "Execute \"%s\" = %d", command.c_str(), conversation->Execute(command.c_str()));
}

INT_PTR OnTick(HWND page) {
  if (isWaiting || !conversation || conversation->IsOpen()) return TRUE;
  conversation.reset();
  AppendToLog(page, kv::ResourceText(IDS_DDE_ENDED));
  ShowState(page);
  return TRUE;
}

INT_PTR OnTextsChanged(HWND page) {
  kv::SetEmptyText(page, IDC_DDE_LOG, kv::ResourceText(IDS_DDE_EMPTY));
  ShowState(page);
  return TRUE;
}

INT_PTR OnInit(HWND page) {
  // The desktop is a server for this service.
  SetDlgItemTextA(page, IDC_DDE_SERVICE, "Progman");
  SetDlgItemTextA(page, IDC_DDE_TOPIC, "Progman");
  SetDlgItemTextA(page, IDC_DDE_ITEM, "Groups");
  SetDlgItemTextA(page, IDC_DDE_TEXT, "12.5");
  CheckDlgButton(page, IDC_DDE_COMMA, BST_CHECKED);
  return TRUE;
}

void Run(HWND page, UINT command) {
  switch (command) {
    case IDC_DDE_OPEN: return SetLink(page, TRUE);
    case IDC_DDE_CLOSE: return SetLink(page, FALSE);
    case IDC_DDE_CONNECT: return Connect(page);
    default: break;
  }
  if (!conversation) return;
  switch (command) {
    case IDC_DDE_DISCONNECT: return Disconnect(page);
    case IDC_DDE_REQUEST: return Request(page);
    case IDC_DDE_POKE: return Poke(page);
    case IDC_DDE_EXECUTE: return Execute(page);
    default: break;
  }
}

INT_PTR OnCommand(HWND page, UINT command, UINT code) {
  if (code != BN_CLICKED || isWaiting) return FALSE;
  isWaiting = true;
  Run(page, command);
  isWaiting = false;
  ShowState(page);
  return TRUE;
}

INT_PTR OnDestroy() {
  if (!isWaiting) conversation.reset();
  return TRUE;
}

}  // namespace

INT_PTR CALLBACK DdePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(page);
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam), HIWORD(wParam));
    case WM_TIMER: return OnTick(page);
    case kv::kLanguageChanged: return OnTextsChanged(page);
    case WM_DESTROY: return OnDestroy();
    default: return FALSE;
  }
}

}  // namespace gallery
