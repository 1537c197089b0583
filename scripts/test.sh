#!/usr/bin/env bash
# Runs every test of Lumivane on a Debian machine, installing what is missing first:
#   tier 1  host unit tests (g++, AddressSanitizer + UBSan) through ctest, in build/host
#   fuzzing the JSON reader under libFuzzer for LUMIVANE_FUZZ_SECONDS (60), in build/fuzz
#   tier 2  Windows tests of the platform layer under Wine, in build/win
#   the Windows installer (NSIS), in build/win
#   tier 3  end-to-end scenarios: the real Lumivane.scr under Wine on a virtual two-monitor display,
#           a DLL planted beside it, and the installer in a fresh Wine prefix
#   release signing with a throw-away certificate, on copies in build/signed
# Exits non-zero when any tier fails. Works unattended (CI=true, no standard input, as root).
set -uo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$ROOT"
BUILD="$ROOT/build"
export LUMIVANE_BUILD_DIR="$BUILD"
JOBS="$(nproc 2>/dev/null || echo 2)"
# A tier that hangs (a dialog nobody closes, a saver that never ends) fails instead of
# holding CI until its deadline.
WINE_TIER_TIMEOUT="${LUMIVANE_WINE_TIER_TIMEOUT:-900}"

declare -a SUMMARY=()
TOTAL_PASSED=0
TOTAL_FAILED=0
FAILED_TIERS=0
STARTED=$SECONDS

say() { printf '\n=== %s\n' "$*"; }

# record NAME STATUS PASSED FAILED SECONDS
record() {
  SUMMARY+=("$(printf '%-34s %-6s %5s passed %5s failed %5ss' "$1" "$2" "$3" "$4" "$5")")
  TOTAL_PASSED=$((TOTAL_PASSED + $3))
  TOTAL_FAILED=$((TOTAL_FAILED + $4))
  if [ "$2" != ok ]; then FAILED_TIERS=$((FAILED_TIERS + 1)); fi
}

# Counts from a GoogleTest log: "[  PASSED  ] 18 tests." and "[  FAILED  ] 1 test, listed below:".
gtest_count() {
  local kind="$1" log="$2"
  grep -aE "^\[  $kind  \] [0-9]+ tests?[,.]" "$log" | tail -1 | sed -E 's/^\[[^]]*\] ([0-9]+).*/\1/' || true
}

say "dependencies"
# ImageMagick and real photos for the import's scenario; openssl for the signing row's throw-away
# certificate and 7-Zip to take the signed setup apart.
if ! bash scripts/install-deps.sh imagemagick mate-backgrounds openssl 7zip </dev/null; then
  echo "test.sh: installing the dependencies failed" >&2
  exit 1
fi

# ---- tier 1 -------------------------------------------------------------------------------
say "tier 1: host unit tests (ASan + UBSan)"
t=$SECONDS
host_log="$(mktemp)"
if cmake -S . -B build/host -G Ninja -DCMAKE_BUILD_TYPE=Debug -DLUMIVANE_SANITIZE=ON \
     -DLUMIVANE_TESTS=ON &&
   cmake --build build/host -j "$JOBS"; then
  (cd build/host && ctest --output-on-failure -j "$JOBS" </dev/null) 2>&1 | tee "$host_log"
  status=${PIPESTATUS[0]}
  passed=$(grep -aE '^[0-9]+% tests passed' "$host_log" | sed -E 's/.* ([0-9]+)$/\1/' | tail -1)
  failed=$(grep -aE '^[0-9]+% tests passed' "$host_log" | sed -E 's/.*, ([0-9]+) tests? failed.*/\1/' | tail -1)
  total=${passed:-0}
  passed=$((total - ${failed:-0}))
  if [ "$status" -eq 0 ] && [ "$total" -gt 0 ]; then tier=ok; else tier=FAILED; fi
  record "1 host unit tests" "$tier" "$passed" "${failed:-0}" $((SECONDS - t))
else
  record "1 host unit tests (build)" FAILED 0 0 $((SECONDS - t))
fi
rm -f "$host_log"

# ---- fuzzing -----------------------------------------------------------------------------
# The JSON reader of the companion's settings file under libFuzzer, for a bounded time. New inputs
# go to build/fuzz/corpus, which later runs start from; a finding fails the step and leaves its
# input in build/fuzz.
FUZZ_SECONDS="${LUMIVANE_FUZZ_SECONDS:-60}"
say "fuzzing: JSON reader (${FUZZ_SECONDS} s)"
t=$SECONDS
if cmake -S tests/fuzz -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ \
     -DCMAKE_BUILD_TYPE=RelWithDebInfo && cmake --build build/fuzz -j "$JOBS"; then
  mkdir -p build/fuzz/corpus
  fuzz_log="$(mktemp)"
  build/fuzz/json_reader_fuzz -max_total_time="$FUZZ_SECONDS" -artifact_prefix=build/fuzz/ \
    -dict=tests/fuzz/json.dict build/fuzz/corpus tests/fuzz/seeds </dev/null >"$fuzz_log" 2>&1
  status=$?
  tail -n 3 "$fuzz_log"
  if [ "$status" -eq 0 ]; then
    record "  JSON reader fuzzing" ok 1 0 $((SECONDS - t))
  else
    grep -aE 'ERROR|SUMMARY|Test unit written' "$fuzz_log" | head -n 20
    record "  JSON reader fuzzing" FAILED 0 1 $((SECONDS - t))
  fi
  rm -f "$fuzz_log"
else
  record "  JSON reader fuzzing (build)" FAILED 0 0 $((SECONDS - t))
fi

# ---- Windows build ------------------------------------------------------------------------
say "Windows cross build"
t=$SECONDS
win_built=0
if cmake -S . -B build/win -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake \
     -DCMAKE_BUILD_TYPE=Release -DLUMIVANE_TESTS=ON &&
   cmake --build build/win -j "$JOBS"; then
  win_built=1
  record "  Windows build" ok 0 0 $((SECONDS - t))
else
  record "  Windows build" FAILED 0 0 $((SECONDS - t))
fi

# The Windows installer, built on every run so that CI proves it builds (docs/installer.md).
if [ "$win_built" = 1 ]; then
  say "Windows installer"
  t=$SECONDS
  if cmake --build build/win --target installer; then
    record "  Windows installer" ok 0 0 $((SECONDS - t))
  else
    record "  Windows installer" FAILED 0 1 $((SECONDS - t))
  fi
fi

# Lumivane.scr imports only system DLLs that Windows always loads from its system folder (known
# DLLs). Any other (a runtime DLL of the compiler, msimg32.dll, d2d1.dll) could be found beside
# the .scr instead, so a copy planted in, say, a Downloads folder would run in the user's session.
# Lumivane.exe may import comctl32 besides: its manifest takes common controls 6 from the system's
# side-by-side store, never from beside the program.
ALLOWED_IMPORTS='KERNEL32|USER32|GDI32|ADVAPI32|SHELL32|ole32|msvcrt'
# check_imports FILE PATTERN: the file's imported DLLs must all match PATTERN.
check_imports() {
  local file="$1" allowed="$2" name imports foreign
  name="$(basename "$file")"
  say "imports of $name"
  imports="$(x86_64-w64-mingw32-objdump -p "$file" | sed -n 's/.*DLL Name: //p')"
  echo "$imports" | sed 's/^/  /'
  foreign="$(echo "$imports" | grep -viE "^($allowed)\.dll\$" || true)"
  if [ -z "$imports" ] || [ -n "$foreign" ]; then
    echo "$name imports DLLs outside the allowed system list: ${foreign:-(no import table read)}" >&2
    record "  $name imports" FAILED 0 1 0
  else
    record "  $name imports" ok 1 0 0
  fi
}
if [ "$win_built" = 1 ]; then
  check_imports build/win/Lumivane.scr "$ALLOWED_IMPORTS"
  check_imports build/win/Lumivane.exe "$ALLOWED_IMPORTS|COMCTL32"
fi

# ---- tiers 2 and 3 under Wine -------------------------------------------------------------
# run_wine_tier NAME EXE [ARGS...]: one GoogleTest program under Wine, in its own folder.
run_wine_tier() {
  local name="$1" exe="$2"; shift 2
  local t=$SECONDS log
  log="$(mktemp)"
  if [ ! -f "$exe" ]; then
    echo "missing $exe" >&2
    record "$name" FAILED 0 1 0
    return
  fi
  (cd "$(dirname "$exe")" &&
    timeout --foreground --kill-after=10 "$WINE_TIER_TIMEOUT" "$LUMIVANE_WINE64" "./$(basename "$exe")" "$@" \
      </dev/null) 2>&1 | tee "$log"
  local status=${PIPESTATUS[0]}
  local passed failed
  passed="$(gtest_count PASSED "$log")"
  failed="$(gtest_count FAILED "$log")"
  passed=${passed:-0}
  failed=${failed:-0}
  local tier=ok
  if [ "$status" -eq 124 ]; then
    echo "$name: timed out after $WINE_TIER_TIMEOUT s" >&2
    tier=TIMEOUT
  elif [ "$status" -ne 0 ] || [ "$failed" -gt 0 ] || [ "$passed" -eq 0 ]; then
    tier=FAILED
    [ "$failed" -eq 0 ] && failed=1 # crashed or ran nothing: count the program as one failure
  fi
  record "$name" "$tier" "$passed" "$failed" $((SECONDS - t))
  rm -f "$log"
}

# run_scenario NAME FUNCTION: one shell scenario of tests/e2e/scenarios.sh; its checks are counted.
run_scenario() {
  local name="$1" t=$SECONDS log
  log="$(mktemp)"
  "$2" 2>&1 | tee "$log"
  local status=${PIPESTATUS[0]} passed failed
  passed="$(grep -c '^ok: ' "$log")"
  failed="$(grep -c '^FAILED: ' "$log")"
  if [ "$status" -ne 0 ] && [ "$failed" -eq 0 ]; then failed=1; fi
  record "$name" "$([ "$status" -eq 0 ] && echo ok || echo FAILED)" "$passed" "$failed" \
    $((SECONDS - t))
  rm -f "$log"
}

if [ "$win_built" = 1 ]; then
  # shellcheck source=scripts/wine-env.sh
  source "$ROOT/scripts/wine-env.sh"
  say "Wine and the virtual display"
  if lumivane_wine_start; then
    # Both tiers look at the built saver: its resources, and the real thing.
    export LUMIVANE_SCR="Z:${ROOT//\//\\}\\build\\win\\Lumivane.scr"
    say "tier 2: Windows tests under Wine"
    run_wine_tier "2 Windows tests (Wine)" build/win/tests/lumivane_win_tests.exe
    say "tier 3: end-to-end under Wine"
    run_wine_tier "3 end-to-end (Wine)" build/win/tests/lumivane_e2e.exe
    # shellcheck source=tests/e2e/scenarios.sh
    source "$ROOT/tests/e2e/scenarios.sh"
    say "tier 3: a DLL planted beside the saver"
    run_scenario "3 planted DLL (Wine)" scenario_planted_dll
    say "tier 3: the import of a user's photos"
    run_scenario "3 import (Wine)" scenario_import
    say "tier 3: install and uninstall in a fresh prefix"
    run_scenario "3 installer (Wine, fresh prefix)" scenario_installer
    lumivane_wine_stop
  else
    record "2+3 Wine / virtual display" FAILED 0 0 0
  fi
fi

# ---- release signing ----------------------------------------------------------------------
# A release is signed when the build is given a certificate (scripts/sign.sh, README). Here a
# throw-away self-signed one signs copies of the built programs in build/signed, so build/win stays
# as the other rows expect it, and makensis makes a setup of them as the installer target does. The
# programs are signed with a certificate and key, the setup with a PKCS#12 file and its password,
# so both forms are used. With that certificate as the only trusted root, osslsigncode must accept
# each SHA-256 signature; the uninstaller is taken out of the setup with 7-Zip.
SIGNED="$BUILD/signed"
# sign_verified FILE: FILE carries a valid SHA-256 signature by the throw-away certificate.
sign_verified() {
  local out
  out="$(osslsigncode verify -CAfile "$SIGNED/cert.pem" -in "$1" 2>&1)" &&
    grep -qE '^Message digest algorithm *: SHA256' <<<"$out"
}
# sign_check DESCRIPTION FILE...
sign_check() {
  local what="$1" file; shift
  for file in "$@"; do
    if ! sign_verified "$file"; then
      echo "FAILED: $what ($file)" >&2
      return 1
    fi
  done
  echo "ok: $what"
}
sign_release() {
  local version setup
  version="$(sed -n 's/^project(Lumivane VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)"
  setup="$SIGNED/Lumivane-$version-setup.exe"
  rm -rf "$SIGNED" && mkdir -p "$SIGNED/unpacked" || return 1
  openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=Lumivane test signing" \
    -addext extendedKeyUsage=codeSigning -keyout "$SIGNED/key.pem" -out "$SIGNED/cert.pem" \
    2>/dev/null &&
    openssl pkcs12 -export -inkey "$SIGNED/key.pem" -in "$SIGNED/cert.pem" -passout pass:test \
      -out "$SIGNED/cert.p12" &&
    cp build/win/Lumivane.scr build/win/Lumivane.exe "$SIGNED/" || return 1
  LUMIVANE_SIGN_CERT="$SIGNED/cert.pem" LUMIVANE_SIGN_KEY="$SIGNED/key.pem" \
    bash scripts/sign.sh "$SIGNED/Lumivane.scr" "$SIGNED/Lumivane.exe"
  sign_check "a certificate and its key sign the programs" \
    "$SIGNED/Lumivane.scr" "$SIGNED/Lumivane.exe" || return 1
  # makensis with the defines that cmake/installer.cmake passes.
  LUMIVANE_SIGN_PKCS12="$SIGNED/cert.p12" LUMIVANE_SIGN_PASSWORD=test makensis -V2 \
    -DVERSION="$version" -DSCR="$SIGNED/Lumivane.scr" -DEXE="$SIGNED/Lumivane.exe" \
    -DICON="$ROOT/res/lumivane.ico" -DOUTFILE="$setup" -DSIGN_SCRIPT="$ROOT/scripts/sign.sh" \
    installer/lumivane.nsi || return 1
  sign_check "a PKCS#12 file and its password sign the setup" "$setup" || return 1
  (cd "$SIGNED/unpacked" && 7zz x -bso0 -bsp0 "$setup" Uninstall.exe) &&
    sign_check "the setup's uninstaller is signed" "$SIGNED/unpacked/Uninstall.exe"
}
if [ "$win_built" = 1 ]; then
  say "release signing"
  run_scenario "  release signing" sign_release
fi

# ---- summary ------------------------------------------------------------------------------
say "summary ($((SECONDS - STARTED)) s)"
for line in "${SUMMARY[@]}"; do echo "  $line"; done
if [ "$FAILED_TIERS" -eq 0 ]; then echo "ALL TIERS PASSED"; else echo "$FAILED_TIERS STEP(S) FAILED"; fi
echo "tests: $TOTAL_PASSED passed, $TOTAL_FAILED failed"
[ "$FAILED_TIERS" -eq 0 ]
