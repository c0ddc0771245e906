// kvgallery: shows every control and service of the library, page by page.
//
//   kvgallery                   begins with the page and in the language that were shown last
//   kvgallery --page NAME       begins with that page
//   kvgallery --language CODE   begins in that language (GE or de), and keeps it
//   kvgallery --help            tells the names and codes: on standard output, or in a box where there is none
//   kvgallery --walk            shows each page in turn: prints its name to standard output once it has settled, waits
//                               for a line on standard input, goes on; ends after the last. For scripts that take
//                               pictures.
//
// An option or a value that there is not is refused with the help on standard error (or in a box), and the exit code 2.
#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>

#include <cstring>
#include <string>

#include "framework/modules.h"
#include "gallery/classes.h"
#include "gallery/command_line.h"
#include "gallery/frame.h"
#include "gallery/keyboard.h"
#include "gallery/languages.h"
#include "gallery/pages.h"
#include "gallery/resource_ids.h"
#include "gallery/texts.h"

namespace {

constexpr DWORD kSettleMs = 1500;
constexpr int kExitNoWindow = 1, kExitRefused = 2;

void PumpFor(HWND frame, DWORD milliseconds) {
  for (const DWORD start = GetTickCount(); GetTickCount() - start < milliseconds;) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) gallery::Dispatch(frame, &message);
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
  }
}

// False when that stream leads nowhere, as it does for a program of windows that nobody redirected.
bool Print(DWORD stream, const std::wstring& text) {
  const int characters = static_cast<int>(text.size());
  std::string bytes(WideCharToMultiByte(CP_UTF8, 0, text.c_str(), characters, nullptr, 0, nullptr, nullptr), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.c_str(), characters, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                      nullptr);
  DWORD written = 0;
  return WriteFile(GetStdHandle(stream), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != 0;
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
    PumpFor(frame, kSettleMs);
    const char* name = gallery::AllPages()[i].name;
    Print(STD_OUTPUT_HANDLE, std::wstring(name, name + std::strlen(name)) + L"\n");
    WaitForLine();
  }
  PostMessageW(frame, WM_CLOSE, 0, 0);
}

int ShowHelp(const std::wstring& refused) {
  std::wstring help = gallery::TextWith(IDS_HELP_TEXT, gallery::PageNames().c_str(), gallery::LanguageCodes().c_str());
  if (!refused.empty()) help = gallery::TextWith(IDS_HELP_REFUSED, refused.c_str()) + L"\n\n" + help;
  if (!Print(refused.empty() ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE, help)) {
    gallery::ShowMessage(nullptr, help, IDS_GALLERY_CAPTION, refused.empty() ? MB_ICONINFORMATION : MB_ICONWARNING);
  }
  return refused.empty() ? 0 : kExitRefused;
}

int ShowFrame(HINSTANCE instance, const gallery::StartOptions& options) {
  const HWND frame =
      CreateDialogParamW(instance, gallery::kFrameTemplate, nullptr, gallery::FrameProcedure, options.page);
  if (!frame) return kExitNoWindow;
  if (!IsWindowVisible(frame)) ShowWindow(frame, SW_SHOW);
  if (options.walk) Walk(frame);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) gallery::Dispatch(frame, &message);
  return 0;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  kv::modules = {.resources = instance, .application = instance};
  LoadLibraryA("RichEd32.dll");
  InitCommonControls();
  int argc = 0;
  wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
  const gallery::StartOptions options = gallery::ParseCommandLine(argc, argv);
  LocalFree(argv);
  gallery::BeginLanguages(options.language);
  int exitCode = 0;
  if (options.help || !options.refused.empty()) {
    exitCode = ShowHelp(options.refused);
  } else {
    gallery::RegisterAllClasses(instance, TRUE);
    exitCode = ShowFrame(instance, options);
    gallery::RegisterAllClasses(instance, FALSE);
  }
  gallery::EndLanguages();
  return exitCode;
}
