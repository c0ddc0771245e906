// Menu, buttons, keys, and the notifications of the controls: they change source, time and options, and update the
// window. Main thread only.
#pragma once

#include <windows.h>

#include <string>

#include "camview/source.h"
#include "camview/window.h"

namespace camview {

INT_PTR OnCommand(View& view, UINT id, UINT code);

// Returns the path of the recording without its extension, or the port's name in the folder of recordings.
std::wstring ProposedPath(const Source& source);

// Asks for a file to write (see kv::AskSavePath). Returns false, too, and says why, if it is the recording that is
// shown.
bool AskTarget(View& view, UINT title, std::wstring* path, const wchar_t* otherExtension = L"");

void OpenFile(View& view, const std::wstring& path);
void Connect(View& view, int port);
// Says what has become of work in the background. May show a message box.
void OnNews(View& view, SourceNews news);

}  // namespace camview
