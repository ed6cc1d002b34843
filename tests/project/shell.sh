#!/usr/bin/env bash
# usage: shell.sh SAISH EXAMPLES_DIR
# The shell as a program: its exit codes, and what goes to standard output and what to standard error.
set -euo pipefail
saish=$1 examples=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

fail() {
  echo "$1" >&2
  exit 1
}

# check CODE ERRORS COMMAND...: COMMAND exits with CODE and writes lines to standard error that the pattern matches.
check() {
  local code=$1 errors=$2 got=0
  shift 2
  "$@" >out 2>err </dev/null || got=$?
  [ "$got" -eq "$code" ] || fail "$*: exit code $got, not $code; it said: $(cat err)"
  [[ "$(cat err)" =~ ^$errors$ ]] || fail "$*: said '$(cat err)', which is not: $errors"
}

one_line='[^'$'\n'']+'

check 0 "" "$saish" -c "sai_vlan_create 0 10"
[ "$(cat out)" = "  = 0" ] || fail "a command printed: $(cat out)"
check 0 "" "$saish" -c "expect 4 sai_hash_to_sdk 0"
check 0 "" "$saish" --cold -c "sai_unit_get"
check 0 "" "$saish" --version
grep -Eqx 'saish [0-9.]+' out || fail "--version printed: $(cat out)"

check 0 "" "$saish" --help
grep -q -- --cold out || fail "--help printed: $(cat out)"
check 0 "" "$saish" -c ""
[ ! -s out ] || fail "no command printed: $(cat out)"
check 0 "" "$saish" --cold --command ""

check 1 "expected 1, came 0" "$saish" -c "expect 1 sai_unit_get"
check 1 "expected 0 or more, came -6 SAI_E_EXISTS" "$saish" -c "sdk_to_sai BCM_E_EXISTS"

for bad in nothing "sai_vlan_create 0" "sai_vlan_create 0 10 10" "sai_vlan_create 0 65536" "show nothing" \
  "sai_err \"x" "source missing" "expect 0" "fail nothing -1" "log loud"; do
  check 2 "$one_line" "$saish" -c "$bad"
  [ ! -s out ] || fail "$bad: printed $(cat out)"
done
check 2 'no such command "a\\nb\\x1b"; help lists them all' "$saish" -c $'"a\nb\e"'
check 2 'cannot read the script "missing.sai": No such file or directory' "$saish" missing.sai
check 2 'cannot read the script "": No such file or directory' "$saish" ""
check 2 'cannot read the script "\.": Is a directory' "$saish" .
check 2 'cannot read the script "\.": Is a directory' "$saish" -c "source ."
check 2 'cannot read the script "-": Is a directory' bash -c '"$0" - <.' "$saish"

check 2 "$one_line" "$saish" --nonsense
check 2 "$one_line" "$saish" -c
check 2 "$one_line" "$saish" -c "sai_unit_get" -c "sai_unit_get"
check 2 "$one_line" "$saish" -c "sai_unit_get" missing.sai
check 2 "$one_line" "$saish" -c "" ""
check 2 "$one_line" "$saish" missing.sai missing.sai
check 2 "$one_line" "$saish" $'--a\nb\e'

# Nobody takes what does not reach them for done.
for arguments in "-c sai_unit_get" "-c help" "--help" "--version" "$examples/vlans.sai"; do
  check 1 "cannot write to standard output" bash -c '"$@" >/dev/full' -- "$saish" $arguments
done

printf 'sai_unit_get\nsai_unit_get\nexpect 1 sai_unit_get\nsai_hash_to_sdk 0\n' >three.sai
check 1 'three\.sai:3: expect 1 sai_unit_get: expected 1, came 0' "$saish" three.sai
[ "$(tail -n 1 out)" = "  = 0" ] || fail "a script went on after an unexpected result: $(cat out)"
printf 'sai_unit_get\nnothing\n' >bad.sai
check 1 "bad\\.sai:2: nothing: $one_line" "$saish" bad.sai
printf 'source three.sai\n' >outer.sai
check 1 'outer\.sai:1: source three\.sai: three\.sai:3: .*' "$saish" outer.sai
printf 'quit\nexpect 1 sai_unit_get\n' >quit.sai
check 0 "" "$saish" quit.sai

# What goes to standard error stands behind the line that caused it, where both go into one file.
printf 'sai_unit_get\nexpect SAI_E_NOT_FOUND sai_vlan_destroy 0 99\nsai_unit_get\n' >failing.sai
"$saish" failing.sai >out 2>&1
sed -E 's/^[0-9/]+ [0-9:]+ /TIME /' out | diff - <(printf '%s\n' sai_unit_get "  = 0" \
  "expect SAI_E_NOT_FOUND sai_vlan_destroy 0 99" "TIME unknown: Failed to destroy vlan 99: Entry not found" \
  "  = -7 SAI_E_NOT_FOUND" sai_unit_get "  = 0") || fail "one file for both: $(cat out)"

# Standard input is a script too.
for arguments in "" "-"; do
  got=0
  "$saish" $arguments <three.sai >out 2>err || got=$?
  [ "$got" -eq 1 ] || fail "standard input: exit code $got"
  [ "$(cat err)" = "-:3: expect 1 sai_unit_get: expected 1, came 0" ] || fail "standard input: said $(cat err)"
done

check 0 "" "$saish" "$examples/vlans.sai"
expectations=$(grep -n '^expect SAI_E_' "$examples/vlans.sai" | cut -d: -f1)
[ -n "$expectations" ] || fail "vlans.sai: no line expects a code"
for line in $expectations; do
  sed "${line}s/^expect SAI_E_[A-Z_]*/expect SAI_E_MEMORY/" "$examples/vlans.sai" >changed.sai
  check 1 "changed\\.sai:$line: expect SAI_E_MEMORY .*: expected -3 SAI_E_MEMORY, came -[0-9]+ SAI_E_[A-Z_]+" \
    "$saish" changed.sai
done

# A frame that leaves elsewhere, or that nobody expects, ends a script too.
line=$(grep -n -m 1 '^expect out 2 ' "$examples/vlans.sai" | cut -d: -f1)
[ -n "$line" ] || fail "vlans.sai: no line expects a frame at port 2"
sed "${line}s/ out 2 / out 4 /" "$examples/vlans.sai" >changed.sai
check 1 "changed\\.sai:$line: expect out 4 .*: expected out 4: .*, came out 2: .*" "$saish" changed.sai
grep -q '^  came      out 2: ' out || fail "what came is not shown: $(cat out)"
sed "${line}d" "$examples/vlans.sai" >changed.sai
check 1 "changed\\.sai:[0-9]+: expect nothing: expected nothing more, came out 2: .*" "$saish" changed.sai
sed "${line}d; /^expect nothing/d" "$examples/vlans.sai" >changed.sai
check 1 "changed\\.sai:[0-9]+: send 9 .*: changed\\.sai:[0-9]+: send 9 .*: not expected: out 2: .*" "$saish" changed.sai
