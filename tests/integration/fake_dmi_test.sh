#!/usr/bin/env bash
# The firmware identity tests again, with Wine reading made-up DMI strings: a private mount
# namespace lays a tree of the test's own over /sys/class (the recipe of the Wine coverage
# notes). Each file holds "VelTest <its name>", which the tests expect when VELHAL_FAKE_DMI is
# set. Needs root for the mount; elsewhere the test is skipped (exit 77).
set -euo pipefail
wine_run=$1 tests=$2

if [[ $(id -u) != 0 ]] || ! unshare -m true 2>/dev/null; then
  echo "skipped: a private mount namespace needs root"
  exit 77
fi
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/class/dmi/id" "$tree/original"
for file in bios_vendor bios_version bios_date board_vendor board_name board_version \
            board_serial sys_vendor product_name product_serial; do
  echo "VelTest $file" >"$tree/class/dmi/id/$file"
done
echo 10 >"$tree/class/dmi/id/chassis_type"

export VELHAL_FAKE_DMI=VelTest
# Every other class stays reachable through a link to the original tree.
unshare -m --propagation private sh -c '
  tree=$1; shift
  mount --bind /sys/class "$tree/original"
  for entry in "$tree"/original/*; do
    [ "${entry##*/}" = dmi ] || ln -s "$entry" "$tree/class/${entry##*/}"
  done
  mount --bind "$tree/class" /sys/class
  exec "$@"' sh "$tree" "$wine_run" "$tests" --gtest_filter='FirmwareIdentityTest.*'
