// For the build with sanitizers only: the few functions of Windows and its runtime that the parts under test and their
// tests call, with the results on which these parts rely. No windows, files or registry. Programs do not use it; ./test
// runs the same code with the real functions.
#include <windows.h>

#include <pthread.h>
#include <sanitizer/asan_interface.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr UINT_PTR kPage = 4096;

// Memory blocks by start address, with their size.
std::map<const void*, SIZE_T> areas;  // from VirtualAlloc
struct Block {
  SIZE_T size;
  UINT locks;
};
std::map<const void*, Block> blocks;  // from GlobalAlloc; the handle is the block's address

// Probes a byte by copying it through a pipe: the system call fails where an access would crash. It bypasses the
// sanitizers, for which a probe is an access.
bool CanTouch(UINT_PTR place, bool writing) {
  static int ends[2] = {-1, -1};
  if (ends[0] < 0 && pipe(ends) != 0) std::abort();
  if (syscall(SYS_write, ends[1], place, 1) != 1) return false;
  if (writing && syscall(SYS_read, ends[0], place, 1) == 1) return true;
  char spare;
  if (!writing) return syscall(SYS_read, ends[0], &spare, 1) == 1;
  syscall(SYS_read, ends[0], &spare, 1);
  return false;
}

BOOL IsBad(const void* start, UINT_PTR size, bool writing) {
  const auto first = reinterpret_cast<UINT_PTR>(start);
  if (size == 0) return FALSE;
  const UINT_PTR last = first + size - 1;
  if (last < first) return TRUE;
  for (UINT_PTR place = first; place < last; place = (place | (kPage - 1)) + 1) {
    if (!CanTouch(place, writing)) return TRUE;
    if ((place | (kPage - 1)) == ~UINT_PTR{0}) break;
  }
  return !CanTouch(last, writing);
}

template <class Character>
BOOL IsBadText(const Character* text, UINT_PTR most) {
  for (UINT_PTR i = 0; i < most; ++i) {
    if (IsBad(text + i, sizeof(Character), false)) return TRUE;
    if (text[i] == 0) return FALSE;
  }
  return FALSE;
}

// The result of the runtime's bounded formatters: no terminator when the text fills the buffer, -1 when it is longer.
template <class Character>
int PutBounded(Character* buffer, size_t count, const std::vector<Character>& text, int length) {
  if (length < 0) return -1;
  std::copy_n(text.data(), std::min<size_t>(static_cast<size_t>(length) + 1, count), buffer);
  return static_cast<size_t>(length) > count ? -1 : length;
}

}  // namespace

// Returns memory that is never freed, like the runtime's.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:argz_add_sep";
}

// ---- Pointers and memory --------------------------------------------------------------------------------------------

BOOL WINAPI IsBadReadPtr(LPCVOID start, UINT_PTR size) {
  return IsBad(start, size, false);
}
BOOL WINAPI IsBadWritePtr(LPVOID start, UINT_PTR size) {
  return IsBad(start, size, true);
}
BOOL WINAPI IsBadStringPtrA(LPCSTR text, UINT_PTR most) {
  return IsBadText(text, most);
}
BOOL WINAPI IsBadStringPtrW(LPCWSTR text, UINT_PTR most) {
  return IsBadText(text, most);
}

LPVOID WINAPI VirtualAlloc(LPVOID at, SIZE_T size, DWORD type, DWORD) {
  if (type == MEM_COMMIT && at) return mprotect(at, size, PROT_READ | PROT_WRITE) == 0 ? at : nullptr;
  const int access = type == MEM_RESERVE ? PROT_NONE : PROT_READ | PROT_WRITE;
  void* area = mmap(nullptr, size, access, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (area == MAP_FAILED) return nullptr;
  areas[area] = size;
  return area;
}
BOOL WINAPI VirtualFree(LPVOID area, SIZE_T, DWORD) {
  return munmap(area, areas[area]) == 0 && areas.erase(area) == 1;
}
// Whole pages, as on Windows; all of them were writable.
BOOL WINAPI VirtualProtect(LPVOID start, SIZE_T size, DWORD access, LPDWORD previous) {
  const UINT_PTR offset = reinterpret_cast<UINT_PTR>(start) % kPage;
  *previous = PAGE_READWRITE;
  return mprotect(static_cast<char*>(start) - offset, size + offset,
                  access == PAGE_READONLY ? PROT_READ : PROT_READ | PROT_WRITE) == 0;
}

HGLOBAL WINAPI GlobalAlloc(UINT, SIZE_T size) {
  void* block = std::calloc(1, size);
  if (block) blocks[block] = {size, 0};
  return block;
}
HGLOBAL WINAPI GlobalFree(HGLOBAL block) {
  if (!blocks.erase(block)) return block;
  std::free(block);
  return nullptr;
}
LPVOID WINAPI GlobalLock(HGLOBAL block) {
  const auto found = blocks.find(block);
  if (found == blocks.end()) return nullptr;
  ++found->second.locks;
  return block;
}
BOOL WINAPI GlobalUnlock(HGLOBAL block) {
  const auto found = blocks.find(block);
  if (found == blocks.end() || found->second.locks == 0) return FALSE;
  return --found->second.locks > 0;
}
SIZE_T WINAPI GlobalSize(HGLOBAL block) {
  const auto found = blocks.find(block);
  return found == blocks.end() ? 0 : found->second.size;
}
UINT WINAPI GlobalFlags(HGLOBAL block) {
  const auto found = blocks.find(block);
  return found == blocks.end() ? GMEM_INVALID_HANDLE : found->second.locks;
}

// ---- Rectangles -----------------------------------------------------------------------------------------------------

BOOL WINAPI IsRectEmpty(const RECT* area) {
  return area->left >= area->right || area->top >= area->bottom;
}
BOOL WINAPI EqualRect(const RECT* one, const RECT* other) {
  return std::memcmp(one, other, sizeof(*one)) == 0;
}
BOOL WINAPI InflateRect(LPRECT area, INT dx, INT dy) {
  *area = {area->left - dx, area->top - dy, area->right + dx, area->bottom + dy};
  return TRUE;
}
BOOL WINAPI IntersectRect(LPRECT common, const RECT* one, const RECT* other) {
  *common = {std::max(one->left, other->left), std::max(one->top, other->top), std::min(one->right, other->right),
             std::min(one->bottom, other->bottom)};
  if (!IsRectEmpty(common) && !IsRectEmpty(one) && !IsRectEmpty(other)) return TRUE;
  *common = {};
  return FALSE;
}

// Used by drawing code that no test calls, but that is linked.
BOOL WINAPI GdiFlush() {
  return TRUE;
}

// ---- Text and numbers -----------------------------------------------------------------------------------------------

LPSTR WINAPI lstrcpynA(LPSTR target, LPCSTR source, INT size) {
  std::snprintf(target, static_cast<size_t>(size), "%s", source);
  return target;
}
INT WINAPI lstrlenW(LPCWSTR text) {
  return static_cast<INT>(std::wcslen(text));
}
// Callers only test for equality; the order differs from Windows'.
INT WINAPI lstrcmpW(LPCWSTR one, LPCWSTR other) {
  return std::wcscmp(one, other);
}
BOOL WINAPI IsCharAlphaA(CHAR character) {
  const int upper = character & ~0x20;
  return upper >= 'A' && upper <= 'Z';
}
INT WINAPI MulDiv(INT number, INT factor, INT divisor) {
  const long long product = static_cast<long long>(number) * factor;
  return static_cast<INT>((product + (product < 0 ? -1 : 1) * divisor / 2) / divisor);
}
// UTF-8 is validated as strictly as with MB_ERR_INVALID_CHARS; every other code page is Latin 1.
INT WINAPI MultiByteToWideChar(UINT codePage, DWORD, LPCSTR text, INT length, LPWSTR buffer, INT size) {
  const size_t bytes = length < 0 ? std::strlen(text) + 1 : static_cast<size_t>(length);
  std::wstring wide;
  std::mbstate_t state{};
  for (size_t at = 0; at < bytes;) {
    wchar_t character = static_cast<unsigned char>(text[at]);
    size_t used = 1;
    if (codePage == CP_UTF8) {
      static const _locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
      const _locale_t former = uselocale(utf8);
      used = std::mbrtowc(&character, text + at, bytes - at, &state);
      uselocale(former);
      if (used > bytes) return 0;
      used = std::max<size_t>(used, 1);
    }
    wide += character;
    at += used;
  }
  if (size == 0) return static_cast<INT>(wide.size());
  if (wide.size() > static_cast<size_t>(size)) return 0;
  std::copy(wide.begin(), wide.end(), buffer);
  return static_cast<INT>(wide.size());
}

_locale_t _create_locale(int, const char* name) {
  return newlocale(LC_ALL_MASK, name, nullptr);
}
int _vsnprintf_l(char* buffer, size_t count, const char* format, _locale_t locale, va_list arguments) {
  const _locale_t former = uselocale(locale ? locale : LC_GLOBAL_LOCALE);
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::vector<char> text(static_cast<size_t>(std::max(length, 0)) + 1);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  uselocale(former);
  return PutBounded(buffer, count, text, length);
}
int _vsnwprintf_l(wchar_t* buffer, size_t count, const wchar_t* format, _locale_t locale, va_list arguments) {
  // Windows' runtime reads "%s" as wide text.
  std::wstring standard;
  for (const wchar_t* at = format; *at; ++at) {
    standard += *at;
    if (*at != L'%') continue;
    while (at[1] && std::wcschr(L"-+ #0123456789.*", at[1])) standard += *++at;
    if (at[1] == L's') standard += L'l';
    if (at[1]) standard += *++at;
  }
  const _locale_t former = uselocale(locale ? locale : LC_GLOBAL_LOCALE);
  std::vector<wchar_t> text(8192);
  const int length = std::vswprintf(text.data(), text.size(), standard.c_str(), arguments);
  uselocale(former);
  return PutBounded(buffer, count, text, length);
}

// ---- Time, and what the fuzzer uses ---------------------------------------------------------------------------------

void WINAPI GetLocalTime(SYSTEMTIME* now) {
  timespec time{};
  clock_gettime(CLOCK_REALTIME, &time);
  tm parts{};
  localtime_r(&time.tv_sec, &parts);
  const auto word = [](long value) { return static_cast<WORD>(value); };
  *now = {.wYear = word(parts.tm_year + 1900),
          .wMonth = word(parts.tm_mon + 1),
          .wDayOfWeek = word(parts.tm_wday),
          .wDay = word(parts.tm_mday),
          .wHour = word(parts.tm_hour),
          .wMinute = word(parts.tm_min),
          .wSecond = word(parts.tm_sec),
          .wMilliseconds = word(time.tv_nsec / 1000000)};
}
BOOL WINAPI QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
  frequency->QuadPart = 1'000'000'000;
  return TRUE;
}
BOOL WINAPI QueryPerformanceCounter(LARGE_INTEGER* count) {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  count->QuadPart = time.tv_sec * 1'000'000'000LL + time.tv_nsec;
  return TRUE;
}
ULONGLONG WINAPI GetTickCount64() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<ULONGLONG>(time.tv_sec) * 1000 + static_cast<ULONGLONG>(time.tv_nsec / 1000000);
}
VOID WINAPI Sleep(DWORD milliseconds) {
  usleep(milliseconds * 1000);
}
VOID WINAPI ExitProcess(DWORD code) {
  _exit(static_cast<int>(code));
}
UINT WINAPI SetErrorMode(UINT) {
  return 0;
}
// A sanitizer's report replaces a crash on Windows.
static LPTOP_LEVEL_EXCEPTION_FILTER onCrash;
LPTOP_LEVEL_EXCEPTION_FILTER WINAPI SetUnhandledExceptionFilter(LPTOP_LEVEL_EXCEPTION_FILTER filter) {
  onCrash = filter;
  __sanitizer_set_death_callback([] {
    EXCEPTION_RECORD record{};
    EXCEPTION_POINTERS pointers{&record, nullptr};
    onCrash(&pointers);
  });
  return nullptr;
}
HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE start, LPVOID data, DWORD, LPDWORD) {
  struct Start {
    LPTHREAD_START_ROUTINE procedure;
    void* data;
  };
  pthread_t thread;
  const auto run = [](void* given) -> void* {
    const Start begun = *static_cast<Start*>(given);
    delete static_cast<Start*>(given);
    begun.procedure(begun.data);
    return nullptr;
  };
  if (pthread_create(&thread, nullptr, run, new Start{start, data}) != 0) return nullptr;
  pthread_detach(thread);
  return reinterpret_cast<HANDLE>(thread);
}
BOOL WINAPI CloseHandle(HANDLE) {
  return TRUE;
}
