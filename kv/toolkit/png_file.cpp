#include "kv/toolkit/png_file.h"

#include <objidl.h>

#include <cstddef>
#include <string_view>

#include "kv/framework/file_path.h"
#include "kv/framework/modules.h"
#include "kv/framework/output_file.h"

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
  int(WINAPI* save)(Image* image, IStream* stream, const CLSID* encoder, const void* parameters);
  int(WINAPI* dispose)(Image* image);
  decltype(&CreateStreamOnHGlobal) createStream;
};

constexpr CLSID kPngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

const GdiPlus* System() {
  static const GdiPlus functions = [] {
    GdiPlus found{};
    const HMODULE library = LoadLibraryA("gdiplus.dll");
    FindProcedure(library, "GdiplusStartup", &found.start);
    FindProcedure(library, "GdiplusShutdown", &found.shutDown);
    FindProcedure(library, "GdipCreateBitmapFromHBITMAP", &found.fromBitmap);
    FindProcedure(library, "GdipSaveImageToStream", &found.save);
    FindProcedure(library, "GdipDisposeImage", &found.dispose);
    FindProcedure(LoadLibraryA("ole32.dll"), "CreateStreamOnHGlobal", &found.createStream);
    return found;
  }();
  const bool isComplete = functions.start && functions.shutDown && functions.fromBitmap && functions.save &&
                          functions.dispose && functions.createStream;
  return isComplete ? &functions : nullptr;
}

bool Encode(const GdiPlus& system, HBITMAP bitmap, IStream* stream) {
  ULONG_PTR token = 0;
  const StartupInput input;
  if (system.start(&token, &input, nullptr) != 0) return false;
  Image* image = nullptr;
  bool done = system.fromBitmap(bitmap, nullptr, &image) == 0;
  if (done) {
    done = system.save(image, stream, &kPngEncoder, nullptr) == 0;
    system.dispose(image);
  }
  system.shutDown(token);
  return done;
}

bool Write(const wchar_t* path, HGLOBAL memory, IStream* stream) {
  STATSTG facts{};
  if (FAILED(stream->Stat(&facts, STATFLAG_NONAME))) return false;
  const auto* bytes = static_cast<const char*>(GlobalLock(memory));
  const bool done = bytes && WriteWholeFile(path, {bytes, static_cast<size_t>(facts.cbSize.QuadPart)});
  const DWORD error = GetLastError();
  if (bytes) GlobalUnlock(memory);
  SetLastError(error);
  return done;
}

}  // namespace

bool SaveBitmapAsPng(HBITMAP bitmap, const wchar_t* path) {
  const GdiPlus* system = System();
  SetLastError(ERROR_NOT_SUPPORTED);
  if (!system || !IsReadableText(path)) return false;
  const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 0);
  IStream* stream = nullptr;
  if (!memory || FAILED(system->createStream(memory, FALSE, &stream))) return false;
  const bool saved = Encode(*system, bitmap, stream) && Write(path, memory, stream);
  const DWORD error = GetLastError();
  stream->Release();
  GlobalFree(memory);
  SetLastError(error);
  return saved;
}

}  // namespace kv
