// Simulates the spreadsheet program for the DDE tests, in a separate process, and logs what it receives. It uses DDE
// messages directly, not the library that the client uses.
//
//   dde_server LOG SERVICE TOPIC[,TOPIC...] [delay=MS | refuse | leave]
//
// Items: "Topics" is the list of topics; "BytesN" is N characters without a terminator; any other item is the text last
// poked into it, and is rejected before that. With delay=MS every request is answered that much later; with refuse only
// the connection is accepted; with leave an execute ends the conversation. When a message is logged, its answer is
// already in the client's queue. Runs until it is terminated.
#include <windows.h>

#include <dde.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace {

constexpr WORD kAck = 0x8000, kResponse = 0x1000, kRelease = 0x2000;
constexpr size_t kHeader = offsetof(DDEDATA, Value);  // also that of DDEPOKE

FILE* logFile;
std::string service, topics, mode;
std::map<std::string, std::string> cells;
std::map<HWND, std::string> conversations;  // with their topics

void Log(const std::string& line) {
  fprintf(logFile, "%s\n", line.c_str());
  fflush(logFile);
}

std::string NameOf(UINT_PTR atom) {
  char text[256] = "";
  GlobalGetAtomNameA(static_cast<ATOM>(atom), text, sizeof(text));
  return text;
}

std::string BytesOf(HGLOBAL memory, size_t skipped) {
  const auto* bytes = static_cast<const char*>(GlobalLock(memory));
  std::string copy(bytes + skipped, GlobalSize(memory) - skipped);
  GlobalUnlock(memory);
  return copy;
}

// The received bytes, with visible terminators.
std::string Shown(const std::string& bytes) {
  std::string text;
  for (char byte : bytes) text += byte ? std::string(1, byte) : "\\0";
  return "\"" + text + "\" (" + std::to_string(bytes.size()) + " bytes)";
}

void PostAck(HWND server, HWND client, bool positive, UINT_PTR what) {
  PostMessageA(client, WM_DDE_ACK, reinterpret_cast<WPARAM>(server),
               PackDDElParam(WM_DDE_ACK, positive ? kAck : 0, what));
}

void PostData(HWND server, HWND client, const std::string& bytes, UINT_PTR item) {
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE | GMEM_DDESHARE, kHeader + bytes.size());
  auto* header = static_cast<WORD*>(GlobalLock(memory));
  header[0] = kResponse | kRelease;
  header[1] = CF_TEXT;
  memcpy(reinterpret_cast<char*>(header) + kHeader, bytes.data(), bytes.size());
  GlobalUnlock(memory);
  PostMessageA(client, WM_DDE_DATA, reinterpret_cast<WPARAM>(server),
               PackDDElParam(WM_DDE_DATA, reinterpret_cast<UINT_PTR>(memory), item));
}

void Initiate(HWND client, ATOM application, ATOM topic) {
  const std::string askedFor = NameOf(application), askedAbout = NameOf(topic);
  const bool serves = application == 0 || askedFor == service;  // no name requests any server
  const bool mine = serves && ("," + topics + ",").find("," + askedAbout + ",") != std::string::npos;
  Log("connect " + askedFor + "|" + askedAbout + (mine ? ": accepted" : ": not mine"));
  if (!mine) return;
  HWND conversation = CreateWindowExA(0, "DdeServer", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  conversations[conversation] = askedAbout;
  SendMessageA(client, WM_DDE_ACK, reinterpret_cast<WPARAM>(conversation),
               MAKELPARAM(GlobalAddAtomA(service.c_str()), GlobalAddAtomA(askedAbout.c_str())));
}

void Request(HWND server, HWND client, UINT_PTR format, UINT_PTR item) {
  const std::string name = NameOf(item);
  if (mode.starts_with("delay=")) Sleep(atoi(mode.c_str() + 6));
  std::string bytes;
  if (name == "Topics") bytes = topics + '\0';
  if (cells.contains(name)) bytes = cells[name];
  if (name.starts_with("Bytes")) {
    for (int i = 0; i < atoi(name.c_str() + 5); ++i) bytes += static_cast<char>('a' + i % 26);
  }
  if (mode == "refuse" || format != CF_TEXT || bytes.empty()) {
    PostAck(server, client, false, item);
    return Log("request " + name + ": refused");
  }
  PostData(server, client, bytes, item);
  Log("request " + name + ": answered with " + std::to_string(bytes.size()) + " bytes");
}

void Poke(HWND server, HWND client, HGLOBAL memory, UINT_PTR item) {
  const bool takes = mode != "refuse";
  const std::string bytes = BytesOf(memory, kHeader);
  const std::string name = NameOf(item);
  if (takes) {
    cells[name] = bytes;
    GlobalFree(memory);
  }
  PostAck(server, client, takes, item);
  Log("poke " + name + " " + Shown(bytes) + (takes ? "" : ": refused"));
}

void Execute(HWND server, HWND client, HGLOBAL command) {
  const bool takes = mode != "refuse";
  const std::string bytes = BytesOf(command, 0);
  PostAck(server, client, takes, reinterpret_cast<UINT_PTR>(command));
  if (mode == "leave") PostMessageA(client, WM_DDE_TERMINATE, reinterpret_cast<WPARAM>(server), 0);
  Log("execute " + conversations[server] + " " + Shown(bytes) + (takes ? "" : ": refused"));
}

LRESULT CALLBACK Serve(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  HWND client = reinterpret_cast<HWND>(wParam);
  UINT_PTR low = 0, high = 0;
  switch (message) {
    case WM_DDE_INITIATE: Initiate(client, LOWORD(lParam), HIWORD(lParam)); return 0;
    case WM_DDE_REQUEST: Request(window, client, LOWORD(lParam), HIWORD(lParam)); return 0;
    case WM_DDE_POKE:
      UnpackDDElParam(message, lParam, &low, &high);
      FreeDDElParam(message, lParam);
      Poke(window, client, reinterpret_cast<HGLOBAL>(low), high);
      return 0;
    case WM_DDE_EXECUTE: Execute(window, client, reinterpret_cast<HGLOBAL>(lParam)); return 0;
    case WM_DDE_TERMINATE:
      Log("disconnect " + conversations[window]);
      PostMessageA(client, WM_DDE_TERMINATE, reinterpret_cast<WPARAM>(window), 0);
      DestroyWindow(window);
      return 0;
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 4) return 2;
  logFile = fopen(arguments[1], "a");
  if (!logFile) return 2;
  service = arguments[2];
  topics = arguments[3];
  if (count > 4) mode = arguments[4];
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = Serve;
  windowClass.lpszClassName = "DdeServer";
  RegisterClassA(&windowClass);
  // A hidden top-level window: broadcasts reach only top-level windows.
  HWND window = CreateWindowExA(0, "DdeServer", "", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
  if (!window) return 3;
  Log("ready");
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
  return 0;
}
