# Sourced, not run: sandbox_enter BUILD_DIR [LANE] points Wine at a throwaway
# prefix inside BUILD_DIR (creating it the first time) and starts its
# wineserver.
#
# Lanes let tests run side by side: each lane is a sandbox of its own, with
# its own prefix, server and desktop (the worker finds its controller by
# class name, so two tests on one desktop would answer each other). Lane 0
# is <build>/sandbox, lane N <build>/sandbox-N. Without LANE the lane is the
# one CTest gave the test (its "lanes" resource), else 0.
#
# Everything Scourel runs here deletes files and registry keys, so the prefix
# must not reach the host: HOME and XDG_DATA_HOME live inside it (Wine's
# Recycle Bin is the XDG trash), drive z: (which maps "/") is removed, the
# profile folders Wine links to $HOME become real folders, and the menu
# builder is off so that saving a shortcut writes nothing outside.

sandbox_wine() {
  if [ -x /usr/lib/wine/wine64 ]; then echo /usr/lib/wine/wine64
  elif command -v wine64 >/dev/null; then command -v wine64
  else command -v wine
  fi
}

# "id:1,slots:1" -> 1
sandbox_lane() {
  local given="${CTEST_RESOURCE_GROUP_0_LANES:-}"
  given="${given#id:}"
  echo "${given%%,*}"
}

sandbox_enter() {
  local build
  build=$(cd "$1" && pwd) || return 1
  local lane="${2:-$(sandbox_lane)}"
  local root="$build/sandbox"
  case "$lane" in
    "" | 0) ;;
    *[!0-9]*) echo "sandbox: bad lane \"$lane\"" >&2; return 1 ;;
    *) root="$build/sandbox-$lane" ;;
  esac
  export SCOUREL_SANDBOX="$root"
  export SCOUREL_BUILD_DIR="$build"
  export WINEPREFIX="$root/prefix"
  export WINEARCH=win64
  export HOME="$root/home"
  # Wine hides HOME from Windows programs; the tests check this copy.
  export SCOUREL_UNIX_HOME="$HOME"
  export XDG_DATA_HOME="$root/home/.local/share"
  export XDG_CONFIG_HOME="$root/home/.config"
  export XDG_CACHE_HOME="$root/home/.cache"
  export XDG_DESKTOP_DIR="$root/home/Desktop"
  export WINEDLLOVERRIDES="winemenubuilder.exe=d;mscoree=d;mshtml=d"
  export WINEDEBUG="${WINEDEBUG:--all}"
  unset DISPLAY WAYLAND_DISPLAY
  SCOUREL_WINE=$(sandbox_wine)
  export SCOUREL_WINE
  mkdir -p "$HOME" "$XDG_DATA_HOME" "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME"

  if [ ! -f "$root/ready" ]; then
    (
      flock 9
      [ -f "$root/ready" ] || sandbox_create "$build"
    ) 9>"$root.lock" || return 1
  fi
  # A persistent server keeps each test's start-up short. Start it, and the
  # prefix's services, with their output going nowhere: a service started by a
  # test would otherwise inherit the test's output pipe and keep it open
  # forever, and whoever reads that pipe (CTest) would wait forever.
  if ! sandbox_server_running; then
    wineserver -p >/dev/null 2>&1 </dev/null || true
    "$SCOUREL_WINE" wineboot >/dev/null 2>&1 </dev/null || true
  fi
}

sandbox_server_running() {
  local dev ino
  dev=$(stat -c %d "$WINEPREFIX") && ino=$(stat -c %i "$WINEPREFIX") || return 1
  [ -S "/tmp/.wine-$(id -u)/server-$(printf '%x' "$dev")-$(printf '%x' "$ino")/socket" ]
}

sandbox_create() {
  local build="$1"
  echo "sandbox: creating Wine prefix in $WINEPREFIX" >&2
  rm -rf "$WINEPREFIX"
  "$SCOUREL_WINE" wineboot -i >/dev/null 2>&1 || true
  wineserver -w
  [ -d "$WINEPREFIX/drive_c/windows" ] || { echo "sandbox: wineboot failed" >&2; return 1; }

  # No drive may reach "/": keep c: only, then map s: to the build folder so
  # that scourel.exe sits at s:\bin and reads s:\Settings.INI.
  local d
  for d in "$WINEPREFIX"/dosdevices/*; do
    case "$(basename "$d")" in c:|com*|lpt*|aux|nul|prn) ;; *) rm -f "$d" ;; esac
  done
  ln -s "$build" "$WINEPREFIX/dosdevices/s:"

  # Wine links these profile folders to $HOME; a Windows profile has real ones.
  local profile link
  for profile in "$WINEPREFIX"/drive_c/users/*; do
    [ "$(basename "$profile")" = Public ] && continue
    for link in "$profile"/* "$profile"/AppData/Roaming/Microsoft/Windows/Templates; do
      if [ -L "$link" ]; then rm -f "$link"; mkdir -p "$link"; fi
    done
  done
  for link in "$WINEPREFIX"/drive_c/users/Public/*; do
    if [ -L "$link" ]; then rm -f "$link"; mkdir -p "$link"; fi
  done

  "$SCOUREL_WINE" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null 2>&1
  "$SCOUREL_WINE" reg add 'HKCU\Software\Wine\DllOverrides' /v winemenubuilder.exe /d "" /f >/dev/null 2>&1
  wineserver -w
  # Mounts Wine adds on its own later (it re-scans on some updates) are
  # caught by the tests' own check as well.
  if [ -e "$WINEPREFIX/dosdevices/z:" ]; then echo "sandbox: z: still mapped" >&2; return 1; fi
  touch "$SCOUREL_SANDBOX/ready"
}

# Unix path under the build folder -> the same file on drive s:.
sandbox_winpath() {
  local p="$1"
  case "$p" in
    "$SCOUREL_BUILD_DIR"/*) p="s:${p#"$SCOUREL_BUILD_DIR"}"; echo "${p//\//\\}" ;;
    *) echo "$p" ;;
  esac
}
