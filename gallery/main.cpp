// kvgallery: demonstrates every control and service of the library, one page each.
//
//   kvgallery                   starts with the page and the language used last
//   kvgallery --page NAME       starts with that page
//   kvgallery --language CODE   starts in that language (GE or de), and stores it
//   kvgallery --help            prints the names and codes to standard output, or in a box if there is none
//   kvgallery --version         prints the version
//   kvgallery --walk            shows each page in turn: prints its name to standard output when it is complete, waits
//                               for a line on standard input, and continues; ends after the last. For scripts that take
//                               screenshots.
//
// An unknown option or value prints an error and the help to standard error (or a box); the exit code is 2.
#include <windows.h>

#include <string>
#include <string_view>

#include "camera/optical_flow_chart.h"
#include "gallery/frame.h"
#include "gallery/pages.h"
#include "gallery/pages/mesh_view.h"
#include "gallery/resource_ids.h"
#include "kv/framework/version.h"
#include "kv/toolkit/arguments.h"
#include "kv/toolkit/command_line.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace {

constexpr int kExitNoWindow = 1;

bool ParsePage(std::string_view name, int* page) {
  const int found = gallery::PageIndex(name);
  if (found >= 0) *page = found;
  return found >= 0;
}

std::wstring DescribeProgram() {
  return kv::TextWith(IDS_HELP_TEXT, gallery::PageNames(), kv::LanguageCodes());
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  gallery::StartOptions start;
  const kv::Option options[] = {{"--page", "NAME", "", kv::ParsedBy<ParsePage>(&start.page, "a page")},
                                {"--walk", nullptr, "", &start.walk}};
  kv::CommandLine line{.program = "kvgallery",
                       .version = KV_VERSION_TEXT,
                       .options = options,
                       .languageFiles = gallery::kFileStem,
                       .describe = DescribeProgram,
                       .rejected = IDS_HELP_REJECTED};
  if (!kv::ReadCommandLine(instance, &line)) return line.exitCode;
  start.language = line.language;
  kv::RegisterChartClass(instance, TRUE);
  gallery::RegisterMeshViewClass(instance, TRUE);
  const int exitCode = kv::RunDialog(instance, gallery::FrameDialog(start));
  gallery::RegisterMeshViewClass(instance, FALSE);
  kv::RegisterChartClass(instance, FALSE);
  return exitCode < 0 ? kExitNoWindow : exitCode;
}
