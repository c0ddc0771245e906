#include <windows.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "gallery/pages/notes_file.h"
#include "kv/framework/dialog_texts.h"
#include "tests/fuzz/targets.h"
#include "tests/support/test_window.h"

namespace fuzz {

namespace {

// ---- Notes ----------------------------------------------------------------------------------------------------------

std::vector<std::string> Notes() {
  return {"plain\r\ntext",
          "\xEF\xBB\xBF"
          "gr\xC3\xB6\xC3\x9F"
          "er \xF0\x9F\x98\x80 \xE2\x82\xAC",
          ""};
}

const char* FeedNotes(std::string_view input, bool* accepted) {
  std::wstring text = L"as it was";
  *accepted = gallery::DecodeNotes(input, &text);
  if (!*accepted) return text == L"as it was" ? nullptr : "rejected notes change nothing";
  if (input.starts_with("\xEF\xBB\xBF")) input.remove_prefix(3);
  std::string back(input.size() + 8, '\0');
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), back.data(),
                                       static_cast<int>(back.size()), nullptr, nullptr);
  back.resize(static_cast<size_t>(size));
  return back == input ? nullptr : "what was read is written back the same";
}

// ---- Dialog texts of a language -------------------------------------------------------------------------------------

// The resource entry of this program's template. Its offset is changed to that of the input.
IMAGE_RESOURCE_DATA_ENTRY* TemplateEntry(int id) {
  auto* entry =
      reinterpret_cast<IMAGE_RESOURCE_DATA_ENTRY*>(FindResourceW(nullptr, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(5)));
  DWORD before = 0;
  VirtualProtect(entry, sizeof(*entry), PAGE_READWRITE, &before);
  return entry;
}

std::vector<std::string> Templates() {
  std::vector<std::string> templates;
  for (const int id : {1, 2}) {
    const HRSRC resource = FindResourceW(nullptr, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(5));
    const auto* data = static_cast<const char*>(LockResource(LoadResource(nullptr, resource)));
    templates.emplace_back(data, SizeofResource(nullptr, resource));
  }
  return templates;
}

const char* FeedTemplate(std::string_view input, bool* accepted) {
  static const kvtest::GuardedBytes area(kAreaSize);
  static IMAGE_RESOURCE_DATA_ENTRY* entry = TemplateEntry(1);
  static HWND dialog = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
  // The linker gives resources even offsets and sizes.
  const std::string_view put = PutAtEnd(area, input.substr(0, input.size() / 4 * 4));
  entry->OffsetToData = static_cast<DWORD>(put.data() - reinterpret_cast<const char*>(GetModuleHandleA(nullptr)));
  entry->Size = static_cast<DWORD>(put.size());
  *accepted = kv::SetDialogTexts(dialog, nullptr, MAKEINTRESOURCEW(1)) != FALSE;
  return nullptr;
}

}  // namespace

std::vector<Target> Targets() {
  std::vector<Target> all = PlainTargets();
  all.push_back({"notes", 400, Notes, kByteWords, FeedNotes});
  all.push_back({"dialog texts of a language", 600, Templates, kByteWords, FeedTemplate});
  return all;
}

}  // namespace fuzz
