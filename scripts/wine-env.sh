# Sourced by the other scripts: a private Wine prefix inside the build tree and a virtual X
# display with two monitors, both torn down again when the calling script exits.
#
#   source scripts/wine-env.sh
#   lumivane_wine_start          # virtual display + prefix; exports DISPLAY and WINEPREFIX
#   lumivane_wine some.exe args  # runs a Windows program in that prefix
#
# Knobs (environment):
#   LUMIVANE_BUILD_DIR   build tree that holds the prefix (default: <repo>/build)
#   LUMIVANE_SCREEN      size of each virtual monitor (default: 1024x768x24)

LUMIVANE_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
LUMIVANE_BUILD_DIR="${LUMIVANE_BUILD_DIR:-$LUMIVANE_ROOT/build}"
LUMIVANE_WINE64="${LUMIVANE_WINE64:-/usr/lib/wine/wine64}"
LUMIVANE_WINESERVER="${LUMIVANE_WINESERVER:-/usr/lib/wine/wineserver}"
LUMIVANE_SCREEN="${LUMIVANE_SCREEN:-1024x768x24}"

export WINEPREFIX="$LUMIVANE_BUILD_DIR/wineprefix"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEARCH=win64
# Never offer to download Mono or Gecko: nothing here needs them, and the dialog would wait forever.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=;winemenubuilder.exe=d}"

LUMIVANE_X_PIDS=""
LUMIVANE_X_NUMBER=""
LUMIVANE_WINE_STARTED=0

# Bump when the prefix set-up below changes, so that existing prefixes are brought up to date.
LUMIVANE_PREFIX_STAMP="lumivane-prefix-v3"

lumivane_log() { echo "wine-env: $*" >&2; }

lumivane_wine() { "$LUMIVANE_WINE64" "$@"; }

# Starts an X server on a display number that it picks itself (-displayfd), so that parallel
# runs never fight over one number, and sets LUMIVANE_X_NUMBER to it; $1 names the server in
# messages.
lumivane_start_x_server() {
  local name="$1"; shift
  local fdfile log
  fdfile="$(mktemp)"
  log="$(mktemp)"
  "$@" -displayfd 3 -nolisten tcp 3>"$fdfile" >"$log" 2>&1 &
  local pid=$!
  LUMIVANE_X_PIDS="$pid $LUMIVANE_X_PIDS"
  local i
  for i in $(seq 1 100); do
    if [ -s "$fdfile" ] || ! kill -0 "$pid" 2>/dev/null; then break; fi
    sleep 0.1
  done
  local number
  number="$(tr -dc '0-9' <"$fdfile")"
  rm -f "$fdfile"
  if [ -z "$number" ]; then
    lumivane_log "$name did not start:"
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
  LUMIVANE_X_NUMBER="$number"
}

# Two monitors side by side. Xvfb's Xinerama puts all its screens at the origin, on top of each
# other, and Wine takes screens with equal rectangles for mirrors of one monitor; so Xvfb only
# hosts Xephyr, whose -origin places its second screen to the right of the first.
lumivane_start_virtual_display() {
  local width="${LUMIVANE_SCREEN%%x*}"
  local rest="${LUMIVANE_SCREEN#*x}"
  local height="${rest%%x*}"
  lumivane_start_x_server Xvfb Xvfb -screen 0 "$((width * 2))x${height}x24" || return 1
  local host="$LUMIVANE_X_NUMBER"
  DISPLAY=":$host" lumivane_start_x_server Xephyr Xephyr +xinerama -no-host-grab \
    -screen "$LUMIVANE_SCREEN" -origin "$width,0" -screen "$LUMIVANE_SCREEN" || return 1
  export DISPLAY=":$LUMIVANE_X_NUMBER"
  lumivane_log "virtual display $DISPLAY: 2 monitors of $LUMIVANE_SCREEN (Xephyr in Xvfb :$host)"
}

lumivane_display_usable() {
  [ -n "${DISPLAY:-}" ] || return 1
  if command -v xdpyinfo >/dev/null 2>&1; then
    xdpyinfo >/dev/null 2>&1
  else
    # Without xdpyinfo, trust a local socket or a remote display name.
    case "$DISPLAY" in
      :*) local n="${DISPLAY#:}"; n="${n%%.*}"; [ -S "/tmp/.X11-unix/X$n" ] ;;
      *) return 0 ;;
    esac
  fi
}

# Writes the test set-up into the prefix's registry: a stand-in for "Segoe UI" (DirectWrite
# draws nothing for a missing family) and Xinerama instead of XRandR, which sees one big
# screen. Windows are left unmanaged: with no window manager on the virtual display, Wine
# would wait 2 s for one to acknowledge every window that is hidden.
lumivane_configure_prefix() {
  # Wine links the user's Documents, Pictures, ... to the Linux home folder. The saver makes its
  # photo tree in Documents: keep that inside the prefix, as plain folders.
  local link
  while IFS= read -r link; do
    rm -f "$link" && mkdir -p "$link"
  done < <(find "$WINEPREFIX/drive_c/users" -mindepth 2 -maxdepth 2 -type l 2>/dev/null)
  local fonts="$WINEPREFIX/drive_c/windows/Fonts"
  mkdir -p "$fonts"
  cp -f /usr/share/fonts/truetype/dejavu/DejaVuSans.ttf "$fonts/"
  local reg="$WINEPREFIX/drive_c/lumivane-setup.reg"
  cat >"$reg" <<'EOF'
REGEDIT4

[HKEY_CURRENT_USER\Software\Wine\Fonts\Replacements]
"Segoe UI"="DejaVu Sans"

[HKEY_CURRENT_USER\Software\Wine\X11 Driver]
"UseXRandR"="N"
"Managed"="N"
EOF
  lumivane_wine regedit /S 'C:\lumivane-setup.reg' >/dev/null 2>&1
  rm -f "$reg"
}

# Creates the prefix once; later runs reuse it and pay nothing.
lumivane_prepare_prefix() {
  mkdir -p "$LUMIVANE_BUILD_DIR"
  if [ -f "$WINEPREFIX/$LUMIVANE_PREFIX_STAMP" ]; then
    return 0
  fi
  local started=$SECONDS
  if [ ! -f "$WINEPREFIX/system.reg" ]; then
    lumivane_log "creating Wine prefix $WINEPREFIX"
    lumivane_wine wineboot -i >/dev/null 2>&1
  fi
  lumivane_configure_prefix
  # Let the server write the registry to disk before we mark the prefix as done.
  "$LUMIVANE_WINESERVER" -w
  touch "$WINEPREFIX/$LUMIVANE_PREFIX_STAMP"
  lumivane_log "prefix ready in $((SECONDS - started)) s"
}

lumivane_wine_stop() {
  if [ "$LUMIVANE_WINE_STARTED" = 1 ]; then
    "$LUMIVANE_WINESERVER" -k >/dev/null 2>&1 || true
    "$LUMIVANE_WINESERVER" -w >/dev/null 2>&1 || true
    LUMIVANE_WINE_STARTED=0
  fi
  # Nested server first: the list holds the most recently started one first.
  local pid
  for pid in $LUMIVANE_X_PIDS; do
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
  done
  LUMIVANE_X_PIDS=""
}

# Brings up the display and the prefix and arranges for both to go away when the shell exits,
# on success, failure or interruption. One run at a time may use a prefix: a second one waits.
# With the argument "own-display", a usable DISPLAY of the caller is used instead of the
# virtual one.
lumivane_wine_start() {
  mkdir -p "$LUMIVANE_BUILD_DIR"
  exec 8>"$LUMIVANE_BUILD_DIR/wineprefix.lock"
  if ! flock -n 8; then
    lumivane_log "waiting for another run that uses $WINEPREFIX"
    flock 8
  fi
  trap lumivane_wine_stop EXIT
  trap 'exit 130' INT
  trap 'exit 143' TERM
  if [ "${1:-}" = own-display ] && lumivane_display_usable; then
    lumivane_log "using the display $DISPLAY"
  else
    lumivane_start_virtual_display || return 1
  fi
  LUMIVANE_WINE_STARTED=1
  lumivane_prepare_prefix
}

# lumivane_start_saver SAVER: starts "SAVER /s" (a Unix or a Windows path) in the background, as
# LUMIVANE_SAVER_PID, and succeeds once its windows show. Wine names the X class of every window of
# a program after its file, so the windows are found by that name. Needs xdotool.
lumivane_start_saver() {
  local saver="$1" class="${1##*[\\/]}" i
  class="${class,,}"
  "$LUMIVANE_WINE64" "$saver" /s &
  LUMIVANE_SAVER_PID=$!
  # Wine starts a program in about a second; a loaded machine gets 20.
  for i in $(seq 200); do
    if [ -n "$(xdotool search --onlyvisible --classname "^${class//./\\.}\$" 2>/dev/null)" ]; then
      return 0
    fi
    kill -0 "$LUMIVANE_SAVER_PID" 2>/dev/null || break
    sleep 0.1
  done
  lumivane_log "$saver /s showed no window"
  return 1
}

# lumivane_end_saver: ends the run of lumivane_start_saver as a user would, with a mouse move, and
# succeeds when it then ends with exit code 0.
lumivane_end_saver() {
  local pid="$LUMIVANE_SAVER_PID" i
  # The saver takes its first move as its resting place only, and Wine may merge moves that come
  # quickly: move to and fro, 100 pixels apart, until the run ends (at most 10 s).
  for i in $(seq 50); do
    kill -0 "$pid" 2>/dev/null || break
    xdotool mousemove $((300 + 100 * (i % 2))) 300
    sleep 0.2
  done
  if kill -0 "$pid" 2>/dev/null; then
    lumivane_log "the saver still runs after 10 s of mouse moves"
    kill "$pid"
  fi
  wait "$pid"
}

# lumivane_run_saver SAVER [FOLDER SHOTS INTERVAL_MS]: one full-screen run of SAVER as a user meets
# it: lumivane_start_saver, then SHOTS screenshots of the whole display saved into FOLDER as
# shot-1.png, shot-2.png, ..., the first INTERVAL_MS after the windows showed and each next one
# INTERVAL_MS later, then lumivane_end_saver. Succeeds only when the windows showed, every
# screenshot was saved and the saver ended with exit code 0. Needs ImageMagick for screenshots.
lumivane_run_saver() {
  local folder="${2:-}" shots="${3:-0}" interval="${4:-2000}" shot ok=1
  lumivane_start_saver "$1" || { ok=0; shots=0; }
  for shot in $(seq "$shots"); do
    sleep "$(awk -v ms="$interval" 'BEGIN { print ms / 1000 }')"
    import -window root "$folder/shot-$shot.png" || ok=0
  done
  lumivane_end_saver || ok=0
  [ "$ok" = 1 ]
}
