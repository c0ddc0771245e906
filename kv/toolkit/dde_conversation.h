// A Dynamic Data Exchange (DDE) conversation with another program. All text is 8-bit in the system's code page.
//
// Use an object only on the thread that created it. The thread needs no message loop: the system dispatches messages
// while it waits. Connecting sends a message to every top-level window of the desktop and waits for each response.
#pragma once

#include <windows.h>

#include <ddeml.h>

#include <string>

#include "kv/export/dde_client.h"

namespace kv {

class DdeConversation {
 public:
  // Initializes the system's DDE library for this conversation and connects. An empty name matches any service or
  // topic. The destructor ends both.
  DdeConversation(const char* service, const char* topic);
  ~DdeConversation();
  DdeConversation(const DdeConversation&) = delete;
  DdeConversation& operator=(const DdeConversation&) = delete;

  // Whether connecting succeeded and the other program has not ended the conversation. The system notices the end when
  // the thread dispatches messages.
  bool IsOpen() const;

  // Sends a command without waiting for its result. All functions return 0 when the conversation is not open.
  BOOL Execute(const char* command);
  // Sends a text for an item. Returns non-zero if the program accepts it within the timeout; 0 means 10 seconds.
  BOOL Poke(const char* item, const char* text, DWORD timeoutMs = 0);
  // Requests the text of an item, at most kDdeReplySize bytes. Returns 0, and leaves `reply` unchanged, if there is no
  // reply within the timeout; 0 means 10 seconds.
  BOOL Request(const char* item, std::string* reply, DWORD timeoutMs = 0);

 private:
  DWORD instance_ = 0;
  HCONV conversation_ = nullptr;
};

}  // namespace kv
