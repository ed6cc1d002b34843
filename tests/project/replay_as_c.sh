#!/usr/bin/env bash
# usage: replay_as_c.sh SAISH SWSDK SOURCE_DIR
# A recording as a C program: it compiles against the SDK's headers alone and tells whether the results are the same.
set -euo pipefail
saish=$1 swsdk=$2 source=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

fail() {
  echo "$1" >&2
  exit 1
}

# run RECORDING: makes the program and runs it.
run() {
  "$saish" --replay-as-c "$1" >program.c
  cc -std=c99 -pedantic -Wall -Wextra -Wconversion -Werror -I "$source/swsdk/include" -o program program.c "$swsdk" \
    -Wl,-rpath,"$(dirname "$swsdk")"
  ./program
}

for example in "$source"/examples/*.sai; do
  "$saish" --record run.rec "$example" >/dev/null
  run run.rec >out || fail "$example: the program printed: $(cat out)"
  [ ! -s out ] || fail "$example: the program printed: $(cat out)"
done

cat >all.sai <<'SAI'
log off
sai_vlan_create 0 10
fail bcm_vlan_create BCM_E_MEMORY
expect SAI_E_MEMORY sai_vlan_create 0 11
fail sh_process_command 7
expect -1 sai_sh_process_command 0 "say */ \"??/"
sai_register_link_service print
sai_register_l2_service 0 print
link 1 up
learn 00:aa:00:00:00:01 10 0
send 1 02:00:00:00:00:01 > ff:ff:ff:ff:ff:ff vlan 10 arp 10.0.0.1 > 10.0.0.2
classify ingress {in_port=1, src_mac=02:00:00:00:00:01, ether_type=0x0800, src_ip=10.0.0.1, ttl=3}
sai_l2_addr_show 0
sai_knet_ktag_set 36996 1
SAI
"$saish" --record all.rec all.sai >/dev/null
run all.rec
grep -q "#include <swsdk/fault.h>" program.c || fail "the program has no faults"

# Where there are neither faults nor actions, what only the virtual chip has is not needed.
grep -v "^fault \|^action " all.rec >plain.rec
run plain.rec
! grep swsdk/ program.c || fail "the program includes these"

# The first result that differs.
number=$(grep -nF "bcm_vlan_create(0, 10)" all.rec | cut -d: -f1)
sed "${number}s/= 0/= -8/" all.rec >changed.rec
got=0
run changed.rec >out || got=$?
[ "$got" -eq 1 ] || fail "a program with another result: exit code $got"
[ "$(cat out)" = "line $number: bcm_vlan_create(0, 10) = -8"$'\n'"  now: 0" ] || fail "the program printed: $(cat out)"
