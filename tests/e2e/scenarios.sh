# End-to-end scenarios that are steps of a user or an administrator rather than input to one run:
# they copy files, edit the registry and start the end-to-end driver's capture mode, which starts
# "<saver> /s", waits for its windows, and ends the run with a key (exit code 0 only if the run
# ended on it). Sourced by scripts/test.sh after scripts/wine-env.sh; each scenario prints what
# went wrong and returns non-zero on failure.

LUMIVANE_E2E_DIR="$LUMIVANE_ROOT/build/win/tests"
LUMIVANE_PHOTO="$LUMIVANE_ROOT/tests/data/photo.jpg"

scenario_fail() { echo "FAILED: $*" >&2; scenario_failures=$((scenario_failures + 1)); }

# scenario_check DESCRIPTION COMMAND...: runs COMMAND; a failure is counted under DESCRIPTION.
scenario_check() {
  local what="$1"; shift
  if "$@"; then echo "ok: $what"; else scenario_fail "$what"; fi
}

# Puts two copies of the test photo where the saver looks with ImportsDir=$2 ($1 is the same
# folder seen from Linux).
scenario_photos() {
  local folder="$1/Lumivane/Lumivane ScreenSaver"
  mkdir -p "$folder" &&
    cp "$LUMIVANE_PHOTO" "$folder/Lake-20240101000001.jpg" &&
    cp "$LUMIVANE_PHOTO" "$folder/Hill-20240101000002.jpg" &&
    lumivane_wine reg add 'HKCU\Software\LumivaneW' /v ImportsDir /d "$2" /f >/dev/null 2>&1
}

# scenario_run_saver WINDOWS-PATH-OF-SAVER: one full-screen run that opens its windows and ends
# on a key. Wine's messages go to the standard error.
scenario_run_saver() {
  (cd "$LUMIVANE_E2E_DIR" &&
    "$LUMIVANE_WINE64" ./lumivane_e2e.exe --scr "$1" --capture 'C:\lumivane-shots' --shots 1 \
      --interval 1500 </dev/null)
}

# scenario_run_saver with the loader's trace in $2 and native copies of d3d10_1 preferred.
planted_dll_run() {
  WINEDEBUG=-all,+loaddll WINEDLLOVERRIDES="$WINEDLLOVERRIDES;d3d10_1=n,b" \
    scenario_run_saver "$1" 2>"$2"
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
  scenario_check "the saver opens its windows and ends on a key" \
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

