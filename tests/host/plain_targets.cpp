#include "tests/fuzz/targets.h"

namespace fuzz {

// Notes and dialog texts are read with the system's help, which is not here.
std::span<const Target> Targets() {
  static const std::vector<Target> targets = PlainTargets();
  return targets;
}

}  // namespace fuzz
