#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "gallery/resource_ids.h"
#include "tests/gallery/running_gallery.h"

namespace {

constexpr wchar_t kGermanCaption[] = L"Galerie der Steuerelemente";

TEST(GalleryLanguages, ChangeAtOnceAreRememberedAndFallBack) {
  const kvtest::GalleryCopy copy({L"kvgalleryGE.dll", L"kvgalleryRU.dll"});
  std::filesystem::resize_file(copy.folder() / L"kvgalleryRU.dll", 2000);
  const auto closeAndAskAgain = [&](kvtest::RunningGallery* gallery) {
    EXPECT_EQ(0u, gallery->Close());
    kvtest::RunningGallery again(copy.folder(), L"language");
    const std::wstring now = again.ControlText(IDC_LANGUAGE_NOW);
    EXPECT_EQ(0u, again.Close());
    return now;
  };
  {
    kvtest::RunningGallery gallery(copy.folder(), L"language");
    ASSERT_NE(nullptr, gallery.page());
    gallery.Command(IDM_LANGUAGE_FIRST + 1);
    EXPECT_EQ(kGermanCaption, gallery.Caption());
    EXPECT_EQ(L"Diese Sprache &verwenden", gallery.ControlText(IDC_LANGUAGE_USE));
    gallery.Command(IDM_LANGUAGE_FIRST + 2);  // no French library: the German one stands in, the choice is kept
    EXPECT_EQ(kGermanCaption, gallery.Caption());
    EXPECT_EQ(L"Zurzeit: Français (Sprache 2)", closeAndAskAgain(&gallery));
  }
  kvtest::RunningGallery gallery(copy.folder(), L"language");
  gallery.Command(IDM_LANGUAGE_FIRST + 8);  // damaged: English, also where the page's template has the text
  EXPECT_EQ(L"Control gallery", gallery.Caption());
  EXPECT_EQ(L"&Use this language", gallery.ControlText(IDC_LANGUAGE_USE));
  EXPECT_EQ(L"Shown now: English (language 0)", closeAndAskAgain(&gallery));
}

}  // namespace
