// Client side of a Dynamic Data Exchange conversation: connect, execute, request, poke.
//
// All text is 8-bit (CP_WINANSI, CF_TEXT). Nothing is shown on failure; a 0 is the only report. Use a conversation on
// the thread that initialised its instance. While one of these waits, the system pumps messages of this thread; the
// connect waits for every top-level window of the desktop, so each of them must pump messages.
//
// `instance` is the number that DdeInitializeA gave. A text that is not readable counts as a failure and is not sent.
#pragma once

#include <windows.h>

#include <ddeml.h>

#include <cstddef>

namespace kv {

inline constexpr DWORD kDdeTimeoutMs = 10000;  // what a timeout of 0 stands for
inline constexpr size_t kDdeReplySize = 8192;  // the most of an answer that is read, in bytes

// The conversation, or 0. An empty name is a wildcard.
HCONV ddeConnect(DWORD instance, const char* service, const char* topic);

// Ends a conversation; the result of DdeDisconnect.
BOOL ddeDisconnect(HCONV conversation);

// Sends a command and does not wait for it. 1 when it could be put into a data handle, whatever becomes of it then.
BOOL ddeExecute(DWORD instance, HCONV conversation, const char* command);

// Asks for an item as text. 1 if the server answered within the timeout, also when nothing could be stored. The text,
// which ends at its first zero or after kDdeReplySize bytes, is stored with a terminator where `destination` is
// writable for its length; otherwise nothing is. A text of the full kDdeReplySize bytes is stored without a
// terminator, so a buffer of kDdeReplySize bytes holds every answer.
BOOL ddeRequest(DWORD instance, HCONV conversation, const char* item, char* destination, DWORD timeoutMs);

// Hands a text with its terminator to an item. Not 0 if the server took it within the timeout.
HDDEDATA ddePoke(DWORD instance, HCONV conversation, const char* item, const char* text, DWORD timeoutMs);

// The request without a destination: fills `reply` (zeroed first) with at most its size. Returns 0 without an answer.
BOOL RequestDdeText(DWORD instance, HCONV conversation, const char* item, DWORD timeoutMs,
                    char (&reply)[kDdeReplySize]);

// Starts (non-zero flag) or stops the system's DDE library for the instance word in a slot.
//
// Rejects with 0 a slot that IsBadWritePtr finds writable, and goes on with one that it finds not writable. For such a
// slot: a start initialises an instance unless the slot holds one, a stop uninitialises what it holds and sets it to 0
// (a null slot is a stop of nothing), and both return 1. A slot that cannot be read, or that cannot take a new instance
// after all, gives 0 and leaves nothing initialised.
BOOL ddeStartStop(BOOL start, DWORD* instance);

// The link to the spreadsheet program: one conversation with the program, one with a new workbook in it. Use it on one
// thread.

// The link's three words, all 0 while it is closed. Callers look at the conversations to see what an opening gave, and
// hand them with the instance to the operations above. Written by excelLink only.
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
