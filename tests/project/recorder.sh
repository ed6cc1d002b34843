#!/usr/bin/env bash
# usage: recorder.sh RECORDER SAISH LIBSAI RECORDED LOADING SOAK EXAMPLE...
# The recorder before applications on the virtual chip, beside the chip's own recordings of the same applications. An
# example is a script or a program.
set -euo pipefail
recorder=$1 saish=$2 library=$3 recorded=$4 loading=$5 soak=$6
shift 6
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

fail() {
  echo "$1" >&2
  exit 1
}

# record FILE COMMAND...: with the recorder; prints what COMMAND writes to either output.
record() {
  local file=$1
  shift
  SWSDK_RECORD=$file LD_PRELOAD=$recorder "$@" 2>&1
}

# calls FILE: the calls of a recording. The recorder cannot know an injected fault from an answer.
calls() { sed -nE 's/^(call|fault) /call /; s/ @[0-9]+\.[0-9]{6} [0-9]+$//; /^call /p' "$1"; }

for example in "$@" "$soak"; do
  case $example in
    *.sai) command=("$saish" "$example") ;;
    "$soak") command=("$soak" --work 5000) ;;
    *) command=("$example") ;;
  esac
  SWSDK_RECORD=own.rec "${command[@]}" >out
  record before.rec "${command[@]}" >out
  calls own.rec >own
  calls before.rec >before
  [ "$(wc -l <own)" -gt 10 ] || fail "$example: its own recording has $(wc -l <own) calls"
  diff own before || fail "$example: the recorder has other calls (>) than the chip (<)"
  [ "$(sed -n '1p;$p' before.rec)" = "swsdk recording 3"$'\n'end ] || fail "$example: $(sed -n '1p;$p' before.rec)"
done

# A line has its time and thread; events have them, too.
grep -Eqx 'call sdk_main\(0, NULL\) = 0 @[0-9]+\.[0-9]{6} 1' before.rec || fail "no time and thread: $(head before.rec)"
printf '%s\n' 'sai_register_link_service print' 'link 3 up' 'link 3 down' >link.sai
record link.rec "$saish" link.sai >out
grep -Eq '^event bcm_linkscan_handler_t\(<callback 1>, 0, 3, \{linkstatus=1\}\) @[0-9.]+ [0-9]+$' link.rec ||
  fail "there is no event in: $(cat link.rec)"
# On the desk the chip raises what came from outside.
"$saish" --replay link.rec
[ "$("$saish" --replay link.rec --report)" = "5 of 5 answers and events are the same: 100.00 %" ] ||
  fail "$("$saish" --replay link.rec --report)"

# Nothing is written of a program that makes no call.
echo kept >kept.rec
record kept.rec "$recorded" nothing
[ "$(cat kept.rec)" = kept ] || fail "a program that makes no call wrote a recording"

# Calls of several threads: all of them, in whole lines.
record threads.rec "$recorded" threads
[ "$(grep -Ec '^call bcm_vlan_port_add\(0, 1, \{[1-4]\}, \{\}\) = 0 @[0-9.]+ [1-5]$' threads.rec)" = 4000 ] ||
  fail "4 threads made $(grep -c bcm_vlan_port_add threads.rec) of 4000 calls"
"$saish" --replay threads.rec

# A child goes on with the recording of its parent.
record fork.rec "$recorded" fork
[ "$(calls fork.rec | tail -2)" = "call bcm_vlan_create(0, 10) = 0"$'\n'"call bcm_vlan_create(0, 20) = 0" ] ||
  fail "parent and child recorded: $(cat fork.rec)"
"$saish" --replay fork.rec

# A process that is killed leaves whole lines.
record killed.rec "$recorded" forever &
pid=$!
until [ "$(stat -c %s killed.rec 2>/dev/null || echo 0)" -gt 100000 ]; do :; done
pkill -KILL -P "$pid" 2>/dev/null || kill -KILL "$pid"
wait "$pid" 2>/dev/null || true
[ -z "$(tail -c 1 killed.rec)" ] || fail "killed, it left half a line: $(tail -1 killed.rec)"
head -100 killed.rec >some.rec
got=0
"$saish" --replay some.rec 2>err || got=$?
[ "$got" = 3 ] || fail "what a killed process recorded is read with $got: $(cat err)"

# The SDK is loaded while the program runs, and switched off.
out=$(record loading.rec "$loading" "$library")
[ "$(calls loading.rec)" = "call bcm_vlan_create(0, 10) = -3" ] || fail "loaded late ($out): $(cat loading.rec)"

# An SDK that lacks a function.
mkdir lacking
printf 'int sdk_main(int a, char** b) { (void)a; (void)b; return 0; }\nint system_init(int unit) { return unit; }\n' >lacking.c
"${CC:-cc}" -shared -fPIC -Wl,-soname,libswsdk.so -o lacking/libswsdk.so lacking.c
out=$(LD_LIBRARY_PATH=lacking record lacking.rec "$recorded" lacking)
[ "$out" = -16 ] || fail "a function that the SDK lacks answered $out"
[ "$(calls lacking.rec | tail -1)" = "call bcm_vlan_create(0, 10) = -16" ] || fail "$(cat lacking.rec)"

# The application does not notice a recording that cannot be written.
out=$(record /nowhere/a.rec "$recorded" threads)
[ "$out" = "<3> the recording /nowhere/a.rec ends here: No such file or directory" ] || fail "it said: $out"
out=$(record /dev/full "$recorded" threads)
[ "$out" = "<3> the recording /dev/full ends here: No space left on device" ] || fail "it said: $out"

# A disk that becomes full ends the recording with a whole line.
if [ "$(id -u)" = 0 ]; then
  export recorder recorded
  out=$(unshare --mount bash -ec '
    mount -t tmpfs -o size=64k tmpfs "$0"
    SWSDK_RECORD=$0/full.rec LD_PRELOAD=$recorder "$recorded" threads 2>&1
    cp "$0/full.rec" full.rec' "$(mkdir disk && echo "$work/disk")")
  [ "$out" = "<3> the recording $work/disk/full.rec ends here: No space left on device" ] || fail "it said: $out"
  [ "$(stat -c %s full.rec)" -gt 60000 ] || fail "the disk was full at $(stat -c %s full.rec) bytes"
  [ -z "$(tail -c 1 full.rec)" ] || fail "a full disk left half a line: $(tail -1 full.rec)"
fi

# With a limit there are two files. Each begins with the calls that are still in effect, and so leads to the same tables,
# but for addresses that the chip learned and nobody was told of.
tables=$("$saish" -c 'show nothing' 2>&1 | sed 's/.*the tables are //; s/,//g' || true)
# shellcheck disable=SC2086  # a word each
tables_after() { printf 'show %s\n' ${tables//@(clock|learnlimit|mac) /} | "$saish" --replay "$1" --until 1e9 2>/dev/null; }
shopt -s extglob
bytes() { cat "$1"* | wc -c; }
record whole.rec "$soak" --work 20000
SWSDK_RECORD_LIMIT=4M record ring.rec "$soak" --work 20000
[ "$(stat -c %s whole.rec)" -gt 4194304 ] || fail "there is no need of a limit: $(stat -c %s whole.rec) bytes"
[ "$(bytes ring.rec)" -le 4194304 ] || fail "with a limit of 4 MiB there are $(bytes ring.rec) bytes"
[ "$(head -1 ring.rec.1) $(tail -1 ring.rec.1)" = "swsdk recording 3 end" ] || fail "the former file is no whole recording"
sed -n 2p ring.rec | grep -Eqx 'state [0-9]+' || fail "it begins with: $(head -3 ring.rec)"
tables_after whole.rec >whole
tables_after ring.rec >ring
[ "$(wc -l <whole)" -gt 2000 ] || fail "the tables have $(wc -l <whole) lines"
diff whole ring || fail "what is left (>) of a recording leads to other tables than all of it (<)"

# Killed at any moment, it leaves whole recordings within the limit: two, or between two files the former one.
for moment in 1 2 3 4 5; do
  SWSDK_RECORD_LIMIT=64K record killed.rec "$recorded" forever &
  pid=$!
  until [ -e killed.rec.1 ]; do :; done
  sleep "0.00$moment"
  pkill -KILL -P "$pid" 2>/dev/null || kill -KILL "$pid"
  wait "$pid" 2>/dev/null || true
  [ "$(bytes killed.rec)" -le 65536 ] || fail "with a limit of 64 KiB there are $(bytes killed.rec) bytes"
  [ -e killed.rec.1 ] || fail "of a killed process is left: $(ls killed*)"
  for file in killed.rec killed.rec.1; do
    [ -e "$file" ] || continue
    got=0
    "$saish" --replay "$file" 2>err || got=$?
    [[ "$got" == [03] ]] || fail "$file of a killed process is read with $got: $(cat err)"
  done
  rm killed.rec*
done

# When its file is moved, it ends; what was moved stays as it was.
SWSDK_RECORD_LIMIT=64K record moved.rec "$recorded" forever >said &
pid=$!
until mv moved.rec elsewhere 2>/dev/null; do :; done
until grep -q "the recording moved.rec ends here: " said; do sleep 0.01; done
pkill -KILL -P "$pid" 2>/dev/null || kill -KILL "$pid"
wait "$pid" 2>/dev/null || true
[ ! -e moved.rec ] || fail "a recording that was moved began anew"
[ -z "$(tail -c 1 elsewhere)" ] || fail "moved, it ends with half a line: $(tail -1 elsewhere)"

# When what is in the chip leaves no room, the recording ends.
SWSDK_RECORD_LIMIT=64K record small.rec "$soak" --work 5000
tail -1 small.rec | grep -q ' @' || fail "a ring too small for the chip ends with: $(tail -1 small.rec)"
for limit in many 64X 0 -1 99999999999999999999 99999999999G; do
  out=$(SWSDK_RECORD_LIMIT=$limit record unlimited.rec "$recorded" lacking)
  [ "$out" = "<3> the recording unlimited.rec ends here: SWSDK_RECORD_LIMIT is no size such as 64M"$'\n'0 ] || fail "$out"
  [ ! -e unlimited.rec ] || fail "a limit of $limit has a recording"
done

# The table of effects has every function that changes what is in a chip. Counters do not count, and stk_modmap_map only
# translates here.
sources=$(cd "$OLDPWD" && cd "$(dirname "$0")/../.." && pwd)
functions() { grep -oP "$1" "$sources/$2" | sort -u; }
functions '^CALL\(\w+, \K\w+' swsdk/api/calls/calls.inc | grep -Ev '_(get|find|find_vlan|read|sync|traverse)$' >changing
functions '^    \{"\K\w+(?=")' recorder/effects.cpp | grep -v '_handler_t$' >told
printf '%s\n' bcm_stat_clear bcm_stk_modmap_map | sort - told | diff changing - || fail "the table of effects lacks some (<)"
