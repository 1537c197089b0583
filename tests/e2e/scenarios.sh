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

# scenario_within SECONDS COMMAND...: runs COMMAND every quarter second until it succeeds, for at
# most SECONDS.
scenario_within() {
  local tries=$(($1 * 4)); shift
  until "$@"; do
    tries=$((tries - 1))
    [ "$tries" -gt 0 ] || return 1
    sleep 0.25
  done
}

# The command lines of the running Lumivane.exe processes of this prefix, one a line (Wine gives a
# program's process its Windows command line), or with $1 of those of that program file name (a
# pattern). Processes of other prefixes on the machine, such as a developer's own run, are left out.
scenario_app_processes() {
  local pid
  for pid in $(pgrep -f "${1:-Lumivane\.exe}"); do
    # A process that ended meanwhile has neither file any more.
    { tr '\0' '\n' <"/proc/$pid/environ" | grep -qxF "WINEPREFIX=$WINEPREFIX" &&
      tr '\0' ' ' <"/proc/$pid/cmdline" | sed 's/ *$//'; } 2>/dev/null
  done
}

# scenario_app_is COMMAND_LINE: exactly one Lumivane.exe of this prefix runs, with that command line.
scenario_app_is() { [ "$(scenario_app_processes)" = "$1" ]; }
scenario_app_ended() { [ -z "$(scenario_app_processes)" ]; }
scenario_saver_ended() { [ -z "$(scenario_app_processes 'Lumivane\.scr')" ]; }

# Starts the Lumivane.exe at the Unix path $1 in the background, as the user's tray, and returns
# once its tray window exists (Wine's trace of window creation names the class), so that an
# installer run next finds it.
scenario_start_tray() {
  local trace
  trace="$(mktemp)"
  WINEDEBUG=-all,+win lumivane_wine "$1" 2>"$trace" &
  scenario_within 20 grep -q 'WIN_CreateWindowEx .* L"LumivaneTray"' "$trace"
  local status=$?
  # The window exists once the call that the trace names returns.
  sleep 0.5
  rm -f "$trace"
  return "$status"
}

# Runs the setup program at the Unix path $1 interactively, as a user who takes every default:
# Enter on each page is Install on the first and Finish on the last one (and does nothing while the
# files are written). Returns the setup's exit code once it has ended, at most 60 s later.
scenario_setup_with_defaults() {
  local class="${1##*/}" pid window
  class="${class,,}"
  lumivane_wine "$1" &
  pid=$!
  for _ in $(seq 120); do
    kill -0 "$pid" 2>/dev/null || break
    window="$(xdotool search --onlyvisible --classname "^${class//./\\.}\$" 2>/dev/null | head -1)"
    [ -z "$window" ] || xdotool windowfocus "$window" key Return 2>/dev/null
    sleep 0.5
  done
  kill "$pid" 2>/dev/null
  wait "$pid"
}

# An administrator's deployment, in a fresh prefix: a silent install, a run of the installed saver
# and of Lumivane.exe from its Start-menu shortcut, a silent uninstall; then again over an older
# version whose Lumivane.exe and saver run, and an uninstall while the saver runs, with the user
# choosing another saver and changing the sign-in entry in between; last, a user's interactive
# install. The user's photos and data folder from before stay byte for byte the same.
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
  local run='HKCU\Software\Microsoft\Windows\CurrentVersion\Run'
  local shortcut="$home/AppData/Roaming/Microsoft/Windows/Start Menu/Programs/Lumivane.lnk"
  local app="$LUMIVANE_ROOT/build/win/Lumivane.exe"
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
  scenario_check "the silent install puts Lumivane.exe beside the saver" \
    cmp -s "$folder/Lumivane.exe" "$app"
  scenario_check "the silent install starts no Lumivane.exe" scenario_app_ended
  scenario_check "the silent install adds Lumivane to the Start menu" test -f "$shortcut"
  scenario_check "Lumivane.exe starts at sign-in" \
    test "$(scenario_reg_value "$run" Lumivane)" = "\"$win_folder\\Lumivane.exe\""
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
  # In whole kilobytes, the three files each rounded down.
  local size=0 file
  for file in Lumivane.scr Lumivane.exe Uninstall.exe; do
    size=$((size + $(stat -c %s "$folder/$file") / 1024))
  done
  scenario_check "installed apps: the size of the three files" \
    test "$(scenario_reg_value "$entry" EstimatedSize)" = "$(printf '0x%x' "$size")"
  local selected
  selected="$(scenario_reg_value "$desktop" SCRNSAVE.EXE)"
  scenario_check "Lumivane is the screen saver (SCRNSAVE.EXE=$selected)" \
    test "${selected,,}" = "${win_folder,,}\\lumivane.scr"
  scenario_check "the screen saver is on" test "$(scenario_reg_value "$desktop" ScreenSaveActive)" = 1

  scenario_check "the installed saver opens its windows and ends on a mouse move" \
    lumivane_run_saver "$win_folder\\Lumivane.scr" 2>/dev/null

  # What a click on the Start-menu entry does: the shell starts the shortcut's target.
  lumivane_wine start /unix "$shortcut"
  scenario_check "the Start-menu shortcut opens the settings of the installed Lumivane.exe" \
    scenario_within 20 scenario_app_is "$win_folder\\Lumivane.exe --settings"

  lumivane_wine "$folder/Uninstall.exe" /S
  scenario_check "the silent uninstall ends the running Lumivane.exe" scenario_within 10 scenario_app_ended
  scenario_check "the preview in its settings ends with it" scenario_saver_ended
  scenario_wait_for_prefix
  scenario_check "the silent uninstall removes the folder" test ! -e "$folder"
  scenario_check "the silent uninstall removes the Start-menu shortcut" test ! -e "$shortcut"
  scenario_check "the silent uninstall removes the sign-in entry" \
    scenario_not lumivane_wine reg query "$run" /v Lumivane
  scenario_check "the silent uninstall removes the installed-apps entry" \
    scenario_not lumivane_wine reg query "$entry"
  scenario_check "the silent uninstall removes the selection" \
    test -z "$(scenario_reg_value "$desktop" SCRNSAVE.EXE)"
  scenario_check "the screen saver is off" test "$(scenario_reg_value "$desktop" ScreenSaveActive)" = 0

  # Again, over an older version whose tray and saver run (a program with bytes after its image
  # runs as before). Their files are set aside and go at a restart (Wine's: wineboot -r).
  local scr="$LUMIVANE_ROOT/build/win/Lumivane.scr"
  mkdir -p "$folder" && { cat "$scr" && echo "an older Lumivane.scr"; } >"$folder/Lumivane.scr" &&
    { cat "$app" && echo "an older Lumivane.exe"; } >"$folder/Lumivane.exe"
  scenario_start_tray "$folder/Lumivane.exe" || scenario_fail "the older Lumivane.exe did not start"
  lumivane_start_saver "$win_folder\\Lumivane.scr" 2>/dev/null ||
    scenario_fail "the older Lumivane.scr did not start"
  lumivane_wine "$setup" /S 2>/dev/null
  scenario_check "an install over a running older version succeeds" test $? = 0
  scenario_check "an install over a running Lumivane.scr replaces it" cmp -s "$folder/Lumivane.scr" "$scr"
  scenario_check "an install over a running Lumivane.exe replaces it" cmp -s "$folder/Lumivane.exe" "$app"
  scenario_check "installed apps: the new version" \
    test "$(scenario_reg_value "$entry" DisplayVersion)" = "$version"
  scenario_check "the older saver runs on and ends on a mouse move" lumivane_end_saver 2>/dev/null
  lumivane_wine wineboot -r >/dev/null 2>&1
  scenario_check "after a restart nothing is left beside the installed files" \
    test "$(cd "$folder" && echo *)" = "Lumivane.exe Lumivane.scr Uninstall.exe"

  # The user picks another saver and changes the sign-in entry, then uninstalls while the saver runs.
  local other='C:\windows\system32\other.scr' own_run="\"C:\\Tools\\Lumivane.exe\" --quiet"
  lumivane_wine reg add "$desktop" /v SCRNSAVE.EXE /d "$other" /f >/dev/null 2>&1
  lumivane_wine reg add "$run" /v Lumivane /d "$own_run" /f >/dev/null 2>&1
  lumivane_start_saver "$win_folder\\Lumivane.scr" 2>/dev/null || scenario_fail "Lumivane.scr did not start"
  lumivane_wine "$folder/Uninstall.exe" /S
  scenario_check "an uninstall beside a running saver removes the installed-apps entry" \
    scenario_within 30 scenario_not lumivane_wine reg query "$entry"
  lumivane_end_saver 2>/dev/null
  scenario_check "a user who chose another saver keeps it" \
    test "$(scenario_reg_value "$desktop" SCRNSAVE.EXE)" = "$other"
  scenario_check "a sign-in entry the user changed stays" \
    test "$(scenario_reg_value "$run" Lumivane)" = "$own_run"
  lumivane_wine wineboot -r >/dev/null 2>&1 && scenario_wait_for_prefix
  scenario_check "after a restart the second uninstall has removed the folder" test ! -e "$folder"

  # A user's own install, taking every page's default.
  WINEDEBUG=-all,+loaddll scenario_setup_with_defaults "$setup" 2>"$trace"
  scenario_check "an interactive install opens Lumivane's settings at the end" \
    scenario_within 20 scenario_app_is "$win_folder\\Lumivane.exe --settings"
  scenario_check "an interactive install opens the screen saver settings only when asked" \
    scenario_not grep -qi 'Loaded L"[^"]*control\.exe' "$trace"
  lumivane_wine "$folder/Uninstall.exe" /S && scenario_wait_for_prefix

  scenario_check "photos and data folder are byte for byte the same" \
    test "$(scenario_snapshot "$photos" "$data")" = "$before"
  rm -f "$trace"
  [ "$scenario_failures" -eq 0 ]
}

# A JPEG of $1 with an orientation tag 6 (turn right to show it upright) written into $2: an EXIF
# segment of one entry, right after the start of the image.
scenario_jpeg_turned_right() {
  { printf '\xff\xd8\xff\xe1\x00\x22Exif\x00\x00MM\x00\x2a\x00\x00\x00\x08\x00\x01\x01\x12'
    printf '\x00\x03\x00\x00\x00\x01\x00\x06\x00\x00\x00\x00\x00\x00'
    tail -c +3 "$1"; } >"$2"
}

# Name, width, height and size in bytes of every file of the folder $1, one per line, in order.
scenario_listing() {
  (cd "$1" && for f in *; do [ -f "$f" ] && printf '%s %s %s\n' "$f" "$(identify -format '%w %h' "$f[0]" 2>/dev/null)" "$(stat -c '%s %Y' "$f")"; done) | sort
}

# The import of a user's photos by the real Lumivane.exe --import: real photos of several sizes,
# one turned by its orientation tag, a PNG in a sub-folder, a corrupt and an empty file, a second
# chosen folder, and a photo that the user put into the saver's folder by hand under a name like
# an imported one. Then the saver shows what came in.
scenario_import() {
  scenario_failures=0
  local base="$WINEPREFIX/drive_c/lumivane-import" win_base='C:\lumivane-import'
  local holidays="$base/Holidays" other="$base/Other" nature=/usr/share/backgrounds/mate/nature
  local saver_dir="$base/tree/Lumivane/Lumivane ScreenSaver" exe
  exe="$LUMIVANE_ROOT/build/win/Lumivane.exe"
  rm -rf "$base"
  mkdir -p "$holidays/Beach" "$other" "$saver_dir"
  convert "$nature/Aqua.jpg" -quality 92 "$holidays/Lake at dawn.jpg" &&
    convert "$nature/Aqua.jpg" -resize 1200x800 "$holidays/Small pond.jpg" &&
    convert -size 1600x1200 xc:red -fill blue -draw 'rectangle 0,600 1599,1199' "$base/turned.jpg" &&
    scenario_jpeg_turned_right "$base/turned.jpg" "$holidays/IMG_0042.jpg" &&
    convert "$nature/Storm.jpg" "$holidays/Beach/Sand.png" &&
    cp "$nature/Garden.jpg" "$other/Hill.jpg" || return 1
  head -c 20000 "$holidays/Lake at dawn.jpg" >"$holidays/Cut short.jpg"
  : >"$holidays/Empty.jpg"
  echo "not a photo" >"$holidays/Notes.jpg"
  cp "$LUMIVANE_PHOTO" "$saver_dir/Mine-z1234567.jpg"
  lumivane_wine reg add 'HKCU\Software\LumivaneW' /v ImportsDir /d "$win_base\\tree" /f >/dev/null 2>&1
  lumivane_wine reg add 'HKCU\Software\LumivaneW' /v ImportFolders /t REG_MULTI_SZ \
    /d "$win_base\\Holidays\\0$win_base\\Other" /f >/dev/null 2>&1
  local sources mine
  sources="$(scenario_snapshot "$holidays" "$other")"
  mine="$(sha256sum "$saver_dir/Mine-z1234567.jpg")"

  lumivane_wine "$exe" --import 2>/dev/null
  local listing
  listing="$(scenario_listing "$saver_dir")"
  echo "$listing" | sed 's/^/  /'
  # Copies cover 1920x1080 (the virtual monitors are smaller), are never scaled up, and keep
  # their proportions; the photo turned by its tag comes out upright, named after its folder.
  local name width height
  while IFS='|' read -r name width height; do
    scenario_check "a copy $name, ${width}x$height" \
      grep -qE "^$name-z[0-9a-z]{7}\\.jpg $width $height " <<<"$listing"
  done <<EOT
Lake at dawn|1920|1200
Small pond|1200|750
Holidays|1200|1600
Sand|1920|1280
Hill|1920|1200
EOT
  scenario_check "nothing else: no copy of the corrupt, empty or foreign files" \
    test "$(wc -l <<<"$listing")" = 6
  local turned
  turned="$(ls "$saver_dir"/Holidays-z*.jpg 2>/dev/null | head -1)"
  scenario_check "the turned photo is upright: blue at the left, red at the right" \
    test "$(convert "$turned" -format '%[fx:p{20,800}.b>0.8 && p{1180,800}.r>0.8]' info: 2>/dev/null)" = 1
  scenario_check "no copy carries an orientation tag" \
    scenario_not grep -l 'exif:Orientation' <(identify -verbose "$saver_dir"/*-z*.jpg 2>/dev/null)
  scenario_check "the sources are byte for byte the same" \
    test "$(scenario_snapshot "$holidays" "$other")" = "$sources"
  scenario_check "the hand-placed photo is untouched" \
    test "$(sha256sum "$saver_dir/Mine-z1234567.jpg")" = "$mine"
  scenario_check "no part files are left" scenario_not ls "$saver_dir"/*.lumivane-part

  sleep 1
  lumivane_wine "$exe" --import 2>/dev/null
  scenario_check "a second run writes nothing" test "$(scenario_listing "$saver_dir")" = "$listing"

  lumivane_wine reg add 'HKCU\Software\LumivaneW' /v ImportFolders /t REG_MULTI_SZ \
    /d "$win_base\\Holidays" /f >/dev/null 2>&1
  lumivane_wine "$exe" --import 2>/dev/null
  scenario_check "a folder taken off the list takes exactly its copies along" \
    test "$(scenario_listing "$saver_dir")" = "$(grep -v '^Hill-z' <<<"$listing")"

  # The saver shows the imported photos with their captions.
  local shots="$LUMIVANE_BUILD_DIR/import-shots"
  rm -rf "$shots" && mkdir -p "$shots"
  scenario_check "the saver shows the imported photos" \
    lumivane_run_saver "$LUMIVANE_ROOT/build/win/Lumivane.scr" "$shots" 1 4000
  scenario_check "a photo is on the screen" \
    test "$(convert "$shots/shot-1.png" -format '%[fx:mean>0.1]' info: 2>/dev/null)" = 1
  lumivane_wine reg delete 'HKCU\Software\LumivaneW' /v ImportsDir /f >/dev/null 2>&1
  lumivane_wine reg delete 'HKCU\Software\LumivaneW' /v ImportFolders /f >/dev/null 2>&1
  [ "$scenario_failures" -eq 0 ]
}
