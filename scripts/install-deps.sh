#!/usr/bin/env bash
# Installs the Debian packages that the build and the tests need, only those that are missing,
# so that a second run costs nothing. Runs as root (CI) or through sudo.
set -euo pipefail

need=()
want() { dpkg -s "$1" >/dev/null 2>&1 || need+=("$1"); }

want g++
want cmake
want ninja-build
want libgtest-dev
want libgmock-dev
# Google Benchmark, for the host benchmark of the effects' cost per frame (tests/bench)
want libbenchmark-dev
want googletest
want g++-mingw-w64-x86-64-posix
want wine64
want xvfb
want xserver-xephyr
want xauth
# finds the saver's windows and moves the mouse in the full-screen runs of scripts/wine-env.sh
want xdotool
want libgl1-mesa-dri
want fonts-dejavu-core
# NSIS, which builds the Windows installer (the installer target of the Windows build)
want nsis
# osslsigncode, which signs the programs and the setup of a release (scripts/sign.sh)
want osslsigncode
# clang with its runtime libraries, for the libFuzzer target of tests/fuzz
want clang
want libclang-rt-14-dev
for extra in "$@"; do want "$extra"; done

if [ ${#need[@]} -eq 0 ]; then
  exit 0
fi
echo "install-deps: installing ${need[*]}"
sudo_cmd=()
[ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
"${sudo_cmd[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${need[@]}"
