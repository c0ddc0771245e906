#include "kv/toolkit/png_file.h"

#include <string>

#include "kv/framework/file_path.h"
#include "kv/framework/modules.h"

namespace kv {

namespace {

// The functions of GDI+'s flat API that are used here. The system's header declares C++ classes.
struct StartupInput {
  UINT32 version = 1;
  void* debugCallback = nullptr;
  BOOL suppressBackgroundThread = FALSE, suppressExternalCodecs = FALSE;
};
using Image = void;

struct GdiPlus {
  int(WINAPI* start)(ULONG_PTR* token, const StartupInput* input, void* output);
  void(WINAPI* shutDown)(ULONG_PTR token);
  int(WINAPI* fromBitmap)(HBITMAP bitmap, HPALETTE palette, Image** image);
  int(WINAPI* save)(Image* image, const wchar_t* path, const CLSID* encoder, const void* parameters);
  int(WINAPI* dispose)(Image* image);
};

constexpr CLSID kPngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

const GdiPlus* System() {
  static const GdiPlus functions = [] {
    GdiPlus found{};
    const HMODULE library = LoadLibraryA("gdiplus.dll");
    FindProcedure(library, "GdiplusStartup", &found.start);
    FindProcedure(library, "GdiplusShutdown", &found.shutDown);
    FindProcedure(library, "GdipCreateBitmapFromHBITMAP", &found.fromBitmap);
    FindProcedure(library, "GdipSaveImageToFile", &found.save);
    FindProcedure(library, "GdipDisposeImage", &found.dispose);
    return found;
  }();
  const bool isComplete =
      functions.start && functions.shutDown && functions.fromBitmap && functions.save && functions.dispose;
  return isComplete ? &functions : nullptr;
}

bool Encode(const GdiPlus& system, HBITMAP bitmap, const wchar_t* path) {
  ULONG_PTR token = 0;
  const StartupInput input;
  if (system.start(&token, &input, nullptr) != 0) return false;
  Image* image = nullptr;
  bool saved = system.fromBitmap(bitmap, nullptr, &image) == 0;
  if (saved) {
    saved = system.save(image, path, &kPngEncoder, nullptr) == 0;
    system.dispose(image);
  }
  system.shutDown(token);
  return saved;
}

}  // namespace

BOOL SaveBitmapAsPng(HBITMAP bitmap, const wchar_t* path) {
  if (!System() || !IsReadableText(path)) return FALSE;
  // An existing file is replaced only by a complete image.
  const std::wstring part = std::wstring(path) + L"." + std::to_wstring(GetCurrentProcessId()) + L".part";
  if (Encode(*System(), bitmap, part.c_str()) && MoveFileExW(part.c_str(), path, MOVEFILE_REPLACE_EXISTING))
    return TRUE;
  DeleteFileW(part.c_str());
  return FALSE;
}

}  // namespace kv
