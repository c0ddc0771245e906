#include "kv/framework/shell_launch.h"

namespace kv {

ShellCalls shellCalls{
    .executeA = ::ShellExecuteA,
    .executeW = ::ShellExecuteW,
    .executeExA = ::ShellExecuteExA,
};

}  // namespace kv
