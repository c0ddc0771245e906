// The gallery in a process of its own, and folders to run it in.
#pragma once

#include <windows.h>

#include <filesystem>
#include <initializer_list>
#include <string>

namespace kvtest {

// The folder where the build puts the gallery and its libraries.
std::filesystem::path GalleryFolder();

// A copy of the gallery's program with those of its libraries that are named, in a folder of its own.
class GalleryCopy {
 public:
  explicit GalleryCopy(std::initializer_list<const wchar_t*> libraries);
  ~GalleryCopy();
  GalleryCopy(const GalleryCopy&) = delete;
  GalleryCopy& operator=(const GalleryCopy&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
};

// A running gallery that shows the page of that name, or with null the one that was shown last. Ended with the object
// if it does not close by itself.
class RunningGallery {
 public:
  RunningGallery(const std::filesystem::path& folder, const wchar_t* page);
  ~RunningGallery();
  RunningGallery(const RunningGallery&) = delete;
  RunningGallery& operator=(const RunningGallery&) = delete;

  HWND frame() const { return frame_; }
  HWND page() const { return page_; }
  // A visible top-level window of the process with this class and title.
  HWND Find(const wchar_t* windowClass, const wchar_t* title) const;
  // Sends a menu command or a click.
  void Command(int id) const { SendMessageW(frame_, WM_COMMAND, static_cast<WPARAM>(id), 0); }
  void Press(int controlId) const;
  std::wstring Caption() const;
  std::wstring ControlText(int controlId) const;
  // Closes the frame as a user does and gives the process's exit code.
  DWORD Close();

 private:
  PROCESS_INFORMATION process_{};
  HWND frame_ = nullptr, page_ = nullptr;
};

}  // namespace kvtest
