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

#include <shellapi.h>

#include <string>

#include "app/optical_flow_chart.h"
#include "framework/modules.h"
#include "gallery/command_line.h"
#include "gallery/frame.h"
#include "gallery/pages.h"
#include "gallery/pages/mesh_view.h"
#include "gallery/resource_ids.h"
#include "toolkit/languages.h"
#include "toolkit/scaled_dialog.h"

namespace {

constexpr int kExitNoWindow = 1, kExitRejected = 2;

int ShowHelp(HINSTANCE instance, const gallery::StartOptions& options) {
  kv::modules = {.resources = instance, .application = instance};
  kv::LoadLanguages(gallery::kFileStem, options.language);
  const std::wstring& rejected = options.rejected;
  std::wstring help = gallery::TextWith(IDS_HELP_TEXT, gallery::PageNames().c_str(), gallery::LanguageCodes().c_str());
  if (!rejected.empty()) help = gallery::TextWith(IDS_HELP_REJECTED, rejected.c_str()) + L"\n\n" + help;
  if (!kv::PrintText(rejected.empty() ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE, help)) {
    kv::ShowMessage(nullptr, help, kv::ResourceText(IDS_GALLERY_CAPTION),
                    rejected.empty() ? MB_ICONINFORMATION : MB_ICONWARNING);
  }
  kv::UnloadLanguages();
  return rejected.empty() ? 0 : kExitRejected;
}

// From the tool the gallery shows the chart and nothing else.
int ShowFrame(HINSTANCE instance, const gallery::StartOptions& options) {
  kv::RegisterChartClass(instance, TRUE);
  gallery::RegisterMeshViewClass(instance, TRUE);
  const int exitCode = kv::RunDialog(instance, gallery::FrameDialog(options));
  gallery::RegisterMeshViewClass(instance, FALSE);
  kv::RegisterChartClass(instance, FALSE);
  return exitCode < 0 ? kExitNoWindow : exitCode;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  int argc = 0;
  wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
  const gallery::StartOptions options = gallery::ParseCommandLine(argc, argv);
  LocalFree(argv);
  return options.help || !options.rejected.empty() ? ShowHelp(instance, options) : ShowFrame(instance, options);
}
