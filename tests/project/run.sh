#!/usr/bin/env bash
# usage: run.sh SWSDK_RUN SAISH EXAMPLE CHIP_SERVER
# A program on a chip of its own, a shell that looks on, and a chip that is another user's.
set -euo pipefail
swsdk_run=$1 saish=$2 example=$3 server=$4

folder=$(mktemp -d)
chmod 755 "$folder"
process=
end() {
  [ -z "$process" ] || kill "$process" 2>/dev/null || true
  rm -rf "$folder"
}
trap end EXIT
fail() {
  echo "FAILED: $1" >&2
  exit 1
}

# exits CODE TEXT COMMAND...: it exits with that code, and prints that text, among others.
exits() {
  local code=0
  timeout 30 "${@:3}" >"$folder/output" 2>&1 </dev/null || code=$?
  [ "$code" -eq "$1" ] || fail "${*:3}: exit code $code in place of $1: $(cat "$folder/output")"
  [ -z "$2" ] || grep -Fq -- "$2" "$folder/output" || fail "${*:3}: printed $(cat "$folder/output")"
}

exits 0 "It holds these VLANs" "$swsdk_run" -- "$example"
exits 0 "{1-24}" "$swsdk_run" --board ports=24 -- "$example"
exits 7 "" "$swsdk_run" -- sh -c 'exit 7'
exits 143 "" "$swsdk_run" -- sh -c 'kill -TERM $$'
exits 127 "No such file" "$swsdk_run" -- "$folder/no-program"
exits 0 "usage: swsdk-run" "$swsdk_run" --help
exits 2 'there is no option "--bord"' "$swsdk_run" --bord ports=3 -- true
exits 2 "there is no program" "$swsdk_run" --board ports=3
exits 2 "there is no program" "$swsdk_run" --
exits 2 "--board needs a value" "$swsdk_run" --board -- true
exits 2 'board: "ports=999" is none of' "$swsdk_run" --board ports=999 -- true
exits 2 "port 99: the chip has no such port; it has ports 1 to 12" "$swsdk_run" --port 99=x -- true
echo "sai_vlan_create 0 77" >"$folder/config.sai"
# shellcheck disable=SC2016 # of the program
exits 0 "77    {0}" "$swsdk_run" --config "$folder/config.sai" -- sh -c '"$1" --chip "$SWSDK_CHIP" -c "show vlan"' - "$saish"
# The shell on the same chip, while a program waits; it gets the terminal's input, here a line.
code=0
echo "show vlan" | timeout 30 "$swsdk_run" --config "$folder/config.sai" --shell -- sleep 100 >"$folder/output" 2>&1 || code=$?
[ "$code" -eq 143 ] || fail "--shell: exit code $code: $(cat "$folder/output")"
grep -q '^77 ' "$folder/output" || fail "--shell printed $(cat "$folder/output")"

# What is ready: a chip that the script brought up, or one that a program has yet to bring up.
switch=$(dirname "$swsdk_run")/swsdk-switch
exits 0 "The switch is up." sh -c 'echo quit | "$@"' - "$switch" "$folder/config.sai" --listen "$folder/chip"
exits 0 "The switch is listening; its chip is off." sh -c 'echo quit | "$@"' - "$switch" --listen "$folder/chip"
grep -q "is up" "$folder/output" && fail "a chip that is off is called up: $(cat "$folder/output")"

# A script that is killed leaves no chip.
# shellcheck disable=SC2016 # of the program
"$swsdk_run" --config "$folder/config.sai" -- sh -c 'echo "$SWSDK_CHIP" >"$1"; sleep 1' - "$folder/killed" &
process=$!
for ((i = 0; i < 500; ++i)); do
  [ -s "$folder/killed" ] && break
  sleep 0.02
done
chip=$(cat "$folder/killed")
"$saish" --chip "$chip" -c "show vlan" >/dev/null || fail "the chip of a running program does not answer"
kill -KILL "$process"
wait "$process" || true
process=
for ((i = 0; i < 500; ++i)); do
  "$saish" --chip "$chip" -c "show vlan" >/dev/null 2>&1 || break
  sleep 0.02
done
[ "$i" -lt 500 ] || fail "the chip of a script that was killed answers"
rm -rf "${chip%/chip}"

# The calls of other programs, as they happen
"$server" --listen "$folder/chip" >"$folder/ready" &
process=$!
for ((i = 0; i < 500; ++i)); do
  grep -qs listening "$folder/ready" && break
  sleep 0.02
done
"$saish" --chip "$folder/chip" -c "journal follow 60" >"$folder/journal" 2>&1 &
follower=$!
for ((i = 0; i < 500; ++i)); do
  SWSDK_CHIP=$folder/chip "$example" >/dev/null 2>&1
  grep -q ' bcm_vlan_create(0, 20) = ' "$folder/journal" && break
done
kill "$follower"
wait "$follower" || true
name=$(basename "$example" | cut -c 1-32)
grep -Eq "^$name\[[0-9]+\]: bcm_vlan_create\(0, 20\) = 0$" "$folder/journal" || fail "followed: $(cat "$folder/journal")"

exits 2 "no chip listens at \"$folder/none\": No such file or directory; swsdk-switch --listen" "$saish" --chip "$folder/none"
exits 2 "--board excludes --chip" "$saish" --chip "$folder/chip" --board ports=3

# Another user's
if [ "$(id -u)" -eq 0 ] && command -v setpriv >/dev/null; then
  other=(setpriv --reuid=65534 --regid=65534 --clear-groups)
  if "${other[@]}" test -x "$saish"; then
    exits 2 "Permission denied" "${other[@]}" "$saish" --chip "$folder/chip"
    kill "$process"
    wait "$process" || true
    mkdir -m 777 "$folder/other"
    rm "$folder/ready"  # of the one before
    "${other[@]}" "$server" --listen "$folder/other/chip" >"$folder/ready" &
    process=$!
    for ((i = 0; i < 500; ++i)); do
      grep -qs listening "$folder/ready" && break
      sleep 0.02
    done
    exits 2 "this chip belongs to user 65534, and only that user may work on it" "$saish" --chip "$folder/other/chip"
  fi
fi
