#include "tests/fuzz/targets.h"

namespace fuzz {

// Notes and dialog texts need system functions, which are not available here.
std::vector<Target> Targets() {
  return PlainTargets();
}

}  // namespace fuzz
