#include "kv/framework/dialog_template.h"

#include <cstring>

#include "kv/framework/file_path.h"

namespace kv {

namespace {

// Reads a dialog template: words, double words and texts of variable length. Reading beyond the end returns 0 and sets
// `failed`.
struct TemplateReader {
  const BYTE* data;
  size_t size;
  size_t at = 0;
  bool failed = false;

  bool Has(size_t bytes) {
    if (bytes > size - at) failed = true;
    return !failed;
  }
  void Skip(size_t bytes) {
    if (Has(bytes)) at += bytes;
  }
  template <class Value>
  Value Take() {
    Value value{};
    if (Has(sizeof(value))) {
      std::memcpy(&value, data + at, sizeof(value));
      at += sizeof(value);
    }
    return value;
  }
  void AlignToDword() { Skip((sizeof(DWORD) - at % sizeof(DWORD)) % sizeof(DWORD)); }

  // Returns a zero-terminated text in the template; empty at its end.
  const wchar_t* Text() {
    const auto* text = reinterpret_cast<const wchar_t*>(data + at);
    while (Take<wchar_t>() != L'\0') {
    }
    return failed ? L"" : text;
  }
  // Returns a text; empty for a resource number in its place.
  const wchar_t* TextOrNumber() {
    constexpr WORD kNumberFollows = 0xFFFF;
    WORD first = 0;
    if (Has(sizeof(first))) std::memcpy(&first, data + at, sizeof(first));
    if (first != kNumberFollows) return Text();
    Skip(2 * sizeof(WORD));
    return L"";
  }
};

constexpr size_t kRectSize = 4 * sizeof(short);

// Returns the number of controls.
int ReadHeader(TemplateReader* reader, DialogTemplate* read, bool* extended) {
  constexpr DWORD kExtendedMark = 0xFFFF0001;  // version 1 and the signature
  DWORD style = reader->Take<DWORD>();
  *extended = style == kExtendedMark;
  if (*extended) {
    reader->Skip(2 * sizeof(DWORD));  // help id, extended style
    style = reader->Take<DWORD>();
  } else {
    reader->Skip(sizeof(DWORD));  // extended style
  }
  const int count = reader->Take<WORD>();
  reader->Skip(kRectSize);
  reader->TextOrNumber();  // menu
  read->windowClass = reader->TextOrNumber();
  const wchar_t* caption = reader->Text();
  if (style & DS_SETFONT) {
    reader->Skip(*extended ? 3 * sizeof(WORD) : sizeof(WORD));  // size; weight, italics and character set
    reader->Text();                                             // font name
  }
  if (!reader->failed) read->caption = caption;
  return count;
}

TemplateControl ReadControl(TemplateReader* reader, bool extended) {
  reader->AlignToDword();
  reader->Skip((extended ? 3 : 2) * sizeof(DWORD) + kRectSize);  // help id, styles, rectangle
  TemplateControl control{};
  control.id = extended ? reader->Take<int>() : reader->Take<WORD>();
  if (control.id == 0xFFFF) control.id = -1;
  control.windowClass = reader->TextOrNumber();
  control.text = reader->TextOrNumber();
  const auto creationDataSize = reader->Take<WORD>();
  reader->Skip(creationDataSize);
  return control;
}

}  // namespace

BOOL ReadDialogTemplate(HINSTANCE module, const wchar_t* templateName, DialogTemplate* read) {
  if (!IS_INTRESOURCE(templateName) && !IsReadableText(templateName)) return FALSE;
  const HRSRC resource = FindResourceW(module, templateName, MAKEINTRESOURCEW(5));  // RT_DIALOG as a wide resource type
  const HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
  const void* data = loaded ? LockResource(loaded) : nullptr;
  if (!data) return FALSE;
  TemplateReader reader{static_cast<const BYTE*>(data), SizeofResource(module, resource)};
  bool extended = false;
  const int count = ReadHeader(&reader, read, &extended);
  for (int i = 0; i < count && !reader.failed; ++i) {
    const TemplateControl control = ReadControl(&reader, extended);
    read->controls.push_back(control);
  }
  return !reader.failed;
}

}  // namespace kv
