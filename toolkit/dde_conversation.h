// A Dynamic Data Exchange conversation with another program, from its start to its end. All text is 8-bit in the
// system's code page.
//
// Use it on the thread that made it, which needs no message loop of its own: the system pumps messages while it waits.
// Connecting asks every top-level window of the desktop and waits for each of them to answer.
#pragma once

#include <windows.h>

#include <ddeml.h>

#include <string>

#include "export/dde_client.h"

namespace kv {

class DdeConversation {
 public:
  // Starts the system's DDE library for this conversation and connects; IsOpen says whether a program answered. An
  // empty name stands for any service or topic.
  DdeConversation(const char* service, const char* topic);
  ~DdeConversation();
  DdeConversation(const DdeConversation&) = delete;
  DdeConversation& operator=(const DdeConversation&) = delete;

  bool IsOpen() const { return conversation_ != nullptr; }

  // Sends a command and does not wait for it. Like the others it returns 0 when the conversation is not open.
  BOOL Execute(const char* command);
  // Hands a text to an item. Not 0 if the program took it within the time-out, of which 0 stands for 10 seconds.
  BOOL Poke(const char* item, const char* text, DWORD timeoutMs = 0);
  // The text of an item, at most kDdeReplySize bytes. Returns 0 without an answer, which leaves `reply` unchanged.
  BOOL Request(const char* item, std::string* reply, DWORD timeoutMs = 0);

 private:
  DWORD instance_ = 0;
  HCONV conversation_ = nullptr;
};

}  // namespace kv
