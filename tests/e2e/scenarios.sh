# End-to-end scenarios that are steps of a user or an administrator rather than input to one run:
# they copy files, edit the registry and run the saver full screen with lumivane_run_saver of
# scripts/wine-env.sh, which starts "<saver> /s", waits for its windows and ends the run with a
# mouse move (it succeeds only if the run then ends with exit code 0). Sourced by scripts/test.sh
# after scripts/wine-env.sh; each scenario prints what went wrong and returns non-zero on failure.

LUMIVANE_E2E_DIR="$LUMIVANE_ROOT/build/win/tests"
LUMIVANE_PHOTO="$LUMIVANE_ROOT/tests/data/photo.jpg"

scenario_fail() { echo "FAILED: $*" >&2; scenario_failures=$((scenario_failures + 1)); }

# scenario_check DESCRIPTION COMMAND...: runs COMMAND; a failure is counted under DESCRIPTION.
scenario_check() {
  local what="$1"; shift
  if "$@"; then echo "ok: $what"; else scenario_fail "$what"; fi
}

# Succeeds when COMMAND fails; its output is dropped.
scenario_not() { ! "$@" >/dev/null 2>&1; }

# Puts two copies of the test photo into the photo tree of the photo directory $1 (a Linux path);
# with $2, the same folder as Windows sees it, makes it the saver's photo directory.
scenario_photos() {
  local folder="$1/Lumivane/Lumivane ScreenSaver"
  mkdir -p "$folder" &&
    cp "$LUMIVANE_PHOTO" "$folder/Lake-20240101000001.jpg" &&
    cp "$LUMIVANE_PHOTO" "$folder/Hill-20240101000002.jpg" || return 1
  [ -z "${2:-}" ] ||
    lumivane_wine reg add 'HKCU\Software\LumivaneW' /v ImportsDir /d "$2" /f >/dev/null 2>&1
}

# lumivane_run_saver with the loader's trace in $2 and native copies of d3d10_1 preferred.
planted_dll_run() {
  WINEDEBUG=-all,+loaddll WINEDLLOVERRIDES="$WINEDLLOVERRIDES;d3d10_1=n,b" \
    lumivane_run_saver "$1" 2>"$2"
}

# A user keeps the saver in Downloads, beside a DLL named like one that Direct2D loads (Wine's
# d2d1.dll imports d3d10_1.dll). The DLL is the load recorder, which leaves a file behind when
# its DllMain runs; Wine is told to prefer native copies of the name, as it otherwise takes its
# own. The run must take the Direct2D path, and no library may come from the saver's folder.
scenario_planted_dll() {
  scenario_failures=0
  local folder="$WINEPREFIX/drive_c/lumivane-planted" trace
  rm -rf "$folder"
  mkdir -p "$folder"
  cp "$LUMIVANE_ROOT/build/win/Lumivane.scr" "$folder/" &&
    cp "$LUMIVANE_E2E_DIR/lumivane_load_recorder.dll" "$folder/d3d10_1.dll" &&
    scenario_photos "$folder/photos" 'C:\lumivane-planted\photos' || return 1
  trace="$(mktemp)"
  # The loader's trace names every library that a process loads, with the path it came from.
  scenario_check "the saver opens its windows and ends on a mouse move" \
    planted_dll_run 'C:\lumivane-planted\Lumivane.scr' "$trace"
  # Direct2D loaded, and drawing: Wine's Direct2D makes its Direct3D device through wined3d.
  scenario_check "the run takes the Direct2D path" \
    grep -q 'Loaded L"C:\\\\windows\\\\system32\\\\d2d1.dll"' "$trace"
  scenario_check "Direct2D draws" \
    grep -q 'Loaded L"C:\\\\windows\\\\system32\\\\wined3d.dll"' "$trace"
  local foreign
  foreign="$(grep -i 'Loaded L"C:\\\\lumivane-planted\\\\' "$trace" | grep -vi 'Lumivane.scr"')"
  scenario_check "no library comes from beside the saver ${foreign:+(got: $foreign)}" \
    test -z "$foreign"
  scenario_check "the planted DLL never ran" test ! -e "$folder/d3d10_1.dll.loaded"
  lumivane_wine reg delete 'HKCU\Software\LumivaneW' /v ImportsDir /f >/dev/null 2>&1
  rm -f "$trace"
  [ "$scenario_failures" -eq 0 ]
}

# The data of one registry value as `reg query` prints it; nothing when it is missing.
scenario_reg_value() {
  lumivane_wine reg query "$1" /v "$2" 2>/dev/null | tr -d '\r' |
    sed -n "s/^ *$2 *REG_[A-Z_]* *//p"
}

# Every folder and every file's SHA-256 below the given folders, in a fixed order.
scenario_snapshot() {
  local folder
  for folder in "$@"; do
    (cd "$folder" && find . -type d | sort && find . -type f -print0 | sort -z | xargs -0 sha256sum)
  done
}

# Waits until every process of the prefix has ended (the uninstaller runs from a copy of itself
# and returns at once).
scenario_wait_for_prefix() { timeout 120 "$LUMIVANE_WINESERVER" -w; }

# An administrator's deployment, in a fresh prefix: a silent install, a run of the installed saver,
# a silent uninstall; then again over an older file, with the user choosing another saver in
# between. The user's photos and data folder from before stay byte for byte the same.
scenario_installer() {
  local version setup
  version="$(sed -n 's/^project(Lumivane VERSION \([0-9.]*\).*/\1/p' "$LUMIVANE_ROOT/CMakeLists.txt")"
  setup="$LUMIVANE_ROOT/build/win/Lumivane-$version-setup.exe"
  [ -f "$setup" ] || { scenario_fail "no $setup"; return 1; }
  (
    export WINEPREFIX="$LUMIVANE_BUILD_DIR/wineprefix-installer"
    trap '"$LUMIVANE_WINESERVER" -k >/dev/null 2>&1' EXIT
    rm -rf "$WINEPREFIX"
    lumivane_wine wineboot -i >/dev/null 2>&1
    lumivane_configure_prefix
    scenario_installer_steps "$setup" "$version"
  )
}

scenario_installer_steps() {
  scenario_failures=0
  local setup="$1" version="$2" user
  user="$(id -un)"
  local home="$WINEPREFIX/drive_c/users/$user" win_home="C:\\users\\$user"
  local data="$home/AppData/Local/Lumivane" photos="$home/Documents/Lumivane"
  local folder="$home/AppData/Local/Programs/Lumivane"
  local win_folder="$win_home\\AppData\\Local\\Programs\\Lumivane"
  local entry='HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Lumivane'
  local desktop='HKCU\Control Panel\Desktop'
  # The user's photos, and a data folder with a log and a crash report, from before: with every
  # folder that a start of the saver makes, so that the run itself changes nothing either.
  scenario_photos "$home/Documents"
  mkdir -p "$photos/Lumivane Wallpaper" "$photos/Wallpaper Cache" "$data/Crashes" "$data/Slides" \
    "$data/Updates"
  printf '2026-01-02 03:04:05 [42] crash: no reporter thread, error 8\r\n' >"$data/log.txt"
  printf 'app=saver-win\nthread=ui\n' >"$data/Crashes/01DC000000000000-42.crash"
  local before trace
  before="$(scenario_snapshot "$photos" "$data")"
  trace="$(mktemp)"

  # A silent install, watched by the loader's trace: it starts no other program.
  WINEDEBUG=-all,+loaddll lumivane_wine "$setup" /S 2>"$trace"
  scenario_check "the silent install puts Lumivane.scr at the per-user path" \
    cmp -s "$folder/Lumivane.scr" "$LUMIVANE_ROOT/build/win/Lumivane.scr"
  scenario_check "the silent install opens nothing" \
    scenario_not grep -qiE 'Loaded L"[^"]*(control|rundll32)\.exe' "$trace"
  local name expected
  while IFS='|' read -r name expected; do
    scenario_check "installed apps: $name is $expected" \
      test "$(scenario_reg_value "$entry" "$name")" = "$expected"
  done <<EOT
DisplayName|Lumivane
DisplayVersion|$version
Publisher|Lumivane
DisplayIcon|$win_folder\\Lumivane.scr,0
UninstallString|"$win_folder\\Uninstall.exe"
QuietUninstallString|"$win_folder\\Uninstall.exe" /S
EOT
  scenario_check "installed apps: a size" \
    test "$(scenario_reg_value "$entry" EstimatedSize)" != 0x0
  local selected
  selected="$(scenario_reg_value "$desktop" SCRNSAVE.EXE)"
  scenario_check "Lumivane is the screen saver (SCRNSAVE.EXE=$selected)" \
    test "${selected,,}" = "${win_folder,,}\\lumivane.scr"
  scenario_check "the screen saver is on" test "$(scenario_reg_value "$desktop" ScreenSaveActive)" = 1

  scenario_check "the installed saver opens its windows and ends on a mouse move" \
    lumivane_run_saver "$win_folder\\Lumivane.scr" 2>/dev/null

  lumivane_wine "$folder/Uninstall.exe" /S && scenario_wait_for_prefix
  scenario_check "the silent uninstall removes the folder" test ! -e "$folder"
  scenario_check "the silent uninstall removes the installed-apps entry" \
    scenario_not lumivane_wine reg query "$entry"
  scenario_check "the silent uninstall removes the selection" \
    test -z "$(scenario_reg_value "$desktop" SCRNSAVE.EXE)"
  scenario_check "the screen saver is off" test "$(scenario_reg_value "$desktop" ScreenSaveActive)" = 0

  # Again, over an older version, and the user picks another saver before the uninstall.
  mkdir -p "$folder" && echo "an older Lumivane.scr" >"$folder/Lumivane.scr"
  lumivane_wine "$setup" /S 2>/dev/null
  scenario_check "an install over an older version replaces it" \
    cmp -s "$folder/Lumivane.scr" "$LUMIVANE_ROOT/build/win/Lumivane.scr"
  local other='C:\windows\system32\other.scr'
  lumivane_wine reg add "$desktop" /v SCRNSAVE.EXE /d "$other" /f >/dev/null 2>&1
  lumivane_wine "$folder/Uninstall.exe" /S && scenario_wait_for_prefix
  scenario_check "a user who chose another saver keeps it" \
    test "$(scenario_reg_value "$desktop" SCRNSAVE.EXE)" = "$other"
  scenario_check "the second uninstall removes the folder" test ! -e "$folder"

  scenario_check "photos and data folder are byte for byte the same" \
    test "$(scenario_snapshot "$photos" "$data")" = "$before"
  rm -f "$trace"
  [ "$scenario_failures" -eq 0 ]
}
