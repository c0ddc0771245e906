#include <windows.h>

#include "app/start_up.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  kv::RunTarnwick(instance);
  return 0;
}
