#include "kv/framework/resource_library.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

namespace kv {

namespace {

constexpr DWORD kMaxFileBytes = 64 << 20, kMaxImageBytes = 256 << 20;

using Bytes = std::span<const BYTE>;

// Returns false, and reads nothing, when the struct is not completely within the bytes.
template <class Record>
bool Read(Bytes bytes, size_t at, Record* record) {
  if (at > bytes.size() || bytes.size() - at < sizeof(Record)) return false;
  std::memcpy(record, bytes.data() + at, sizeof(Record));
  return true;
}

bool IsWithin(size_t at, size_t size, size_t whole) {
  return at <= whole && size <= whole - at;
}

struct Library {
  Bytes file;
  IMAGE_NT_HEADERS32 headers{};
  std::vector<IMAGE_SECTION_HEADER> sections;

  const IMAGE_OPTIONAL_HEADER32& image() const { return headers.OptionalHeader; }
  const IMAGE_DATA_DIRECTORY& directory(int index) const { return image().DataDirectory[index]; }

  // Returns the file's bytes for an address of the image; empty unless all of them are in one section.
  Bytes At(DWORD address, DWORD size) const {
    for (const IMAGE_SECTION_HEADER& section : sections) {
      const DWORD filled = std::min(section.SizeOfRawData, section.Misc.VirtualSize);
      if (address >= section.VirtualAddress && IsWithin(address - section.VirtualAddress, size, filled)) {
        return file.subspan(section.PointerToRawData + (address - section.VirtualAddress), size);
      }
    }
    return {};
  }
};

// ---- Headers --------------------------------------------------------------------------------------------------------

bool AreHeadersUsable(const IMAGE_NT_HEADERS32& headers, size_t fileSize) {
  const IMAGE_OPTIONAL_HEADER32& image = headers.OptionalHeader;
  constexpr WORD kNeeded = IMAGE_FILE_DLL | IMAGE_FILE_EXECUTABLE_IMAGE;
  return headers.Signature == IMAGE_NT_SIGNATURE && headers.FileHeader.Machine == IMAGE_FILE_MACHINE_I386 &&
         (headers.FileHeader.Characteristics & kNeeded) == kNeeded &&
         headers.FileHeader.SizeOfOptionalHeader == sizeof(image) && image.Magic == IMAGE_NT_OPTIONAL_HDR32_MAGIC &&
         image.NumberOfRvaAndSizes == IMAGE_NUMBEROF_DIRECTORY_ENTRIES && image.ImageBase % 0x10000 == 0 &&
         std::has_single_bit(image.SectionAlignment) && image.SectionAlignment >= 0x1000 &&
         std::has_single_bit(image.FileAlignment) && image.FileAlignment >= 0x200 &&
         image.FileAlignment <= image.SectionAlignment && image.SizeOfImage <= kMaxImageBytes &&
         image.SizeOfHeaders <= std::min<size_t>(image.SizeOfImage, fileSize);
}

// Sections must be in order, not overlap, lie within the image, and their contents within the file.
bool ReadSections(Library* library, size_t at) {
  const IMAGE_OPTIONAL_HEADER32& image = library->image();
  const size_t count = library->headers.FileHeader.NumberOfSections;
  if (!IsWithin(at, count * sizeof(IMAGE_SECTION_HEADER), image.SizeOfHeaders)) return false;
  size_t end = image.SizeOfHeaders;
  library->sections.resize(count);
  for (IMAGE_SECTION_HEADER& section : library->sections) {
    Read(library->file, at, &section);
    at += sizeof(section);
    if (section.PointerToRawData == 0) section.SizeOfRawData = 0;  // nothing of the file is mapped
    if (section.Misc.VirtualSize == 0) section.Misc.VirtualSize = section.SizeOfRawData;
    if (section.VirtualAddress < end || section.VirtualAddress % image.SectionAlignment != 0 ||
        !IsWithin(section.VirtualAddress, section.Misc.VirtualSize, image.SizeOfImage) ||
        !IsWithin(section.PointerToRawData, section.SizeOfRawData, library->file.size()) ||
        section.PointerToRawData % image.FileAlignment != 0 || !(section.Characteristics & IMAGE_SCN_MEM_READ)) {
      return false;
    }
    end = size_t{section.VirtualAddress} + section.Misc.VirtualSize;
  }
  return true;
}

bool AreDirectoriesWithin(const Library& library) {
  for (int i = 0; i < IMAGE_NUMBEROF_DIRECTORY_ENTRIES; ++i) {
    if (i == IMAGE_DIRECTORY_ENTRY_SECURITY) continue;  // a file offset, which the loader ignores
    const IMAGE_DATA_DIRECTORY& directory = library.directory(i);
    if (!IsWithin(directory.VirtualAddress, directory.Size, library.image().SizeOfImage)) return false;
  }
  return true;
}

// Linkers may write an empty import list.
bool HasImports(const Library& library) {
  const IMAGE_DATA_DIRECTORY& imports = library.directory(IMAGE_DIRECTORY_ENTRY_IMPORT);
  if (!imports.VirtualAddress && !imports.Size) return false;
  const Bytes first = library.At(imports.VirtualAddress, sizeof(IMAGE_IMPORT_DESCRIPTOR));
  return first.empty() || std::ranges::any_of(first, [](BYTE byte) { return byte != 0; });
}

// The loader runs nothing in a library without code.
bool HasNoCode(const Library& library) {
  for (const int i : {IMAGE_DIRECTORY_ENTRY_BASERELOC, IMAGE_DIRECTORY_ENTRY_TLS, IMAGE_DIRECTORY_ENTRY_LOAD_CONFIG,
                      IMAGE_DIRECTORY_ENTRY_BOUND_IMPORT, IMAGE_DIRECTORY_ENTRY_IAT, IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT,
                      IMAGE_DIRECTORY_ENTRY_COM_DESCRIPTOR}) {
    if (library.directory(i).VirtualAddress || library.directory(i).Size) return false;
  }
  return !HasImports(library);
}

// An entry point without imports is the result of damage.
bool IsCodeValidOrAbsent(const Library& library) {
  const DWORD entry = library.image().AddressOfEntryPoint;
  if (!entry) return HasNoCode(library);
  return HasImports(library) && std::ranges::any_of(library.sections, [&](const IMAGE_SECTION_HEADER& section) {
           return (section.Characteristics & IMAGE_SCN_MEM_EXECUTE) && entry >= section.VirtualAddress &&
                  entry - section.VirtualAddress < std::min(section.SizeOfRawData, section.Misc.VirtualSize);
         });
}

// ---- Resources ------------------------------------------------------------------------------------------------------

// A block of texts has sixteen, each preceded by its length.
bool AreTextsWithin(Bytes block) {
  size_t at = 0;
  for (int i = 0; i < 16; ++i) {
    WORD length = 0;
    if (!Read(block, at, &length)) return false;
    at += sizeof(length) + length * sizeof(wchar_t);
  }
  return at <= block.size();
}

// LoadBitmap trusts the sizes in the header; therefore all colors and rows must be there. Compressed rows have no size
// that could be tested.
bool IsBitmapWithin(Bytes block) {
  BITMAPINFOHEADER header{};
  if (!Read(block, 0, &header) || header.biSize < sizeof(header) || header.biWidth <= 0 || header.biPlanes != 1 ||
      header.biClrUsed > 256 || (header.biCompression != BI_RGB && header.biCompression != BI_BITFIELDS)) {
    return false;
  }
  const uint64_t bits = header.biBitCount;
  if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return false;
  uint64_t size = header.biSize;
  if (header.biCompression == BI_BITFIELDS && size == sizeof(header)) size += uint64_t{3} * sizeof(DWORD);  // its masks
  const uint64_t colors = header.biClrUsed || bits > 8 ? header.biClrUsed : uint64_t{1} << bits;
  const uint64_t rowSize = (bits * static_cast<DWORD>(header.biWidth) + 31) / 32 * sizeof(DWORD);
  size += colors * sizeof(RGBQUAD) + rowSize * static_cast<uint64_t>(std::abs(int64_t{header.biHeight}));
  return size <= block.size();
}

constexpr WORD kBitmap = 2, kTexts = 6;

struct ResourceTree {
  const Library& library;
  Bytes bytes;
  size_t entriesLeft;  // more cannot be in the file without a cycle

  bool IsNameWithin(DWORD at) const {
    WORD length = 0;
    return Read(bytes, at, &length) && IsWithin(at + sizeof(length), length * sizeof(wchar_t), bytes.size());
  }

  bool IsDataValid(DWORD at, WORD type) const {
    IMAGE_RESOURCE_DATA_ENTRY entry{};
    if (!Read(bytes, at, &entry)) return false;
    const Bytes data = library.At(entry.OffsetToData, entry.Size);
    return data.size() == entry.Size && (type != kTexts || AreTextsWithin(data)) &&
           (type != kBitmap || IsBitmapWithin(data));
  }

  // Levels 0 to 2 are types, names and languages. Entries with a name precede those with a number. A type with a name
  // is 0.
  bool IsValid(DWORD at, int level, WORD type) {
    constexpr int kLastLevel = 2;
    IMAGE_RESOURCE_DIRECTORY directory{};
    if (!Read(bytes, at, &directory)) return false;
    const size_t count = size_t{directory.NumberOfNamedEntries} + directory.NumberOfIdEntries;
    if (count > entriesLeft) return false;
    entriesLeft -= count;
    at += sizeof(directory);
    for (size_t i = 0; i < count; ++i, at += sizeof(IMAGE_RESOURCE_DIRECTORY_ENTRY)) {
      IMAGE_RESOURCE_DIRECTORY_ENTRY entry{};
      if (!Read(bytes, at, &entry) || entry.NameIsString != (i < directory.NumberOfNamedEntries) ||
          entry.DataIsDirectory != (level < kLastLevel) || (entry.NameIsString && !IsNameWithin(entry.NameOffset))) {
        return false;
      }
      if (level == 0) type = entry.NameIsString ? 0 : entry.Id;
      if (!(level < kLastLevel ? IsValid(entry.OffsetToDirectory, level + 1, type)
                               : IsDataValid(entry.OffsetToData, type))) {
        return false;
      }
    }
    return true;
  }
};

bool AreResourcesValid(const Library& library) {
  const IMAGE_DATA_DIRECTORY& directory = library.directory(IMAGE_DIRECTORY_ENTRY_RESOURCE);
  const Bytes bytes = library.At(directory.VirtualAddress, directory.Size);
  ResourceTree tree{library, bytes, bytes.size() / sizeof(IMAGE_RESOURCE_DIRECTORY_ENTRY)};
  return !bytes.empty() && tree.IsValid(0, 0, 0);
}

// Returns no bytes when the file cannot be read or is too large.
std::vector<BYTE> ReadWhole(const wchar_t* path) {
  std::vector<BYTE> bytes;
  const HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return bytes;
  DWORD high = 0;
  const DWORD size = GetFileSize(file, &high);
  if (high == 0 && size <= kMaxFileBytes) bytes.resize(size);
  DWORD read = 0;
  if (!ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) read = 0;
  CloseHandle(file);
  bytes.resize(read);
  return bytes;
}

}  // namespace

bool IsResourceLibrary(const wchar_t* path) {
  const std::vector<BYTE> file = ReadWhole(path);
  Library library{.file = file};
  IMAGE_DOS_HEADER dos{};
  if (!Read(library.file, 0, &dos) || dos.e_magic != IMAGE_DOS_SIGNATURE || dos.e_lfanew < 0) return false;
  const auto at = static_cast<size_t>(dos.e_lfanew);
  return Read(library.file, at, &library.headers) && AreHeadersUsable(library.headers, file.size()) &&
         ReadSections(&library, at + sizeof(library.headers)) && AreDirectoriesWithin(library) &&
         IsCodeValidOrAbsent(library) && AreResourcesValid(library);
}

}  // namespace kv
