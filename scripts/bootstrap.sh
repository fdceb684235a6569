#!/usr/bin/env bash
# Installs the Debian packages that building and testing VelHal need, only those missing.
set -euo pipefail

packages=(
  cmake ninja-build                                        # build
  g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64     # Windows x64 cross compiler
  wine wine64 xvfb xauth                                   # running and testing under Wine
  googletest libcli11-dev nlohmann-json3-dev               # tests and halinfo
  python3-jsonschema                                       # halinfo's JSON against its schema
  clang libclang-rt-14-dev libstdc++-12-dev libc6-dev      # native core, sanitizers, libFuzzer
)

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
  [[ $status == "install ok installed" ]] || missing+=("$package")
done
((${#missing[@]} == 0)) && exit 0

sudo=()
if [[ $(id -u) -ne 0 ]]; then sudo=(sudo); fi
echo "bootstrap: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null
