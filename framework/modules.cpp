#include "framework/modules.h"

namespace kv {

Modules modules{};

}  // namespace kv
