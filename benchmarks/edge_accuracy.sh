#!/usr/bin/env bash
# Compares antialiased edges with Cairo's, an independent renderer: largest and mean difference for each kind of shape.
source "$(dirname "$0")/../tools/common.sh"

/usr/bin/python3 -c 'import cairo' 2>/dev/null || {
  [ "$(id -u)" -eq 0 ] && as_root=() || as_root=(sudo)
  quietly "installing Cairo for Python" "${as_root[@]}" apt-get install -y --no-install-recommends python3-cairo
}
/usr/bin/python3 "$root/benchmarks/edge_accuracy.py" "$root/benchmarks/run" "$build_dir"
