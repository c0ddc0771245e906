#include "gallery/frame.h"

#include <algorithm>

#include "framework/numbers.h"
#include "framework/painting.h"
#include "gallery/drawing.h"
#include "gallery/resource_ids.h"
#include "toolkit/languages.h"
#include "toolkit/system_look.h"

namespace gallery {

FrameLayout LayoutFor(SIZE client) {
  constexpr double kDesignWidth = 752, kDesignHeight = 528;  // the client area of the smallest window
  const double scale = std::max(0.5, std::min(client.cx / kDesignWidth, client.cy / kDesignHeight));
  const auto scaled = [scale](int length) { return kv::ToInt(length * scale); };
  return {.listWidth = scaled(196),
          .rowHeight = scaled(29),
          .headerHeight = scaled(72),
          .titleHeight = scaled(34),
          .margin = scaled(14),
          .titlePx = scaled(24),
          .textPx = scaled(16)};
}

void DrawHeader(HDC dc, const RECT& header, const FrameLayout& layout, int page) {
  const bool plain = kv::IsHighContrast();
  if (plain) {
    kv::FillSolid(dc, header, GetSysColor(COLOR_BTNFACE));
  } else {
    kv::FillHorizontalGradient(dc, header, kv::kDialogBlue, RGB(0x60, 0x60, 0xF0));
  }
  if (page < 0) return;
  const COLORREF color = plain ? GetSysColor(COLOR_BTNTEXT) : RGB(255, 255, 255);
  const int left = header.left + layout.margin, right = header.right - layout.margin;
  DrawLine(dc, kv::ResourceText(IDS_TITLE_FIRST + page), {left, layout.titleHeight / 8, right, layout.titleHeight},
           {layout.titlePx, FW_SEMIBOLD, color});
  DrawLines(dc, kv::ResourceText(IDS_DESCRIPTION_FIRST + page), {left, layout.titleHeight, right, layout.headerHeight},
            {layout.textPx, FW_NORMAL, color});
}

}  // namespace gallery
