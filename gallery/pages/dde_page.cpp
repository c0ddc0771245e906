#include "gallery/pages/dde_page.h"

#include <ddeml.h>

#include <string>

#include "export/dde_client.h"
#include "export/excel_link.h"
#include "framework/bounded_format.h"
#include "gallery/page.h"
#include "gallery/pages/dde_ids.h"

namespace gallery {

namespace {

constexpr DWORD kAnswerTimeoutMs = 2000;
constexpr LONG kLongestLog = 20000;

// The page's own instance and conversation. Not of ddeStartStop's making: that refuses a slot like this one.
DWORD instance = 0;
HCONV conversation = nullptr;

HDDEDATA CALLBACK IgnoreTransaction(UINT, UINT, HCONV, HSZ, HSZ, HDDEDATA, ULONG_PTR, ULONG_PTR) {
  return nullptr;
}

std::string Hexadecimal(const void* value) {
  char text[16];
  kv::FormatBoundedA(text, sizeof(text), "%08X", value);
  return text;
}

std::string FieldText(HWND page, int controlId) {
  char text[256] = "";
  GetDlgItemTextA(page, controlId, text, sizeof(text));
  return text;
}

void Log(HWND page, const std::string& line) {
  HWND log = GetDlgItem(page, IDC_DDE_LOG);
  LONG end = GetWindowTextLengthA(log);
  if (end > kLongestLog) {
    SetWindowTextA(log, "");
    end = 0;
  }
  SendMessageA(log, EM_SETSEL, end, end);
  SendMessageA(log, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>((line + "\r\n").c_str()));
}

void ShowState(HWND page) {
  const kv::ExcelLinkState& link = kv::excelLinkState;
  SetDlgItemTextA(page, IDC_DDE_INSTANCE, (" " + Hexadecimal(reinterpret_cast<void*>(link.ddeInstance))).c_str());
  SetDlgItemTextA(page, IDC_DDE_SYSTEM, (" " + Hexadecimal(link.systemConversation)).c_str());
  SetDlgItemTextA(page, IDC_DDE_WORKBOOK, (" " + Hexadecimal(link.workbookConversation)).c_str());
  EnableWindow(GetDlgItem(page, IDC_DDE_CONNECT), !conversation);
  for (int id : {IDC_DDE_DISCONNECT, IDC_DDE_REQUEST, IDC_DDE_POKE, IDC_DDE_EXECUTE}) {
    EnableWindow(GetDlgItem(page, id), conversation != nullptr);
  }
}

void Connect(HWND page) {
  if (!instance) DdeInitializeA(&instance, IgnoreTransaction, APPCMD_CLIENTONLY, 0);
  const std::string service = FieldText(page, IDC_DDE_SERVICE), topic = FieldText(page, IDC_DDE_TOPIC);
  conversation = kv::ddeConnect(instance, service.c_str(), topic.c_str());
  Log(page, "ddeConnect \"" + service + "\" \"" + topic + "\" = " + Hexadecimal(conversation));
}

void Disconnect(HWND page) {
  const BOOL done = kv::ddeDisconnect(conversation);
  conversation = nullptr;
  Log(page, "ddeDisconnect = " + std::to_string(done));
}

void Request(HWND page) {
  const std::string item = FieldText(page, IDC_DDE_ITEM);
  std::string answer(kv::kDdeAnswerSize, '\0');
  const BOOL done = kv::ddeRequest(instance, conversation, item.c_str(), answer.data(), kAnswerTimeoutMs);
  Log(page, "ddeRequest \"" + item + "\" = " + std::to_string(done));
  answer.resize(answer.find('\0') == std::string::npos ? answer.size() : answer.find('\0'));
  if (!answer.empty()) Log(page, answer);
}

void Poke(HWND page) {
  const std::string item = FieldText(page, IDC_DDE_ITEM);
  std::string text = FieldText(page, IDC_DDE_TEXT);
  if (IsDlgButtonChecked(page, IDC_DDE_COMMA)) kv::decimalPointToComma(text.data());
  HDDEDATA done = kv::ddePoke(instance, conversation, item.c_str(), text.c_str(), kAnswerTimeoutMs);
  Log(page, "ddePoke \"" + item + "\" \"" + text + "\" = " + Hexadecimal(done));
}

void Execute(HWND page) {
  const std::string command = FieldText(page, IDC_DDE_TEXT);
  const BOOL done = kv::ddeExecute(instance, conversation, command.c_str());
  Log(page, "ddeExecute \"" + command + "\" = " + std::to_string(done));
}

void SetLink(HWND page, BOOL open) {
  Log(page, "excelLink " + std::to_string(open) + " = " + std::to_string(kv::excelLink(open)));
}

INT_PTR OnInit(HWND page, WPARAM wParam, LPARAM lParam) {
  // The desktop itself is a server that answers this.
  SetDlgItemTextA(page, IDC_DDE_SERVICE, "Progman");
  SetDlgItemTextA(page, IDC_DDE_TOPIC, "Progman");
  SetDlgItemTextA(page, IDC_DDE_ITEM, "Groups");
  SetDlgItemTextA(page, IDC_DDE_TEXT, "12.5");
  CheckDlgButton(page, IDC_DDE_COMMA, BST_CHECKED);
  ShowState(page);
  return HandlePageMessage(page, WM_INITDIALOG, wParam, lParam);
}

INT_PTR OnCommand(HWND page, UINT command, UINT code) {
  if (code != BN_CLICKED) return FALSE;
  switch (command) {
    case IDC_DDE_OPEN: SetLink(page, TRUE); break;
    case IDC_DDE_CLOSE: SetLink(page, FALSE); break;
    case IDC_DDE_CONNECT: Connect(page); break;
    case IDC_DDE_DISCONNECT: Disconnect(page); break;
    case IDC_DDE_REQUEST: Request(page); break;
    case IDC_DDE_POKE: Poke(page); break;
    case IDC_DDE_EXECUTE: Execute(page); break;
    default: return FALSE;
  }
  ShowState(page);
  return TRUE;
}

INT_PTR OnDestroy() {
  if (conversation) kv::ddeDisconnect(conversation);
  if (instance) DdeUninitialize(instance);
  conversation = nullptr;
  instance = 0;
  return TRUE;
}

}  // namespace

INT_PTR CALLBACK DdePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(page, wParam, lParam);
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam), HIWORD(wParam));
    case WM_DESTROY: return OnDestroy();
    default: return HandlePageMessage(page, message, wParam, lParam);
  }
}

}  // namespace gallery
