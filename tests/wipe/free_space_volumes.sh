#!/usr/bin/env bash
# Free-space wipes of a real volume: a 64 MiB image inside the build folder,
# formatted (ntfs or ext4), mounted beside it, mapped as a drive of the
# build's Wine prefix. Secrets are written and deleted, overseer wipes the
# free space, and the raw image is searched for what the secrets held.
#
#   free_space_volumes.sh BUILD ntfs|ext4 proof|stop|kill
#
# proof: no marker, no small file's content left; canaries intact; free
#        space and folder times as before; no deleted name left but one
#        (NTFS: in its folder's record, which nothing reaches on a full volume).
# stop:  a stop mid-wipe leaves no fill and clears the wiped-drive value.
# kill:  a killed worker leaves its fill; the next start removes it.
set -euo pipefail

build=$(cd "$1" && pwd)
kind=$2
scenario=$3
source_dir=$(cd "$(dirname "$0")/../.." && pwd)

if [ "$(id -u)" -ne 0 ]; then
  echo "SKIP: mounting an image needs root"
  exit 77
fi
command -v mkfs.ntfs >/dev/null && command -v ntfs-3g >/dev/null || { echo "SKIP: ntfs-3g is not installed"; exit 77; }

work="$build/volumes/$kind-$scenario"
image="$work/volume.img"
mnt="$work/mnt"
letter=v
source "$source_dir/scripts/sandbox.sh"
sandbox_enter "$build"
drive_link="$WINEPREFIX/dosdevices/$letter:"
overseer=("$build/wine-run" "$build/bin/overseer.exe" --timeout 300)
marker_key='HKCU\Software\Corvane Suite\Scourel'

unmount() {
  mountpoint -q "$mnt" || return 0
  sync
  umount "$mnt" 2>/dev/null && return 0
  # A Wine process still holding the volume: our own server, of this prefix.
  wineserver -k 2>/dev/null || true
  wineserver -w 2>/dev/null || true
  umount "$mnt" 2>/dev/null || umount -l "$mnt"
}

cleanup() {
  local status=$?
  [ -n "${overseer_pid:-}" ] && kill "$overseer_pid" 2>/dev/null || true
  rm -f "$drive_link"
  unmount || true
  local loop
  for loop in $(losetup -j "$image" 2>/dev/null | cut -d: -f1); do losetup -d "$loop" || true; done
  mountpoint -q "$mnt" || rm -rf "$work"
  exit "$status"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

fail() {
  echo "FAIL: $*"
  exit 1
}

rm -rf "$work"
mkdir -p "$mnt"
truncate -s 64M "$image"
case "$kind" in
  ntfs)
    mkfs.ntfs -F -Q -q "$image" >/dev/null 2>&1
    ntfs-3g "$image" "$mnt"
    ;;
  ext4)
    mkfs.ext4 -q -F -m 0 "$image"
    mount -o loop,nodelalloc "$image" "$mnt"
    ;;
  *) fail "unknown file system $kind" ;;
esac
# ext4 keeps about 2 % of its clusters back for its own metadata, which no
# file may take, and with delayed allocation keeps room for the bookkeeping
# of writes not yet placed: both are given to files here (reserve 0,
# nodelalloc), so that the fill can reach every free block, as it can on the
# file systems Windows has.
release_reserve() {
  [ "$kind" = ext4 ] || return 0
  local loop
  loop=$(findmnt -n -o SOURCE "$mnt")
  echo 0 >"/sys/fs/ext4/$(basename "$loop")/reserved_clusters"
}
release_reserve
# Nothing of the sandbox may reach the host: the drive points into the build folder only.
ln -s "$mnt" "$drive_link"

free_blocks() { sync; stat -f -c '%f' "$mnt"; }
block_size() { stat -f -c '%S' "$mnt"; }
fill_left() { find "$mnt" -maxdepth 1 \( -iname 'XE8AQU*.tmp' -o -name '$$XE8AQU' \) | wc -l; }
marker_set() { "$SCOUREL_WINE" reg query "$marker_key" /v LastWipedDriveName >/dev/null 2>&1; }

# --- What a user left: canaries to keep, secrets deleted before the wipe ----
mkdir -p "$mnt/keep" "$mnt/work"
head -c 3M /dev/urandom >"$mnt/keep/canary.bin"
echo "canary small file kept inside its record" >"$mnt/keep/canary.txt"
head -c 200 /dev/urandom >"$mnt/work/canary-in-work.bin"
(cd "$mnt" && find keep work -type f -exec sha256sum {} + | sort -k2) >"$work/canaries.sum"
# To 100 ns, the precision of a Windows file time.
folder_times() { (cd "$mnt" && stat -c '%n %.9Y' keep work | sed 's/..$//'); }

big_marker="SCOURELBIGSECRET"
head -c 6M < <(yes "$big_marker") >"$mnt/work/big-secret.bin"
names=()
contents=()
for i in $(seq -w 1 20); do
  tag=$(head -c 6 /dev/urandom | od -An -tx1 | tr -d ' \n')
  names+=("secretname$i$tag")
  contents+=("smallsecret$i$tag")
  # Small enough that NTFS keeps the data inside the file's record.
  printf '%s%0200d\n' "smallsecret$i$tag" 0 >"$mnt/work/secretname$i$tag.txt"
done
sync
rm -f "$mnt/work/big-secret.bin" "$mnt"/work/secretname*.txt
# Deleted in an earlier session: mounted afresh, as after a restart.
unmount
case "$kind" in
  ntfs) ntfs-3g "$image" "$mnt" ;;
  ext4) mount -o loop,nodelalloc "$image" "$mnt" ;;
esac
release_reserve
blocks_before=$(free_blocks)
times_before=$(folder_times)

# --- The scenario -------------------------------------------------------------
case "$scenario" in
  proof)
    "${overseer[@]}" --wipe random wipe free "$letter:" | tee "$work/overseer.out"
    grep -q "status    completed" "$work/overseer.out" || fail "the wipe did not complete"
    ;;
  stop | kill)
    # Gutmann's 35 passes keep the fill going long enough to be caught.
    "${overseer[@]}" --wipe gutmann --keep-worker wipe free "$letter:" >"$work/overseer.out" 2>&1 &
    overseer_pid=$!
    for _ in $(seq 600); do
      size=$(stat -c %s "$mnt/XE8AQU.tmp" 2>/dev/null || echo 0)
      [ "$size" -gt 0 ] && break
      kill -0 "$overseer_pid" 2>/dev/null || break
      sleep 0.1
    done
    [ "$size" -gt 0 ] || { cat "$work/overseer.out"; fail "no fill file appeared"; }
    marker_set || fail "the wiped drive was not recorded before the fill"
    if [ "$scenario" = stop ]; then
      started=$(date +%s%N)
      "${overseer[@]}" stop free | tee "$work/stop.out"
      ms=$(( ($(date +%s%N) - started) / 1000000 ))
      echo "stop answered after $ms ms (with the fill removed)"
      grep -q "free-space wipe stopped" "$work/stop.out" || fail "the stop was not answered"
      # The stop's reply went to the controller that sent it; the first one
      # is still waiting, and the worker it left running is closed.
      kill "$overseer_pid" 2>/dev/null || true
      wait "$overseer_pid" 2>/dev/null || true
      overseer_pid=
      "${overseer[@]}" close >/dev/null
    else
      pid=$(sed -n 's/^worker .*(pid \([0-9]*\)).*/\1/p' "$work/overseer.out" | head -1)
      [ -n "$pid" ] || fail "no worker pid in overseer's output"
      "$SCOUREL_WINE" taskkill /F /PID "$pid" >/dev/null 2>&1 || fail "could not kill worker $pid"
      wait "$overseer_pid" || true
      overseer_pid=
      [ "$(fill_left)" -gt 0 ] || fail "the killed worker left no fill: nothing to prove"
      marker_set || fail "the wiped drive was not recorded"
      # A new worker cleans up before its window appears; close it once it has.
      "$build/wine-run" "$build/bin/scourel.exe" &
      worker_job=$!
      for _ in $(seq 300); do
        "${overseer[@]}" close | grep -q "status    completed" && break
        sleep 0.2
      done
      wait "$worker_job" || true
    fi
    ;;
  *) fail "unknown scenario $scenario" ;;
esac

# --- What the volume shows ---------------------------------------------------
[ "$(fill_left)" -eq 0 ] || { ls -la "$mnt"; fail "fill files or folder left on the volume"; }
! marker_set || fail "LastWipedDriveName still set"
(cd "$mnt" && sha256sum -c --quiet "$work/canaries.sum") || fail "a canary changed"
[ "$(folder_times)" = "$times_before" ] || fail "folder times changed: $(folder_times) (were $times_before)"
[ -z "$(find "$mnt" -iname 'XE8AQU*')" ] || fail "fill entries left in folders: $(find "$mnt" -iname 'XE8AQU*')"
blocks_after=$(free_blocks)
block_bytes=$(block_size)
echo "free blocks of $block_bytes bytes: before $blocks_before, after $blocks_after"
diff=$((blocks_before - blocks_after))
[ "${diff#-}" -le 1 ] || fail "free space changed by $diff blocks"
[ "$scenario" = proof ] || { echo "PASS: $kind $scenario"; exit 0; }

# --- What the raw image still holds --------------------------------------------
rm -f "$drive_link"
unmount
utf16() { printf '%s' "$1" | sed 's/./&\\x00/g'; }
count() { LC_ALL=C grep -oaP "$1" "$image" | wc -l || true; }
markers=$(count "$big_marker")
small=0
names_left=0
for i in "${!names[@]}"; do
  small=$((small + $(count "${contents[$i]}")))
  names_left=$((names_left + $(count "${names[$i]}") + $(count "$(utf16 "${names[$i]}")")))
done
echo "left in the raw image: $markers markers, $small small-file contents, $names_left deleted names"
# Where each remaining name lies: a file record starts "FILE" and says how
# many of its bytes are in use, an index block "INDX" likewise.
where=$(python3 - "$image" "${names[@]}" <<'EOF'
import struct, sys
data = open(sys.argv[1], 'rb').read()
for name in sys.argv[2:]:
    for form in (name.encode(), name.encode('utf-16-le')):
        at = data.find(form)
        while at >= 0:
            record, block = at - at % 1024, at - at % 4096
            if data[record:record + 4] == b'FILE':
                used = struct.unpack_from('<I', data, record + 0x18)[0]
                place = 'record-slack' if at - record >= used else 'record'
            elif data[block:block + 4] == b'INDX':
                used = 0x18 + struct.unpack_from('<I', data, block + 0x1c)[0]
                place = 'index-slack' if at - block >= used else 'index'
            else:
                place = 'other'
            print(f'{place} {name} at {at:#x}')
            at = data.find(form, at + 1)
EOF
)
[ -z "$where" ] || echo "$where" | sed 's/^/  /'
# One name stays on NTFS: the first secret's entry in the folder's own
# record, where the folder's index lay before it moved to an index block;
# past the record's used bytes, which grow again only when the index is
# split, and on a full volume no index may grow.
if [ "$kind" = ntfs ]; then
  [ "$names_left" -le 1 ] && [ -z "$(echo "$where" | grep -v '^record-slack\|^$')" ] ||
    fail "deleted names left in folder indexes"
else
  [ "$names_left" -eq 0 ] || fail "deleted names left in folder indexes or the journal"
fi
[ "$markers" -eq 0 ] || fail "the large secret's marker survived"
[ "$small" -eq 0 ] || fail "small files' contents survived"
echo "PASS: $kind proof"
