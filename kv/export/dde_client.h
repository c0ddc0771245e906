// Dynamic Data Exchange client: connect, execute, request, poke.
//
// All text is 8-bit (CP_WINANSI, CF_TEXT). Failures are only reported by a result of 0. Use a conversation on the
// thread that initialized its instance. While a function waits, the system dispatches messages of this thread.
// Connecting waits for every top-level window of the desktop, so each must dispatch messages.
//
// `instance` is the instance identifier from DdeInitializeA. An unreadable text is a failure and is not sent.
#pragma once

#include <windows.h>

#include <ddeml.h>

#include <cstddef>

namespace kv {

inline constexpr DWORD kDdeTimeoutMs = 10000;  // used for a timeout of 0
inline constexpr size_t kDdeReplySize = 8192;  // maximum length of a reply that is read, in bytes

// Returns the conversation, or 0. An empty name is a wildcard.
HCONV ddeConnect(DWORD instance, const char* service, const char* topic);

// Ends a conversation and returns the result of DdeDisconnect.
BOOL ddeDisconnect(HCONV conversation);

// Sends a command without waiting for its execution. Returns 1 when a data handle could be created for it, whatever
// happens then.
BOOL ddeExecute(DWORD instance, HCONV conversation, const char* command);

// Requests an item as text. Returns 1 if the server replied within the timeout, even if nothing could be stored. The
// text ends at its first zero or after kDdeReplySize bytes. It is stored with a terminator if `destination` is writable
// for its length, otherwise not at all. A text of kDdeReplySize bytes is stored without a terminator, so a buffer of
// kDdeReplySize bytes is always large enough.
BOOL ddeRequest(DWORD instance, HCONV conversation, const char* item, char* destination, DWORD timeoutMs);

// Sends a text, with its terminator, to an item. Returns non-zero if the server accepted it within the timeout.
HDDEDATA ddePoke(DWORD instance, HCONV conversation, const char* item, const char* text, DWORD timeoutMs);

// Requests an item into `reply`, which is zeroed first; a longer text is truncated. Returns 0 without a reply.
BOOL RequestDdeText(DWORD instance, HCONV conversation, const char* item, DWORD timeoutMs,
                    char (&reply)[kDdeReplySize]);

// Starts (`start` not 0) or stops the system's DDE library; `instance` is the address of the instance identifier.
//
// Quirk: returns 0 for an address that IsBadWritePtr reports as writable, and continues with one that it reports as not
// writable. For such an address, starting initializes an instance unless the value is not 0, stopping uninitializes the
// instance and sets the value to 0 (a null address does nothing), and both return 1. Returns 0, with nothing
// initialized, for an address that cannot be read, or that cannot be written after all when starting.
BOOL ddeStartStop(BOOL start, DWORD* instance);

// The link to the spreadsheet program: a conversation with the program, and one with a new workbook. Use it on one
// thread.

// The state of the link, all 0 when it is closed. Callers read the conversations to see the result of opening, and use
// them with the functions above. Written by excelLink only.
struct ExcelLinkState {
  HCONV systemConversation;    // service "Excel", topic "System"
  HCONV workbookConversation;  // service "Excel", topic "Mappe2": a new workbook of the German program
  DWORD ddeInstance;
};
extern ExcelLinkState excelLinkState;

// Opens (`open` not 0) or closes the link.
//
// Opening starts the DDE library with ddeStartStop, which rejects the link's own, writable state, and ends there. If
// starting succeeds, it connects to the running program, creates a workbook and connects to it. If the program does not
// respond, it is started, and the caller opens the link again when it runs. If the workbook cannot be reached, the
// program's conversation is closed, too. Always returns 0: examine the state.
//
// Closing ends the conversations, stops the DDE library and returns the result of ddeStartStop (0 for writable state).
BOOL excelLink(BOOL open);

// Replaces the first "." with "," for a spreadsheet with decimal commas. Always returns 1; a text without "." and one
// that is not readable or writable do not change.
BOOL decimalPointToComma(char* number);

}  // namespace kv
