// The link to the spreadsheet program: one conversation with the program, one with a new workbook in it. Use it on one
// thread.
#pragma once

#include <windows.h>

#include <ddeml.h>

namespace kv {

// The link's three words, all 0 while it is closed. Callers look at the conversations to see what an opening gave, and
// hand them with the instance to the operations of dde_client.h. Written by excelLink only.
struct ExcelLinkState {
  HCONV systemConversation;    // service "Excel", topic "System"
  HCONV workbookConversation;  // service "Excel", topic "Mappe2": a new workbook of the German program
  DWORD ddeInstance;
};
extern ExcelLinkState excelLinkState;

// Opens (non-zero flag) or closes the link.
//
// Opening starts the DDE library with ddeStartStop, which rejects the link's own, writable word: it ends there. Where
// the start succeeds, it connects to the running program, makes a workbook and connects to that; a program that does
// not answer is started instead, and the caller opens again once it runs. A workbook that cannot be reached closes the
// program's conversation as well. Always 0, so look at the state.
//
// Closing ends the conversations and stops the DDE library; returns what ddeStartStop returns (0 for a writable word).
BOOL excelLink(BOOL open);

// Replaces the first "." by "," for a spreadsheet whose numbers have a decimal comma. Always 1; a text without a point
// or one that cannot be read or written is left alone.
BOOL decimalPointToComma(char* number);

}  // namespace kv
