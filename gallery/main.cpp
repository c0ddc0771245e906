// kvgallery: shows every control and service of the library, page by page.
//
//   kvgallery                 begins with the first page
//   kvgallery --page NAME     begins with that page
//   kvgallery --walk          shows each page in turn: prints its name to standard output once it has settled, waits
//                             for a line on standard input, goes on; ends after the last. For scripts that take
//                             pictures.
#include <windows.h>

#include <commctrl.h>

#include <cstdlib>
#include <cstring>

#include "framework/dialog.h"
#include "framework/modules.h"
#include "gallery/classes.h"
#include "gallery/frame.h"
#include "gallery/languages.h"
#include "gallery/pages.h"

namespace {

constexpr DWORD kSettleMs = 1500;

void Dispatch(MSG* message) {
  if (kv::ModelessDialogs(nullptr, message, kv::kModelessDispatch)) return;
  TranslateMessage(message);
  DispatchMessageA(message);
}

void PumpFor(DWORD milliseconds) {
  for (const DWORD start = GetTickCount(); GetTickCount() - start < milliseconds;) {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) Dispatch(&message);
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
  }
}

void WaitForLine() {
  char character = 0;
  DWORD read = 0;
  while (ReadFile(GetStdHandle(STD_INPUT_HANDLE), &character, 1, &read, nullptr) && read && character != '\n') {
  }
}

void Walk(HWND frame) {
  for (size_t i = 0; i < gallery::AllPages().size(); ++i) {
    gallery::SelectPage(frame, static_cast<int>(i));
    PumpFor(kSettleMs);
    const char* name = gallery::AllPages()[i].name;
    DWORD written = 0;
    HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    WriteFile(output, name, static_cast<DWORD>(std::strlen(name)), &written, nullptr);
    WriteFile(output, "\n", 1, &written, nullptr);
    WaitForLine();
  }
  PostMessageA(frame, WM_CLOSE, 0, 0);
}

int FirstPage(int argc, char** argv) {
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--page") != 0) continue;
    const int index = gallery::PageIndex(argv[i + 1]);
    if (index >= 0) return index;
  }
  return 0;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  kv::modules = {.resources = instance, .application = instance};
  LoadLibraryA("RichEd32.dll");
  InitCommonControls();
  gallery::RegisterAllClasses(instance, TRUE);
  gallery::BeginWithStoredLanguage();
  kv::ModelessDialogs(nullptr, nullptr, kv::kModelessReset);
  HWND frame = CreateDialogParamW(instance, gallery::kFrameTemplate, nullptr, gallery::FrameProcedure,
                                  FirstPage(__argc, __argv));
  if (frame) {
    ShowWindow(frame, SW_SHOW);
    if (__argc > 1 && std::strcmp(__argv[1], "--walk") == 0) Walk(frame);
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) Dispatch(&message);
  }
  gallery::EndLanguages();
  gallery::RegisterAllClasses(instance, FALSE);
  return frame ? 0 : 1;
}
