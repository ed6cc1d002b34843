#!/usr/bin/env bash
# Nobody reads what the program prints, or too late, or no longer: frames pass, commands are done, and signals end it.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host one 1 10.0.0.1/24
host two 2 10.0.0.2/24
mkfifo "$work/commands" "$work/printed"
exec 8<>"$work/printed" # an end to read from, at which nobody reads

# start OUTPUT ERRORS: the program prints into these files.
start() {
  "$switch" "$lan" "${plugs[@]}" <>"$work/commands" >"$1" 2>"$2" &
  switch_pid=$!
  expect_reached one 10.0.0.2
}

# give COUNT: that many commands of which each prints 1000 characters.
give() {
  timeout 5 awk -v count="$1" 'BEGIN { for (; i < count; ++i) printf "# %06d %991s\n", i, "." }' >"$work/commands" ||
    fail "commands are not done any more"
}

# expect_end CODE: after SIGTERM.
ended() { ! kill -0 "$switch_pid" 2>/dev/null; }
expect_end() {
  local code=0
  kill -TERM "$switch_pid"
  wait_for 5 ended || fail "SIGTERM does not end the switch"
  wait "$switch_pid" || code=$?
  [ "$code" -eq "$1" ] || fail "exit code $code, not $1"
  echo "SIGTERM ends it with $code"
}

start "$work/printed" "$work/printed"
give 1000
echo "link 2 down" >"$work/commands"
unreached() { ! on one ping -n -q -c 1 -W 0.2 10.0.0.2 >/dev/null; }
wait_for 5 unreached || fail "no command is done"
echo "no such command" >"$work/commands"
echo "link 2 up" >"$work/commands"
expect_reached one 10.0.0.2

# Who reads late gets all, errors in their places.
timeout 5 sed '/^link 2 up$/q' <&8 >"$work/read" || fail "what was printed does not come"
[ "$(grep -c '^# [0-9]*  *\.$' "$work/read")" -eq 1000 ] || fail "some of 1000 lines are missing"
[ "$(tail -n 4 "$work/read" | sed 's/ ".*//')" = "link 2 down
no such command
no such command
link 2 up" ] || fail "the last lines are: $(tail -n 4 "$work/read")"
echo "1000 lines and an error come late"

# There is an end to what is kept: then a line tells how much is left out.
give 20000
echo "link 2 down" >"$work/commands"
wait_for 10 unreached || fail "no command is done"
echo "link 2 up" >"$work/commands"
expect_reached one 10.0.0.2
cat <&8 >"$work/read" &
reader=$!
answers() {
  echo "# is somebody there?" >"$work/commands"
  grep -q "is somebody there" "$work/read"
}
wait_for 5 answers || fail "what is printed does not come any more"
lines=$(grep -c '^# [0-9]*  *\.$' "$work/read")
[[ $lines -gt 10000 && $lines -lt 20000 ]] || fail "$lines of 20000 lines are kept"
grep -Ex '\([0-9]+ bytes are left out here: nobody read them\)' "$work/read" || fail "nothing tells what is left out"
kill "$reader"

give 200
expect_end 0
exec 8<&-

# The reader leaves.
: >"$work/errors"
start >(head -n 1 >"$work/first_line") "$work/errors"
give 200
expect_reached one 10.0.0.2
expect_end 1
grep -qx 'swsdk-switch: cannot write to standard output: Broken pipe' "$work/errors" || fail "said $(cat "$work/errors")"

# At its own end it waits for a reader who is slow.
{
  cat "$lan"
  awk 'BEGIN { for (; i < 500; ++i) printf "# %991s\n", "." }'
} >"$work/long.sai"
"$switch" "$work/long.sai" --port "1=pcap::$work/out.pcap" </dev/null |
  { wait_for 5 [ -e "$work/out.pcap" ]; grep -c '^#  *\.$' >"$work/count"; } || fail "exit code $?"
[ "$(cat "$work/count")" -eq 500 ] || fail "$(cat "$work/count") of 500 lines are read"
echo "a slow reader gets all"
