#!/usr/bin/env bash
# The tables of a running switch are compared with a script's, on a board with more ports than usual.
# shellcheck source=tests/end-to-end/watch.sh
source "$(dirname "$0")/watch.sh"

host one 1 10.0.0.1/24
host last 64 10.0.0.64/24
cat >"$work/switch.sai" <<SAI
source $lan
sai_vlan_port_add 0 10 64 0
sai_port_untagged_vlan_set 0 64 10
SAI
start_switch "$work/switch.sai" --board ports=64

# expect_answer PATTERN COMMAND: the switch answers the command with such a line.
expect_answer() {
  tell_switch "$2" >"$work/answer"
  grep -Eq -- "$1" "$work/answer" || fail "$2: $(cat "$work/answer")"
  grep -E -m 1 -- "$1" "$work/answer"
}

expect_answer '^  no difference$' "diff $work/switch.sai"
tell_switch "sai_vlan_create 0 30" >/dev/null
expect_answer '^  \+ 30 ' "diff $work/switch.sai"
expect_answer '^[0-9]+ lines differ from what "' "diff $work/switch.sai"

echo "diff $work/itself.sai" >"$work/itself.sai"
expect_answer 'itself\.sai:1: diff .*: a script whose tables are compared or printed can have no diff' "diff $work/itself.sai"
expect_answer 'the script "/run/example/itself.sai" fails on a fresh chip' "diff $work/itself.sai"
expect_answer 'cannot read the script "missing.sai"' "diff missing.sai"
expect_reached one 10.0.0.64
