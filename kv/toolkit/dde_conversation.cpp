#include "kv/toolkit/dde_conversation.h"

#include <cstring>
#include <string>
#include "kv/export/dde_client.h"

namespace kv {

namespace {

// A client needs none of the callbacks.
HDDEDATA CALLBACK IgnoreTransaction(UINT, UINT, HCONV, HSZ, HSZ, HDDEDATA, ULONG_PTR, ULONG_PTR) {
  return nullptr;
}

}  // namespace

DdeConversation::DdeConversation(const char* service, const char* topic) {
  if (DdeInitializeA(&instance_, IgnoreTransaction, APPCMD_CLIENTONLY, 0) == DMLERR_NO_ERROR) {
    conversation_ = ddeConnect(instance_, service, topic);
  }
}

DdeConversation::~DdeConversation() {
  if (conversation_) ddeDisconnect(conversation_);
  if (instance_) DdeUninitialize(instance_);
}

bool DdeConversation::IsOpen() const {
  CONVINFO info{.cb = sizeof(info)};
  return conversation_ && DdeQueryConvInfo(conversation_, QID_SYNC, &info) && info.wStatus & ST_CONNECTED;
}

BOOL DdeConversation::Execute(const char* command) {
  return IsOpen() && ddeExecute(instance_, conversation_, command);
}

BOOL DdeConversation::Poke(const char* item, const char* text, DWORD timeoutMs) {
  return IsOpen() && ddePoke(instance_, conversation_, item, text, timeoutMs) != nullptr;
}

BOOL DdeConversation::Request(const char* item, std::string* reply, DWORD timeoutMs) {
  char text[kDdeReplySize];
  if (!IsOpen() || !RequestDdeText(instance_, conversation_, item, timeoutMs, text)) return FALSE;
  reply->assign(text, strnlen(text, sizeof(text)));
  return TRUE;
}

}  // namespace kv
