#include "framework/dialog_texts.h"

#include <cstring>

#include "framework/file_path.h"

namespace kv {

namespace {

// Walks a dialog template, which is a row of words, double words and texts of no fixed length. Whatever lies beyond the
// end reads as 0, and `failed` tells.
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

  // A zero-terminated text in the template; empty at its end.
  const wchar_t* Text() {
    const auto* text = reinterpret_cast<const wchar_t*>(data + at);
    while (Take<wchar_t>() != L'\0') {
    }
    return failed ? L"" : text;
  }
  // A text, or empty for a resource number that stands in place of one.
  const wchar_t* TextOrNumber() {
    constexpr WORD kNumberFollows = 0xFFFF;
    WORD first = 0;
    if (Has(sizeof(first))) std::memcpy(&first, data + at, sizeof(first));
    if (first != kNumberFollows) return Text();
    Skip(2 * sizeof(WORD));
    return L"";
  }
};

struct TemplateHeader {
  bool extended;
  int controlCount;
  const wchar_t* caption;
};

constexpr size_t kPlaceSize = 4 * sizeof(short);

TemplateHeader ReadHeader(TemplateReader* reader) {
  constexpr DWORD kExtendedMark = 0xFFFF0001;  // version 1 and the signature
  TemplateHeader header{};
  DWORD style = reader->Take<DWORD>();
  header.extended = style == kExtendedMark;
  if (header.extended) {
    reader->Skip(2 * sizeof(DWORD));  // help id, extended style
    style = reader->Take<DWORD>();
  } else {
    reader->Skip(sizeof(DWORD));  // extended style
  }
  header.controlCount = reader->Take<WORD>();
  reader->Skip(kPlaceSize);
  reader->TextOrNumber();  // menu
  reader->TextOrNumber();  // window class
  header.caption = reader->Text();
  if (style & DS_SETFONT) {
    reader->Skip(header.extended ? 3 * sizeof(WORD) : sizeof(WORD));  // size; weight, italics and character set
    reader->Text();                                                   // type face
  }
  return header;
}

struct TemplateControl {
  int id;
  const wchar_t* text;
};

TemplateControl ReadControl(TemplateReader* reader, bool extended) {
  constexpr int kNoId = -1;
  reader->AlignToDword();
  reader->Skip((extended ? 3 : 2) * sizeof(DWORD) + kPlaceSize);  // help id, styles, place
  TemplateControl control{};
  control.id = extended ? reader->Take<int>() : reader->Take<WORD>();
  if (control.id == 0xFFFF) control.id = kNoId;
  reader->TextOrNumber();  // window class
  control.text = reader->TextOrNumber();
  const auto creationDataSize = reader->Take<WORD>();
  reader->Skip(creationDataSize);
  if (control.id == kNoId) control.text = L"";
  return control;
}

}  // namespace

BOOL SetDialogTexts(HWND dialog, HINSTANCE module, const wchar_t* templateName) {
  if (!IsWindow(dialog) || (!IS_INTRESOURCE(templateName) && !IsReadableText(templateName))) return FALSE;
  const HRSRC resource = FindResourceW(module, templateName, MAKEINTRESOURCEW(5));  // RT_DIALOG, in its wide form
  const HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
  const void* data = loaded ? LockResource(loaded) : nullptr;
  if (!data) return FALSE;

  TemplateReader reader{static_cast<const BYTE*>(data), SizeofResource(module, resource)};
  const TemplateHeader header = ReadHeader(&reader);
  if (header.caption[0] && !reader.failed) SetWindowTextW(dialog, header.caption);
  for (int i = 0; i < header.controlCount && !reader.failed; ++i) {
    const TemplateControl control = ReadControl(&reader, header.extended);
    const HWND window = control.text[0] ? GetDlgItem(dialog, control.id) : nullptr;
    if (window) SetWindowTextW(window, control.text);
  }
  return !reader.failed;
}

}  // namespace kv
