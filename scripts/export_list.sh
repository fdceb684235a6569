#!/usr/bin/env bash
# Writes the names VelHal.dll exports to tests/data/velhal_exports.txt, the list the export
# surface test compares with: run it after a deliberate change of the public surface.
#   scripts/export_list.sh [build/mingw/bin/VelHal.dll]
set -euo pipefail
cd "$(dirname "$0")/.."
dll=${1:-build/mingw/bin/VelHal.dll}
list=tests/data/velhal_exports.txt
{
  grep '^#' "$list"
  x86_64-w64-mingw32-objdump -p "$dll" |
    awk '/\[Ordinal\/Name Pointer\] Table/{f=1;next} f&&/^[ \t]*\[/{print $NF}' | LC_ALL=C sort
} >"$list.new"
mv "$list.new" "$list"
git --no-pager diff --stat -- "$list" || true
