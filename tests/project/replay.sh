#!/usr/bin/env bash
# usage: replay.sh SAISH PROGRAM RECORDING...
# Recordings: what they catch and what they refuse. PROGRAM is one that uses the library; the recordings were made by
# earlier versions.
set -euo pipefail
saish=$1 program=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

fail() {
  echo "$1" >&2
  exit 1
}

# check CODE TEXT COMMAND...: COMMAND exits with CODE and what it writes to standard error matches.
check() {
  local code=$1 text=$2 got=0
  shift 2
  "$@" >out 2>err </dev/null || got=$?
  [ "$got" -eq "$code" ] || fail "$*: exit code $got, not $code; it said: $(cat err)"
  [[ "$(cat err)" =~ ^$text$ ]] || fail "$*: said '$(cat err)', which is not: $text"
}

# Any application records itself.
SWSDK_RECORD=program.rec "$program" >/dev/null
[ "$(sed -n '1p;$p' program.rec)" = "swsdk recording 3"$'\n'end ] || fail "the recording begins and ends with $(sed -n '1p;$p' program.rec)"
check 0 "" "$saish" --replay program.rec
SWSDK_RECORD=/nowhere/program.rec "$program" >/dev/null 2>err
grep -qx "SWSDK_RECORD: cannot write the recording /nowhere/program.rec: .*" err || fail "an application said: $(cat err)"

# So are those of earlier versions.
[ $# -ge 4 ] || fail "only $# recordings are kept"
for kept; do
  check 0 "" "$saish" --replay "$kept"
  "$saish" --replay "$kept" --report >out || fail "$kept: $(cat out)"
  grep -q ': 100.00 %$' out || fail "$kept: $(cat out)"
done

# A recording of a replay is the same recording.
SWSDK_RECORD=again.rec "$saish" --replay program.rec
cmp program.rec again.rec

# Every kind of line, and callbacks that stay apart.
cat >all.sai <<'SAI'
log off
sai_vlan_create 0 10
fail bcm_vlan_create BCM_E_MEMORY
expect SAI_E_MEMORY sai_vlan_create 0 11
fail sh_process_command 7
expect -1 sai_sh_process_command 0 "say \"a, b)\" = \\ {["
sai_register_link_service print
sai_register_l2_service 0 print
link 1 up
learn 00:aa:00:00:00:01 10 0
age 1000
temperature 41.5/47 40
sai_switch_temperature_monitor_get 0
counter 1 snmpIfInOctets 77
sai_port_mib_read 0 1
sai_l2_addr_show 0
sai_knet_ktag_set 36996 1
SAI
check 0 "" "$saish" --record all.rec all.sai
check 0 "" "$saish" --replay all.rec
for line in "fault bcm_vlan_create(0, 11) = -2" "action swsdk_link_event(0, 1, 1) = 0" "action swsdk_clock_step(0, 1000) = 0" \
  'fault sh_process_command(0, "say \"a, b)\" = \\ {[") = 7' "call bcm_linkscan_register(0, <callback 1>) = 0"; do
  grep -qxF "$line" all.rec || fail "there is no line $line in: $(cat all.rec)"
done

# The first answer that differs: its line and both answers.
number=$(grep -nF "bcm_vlan_create(0, 10)" all.rec | cut -d: -f1)
sed "${number}s/= 0/= -8/" all.rec >changed.rec
got=0
printf 'bcm_vlan_create result # known\n\n' >known
"$saish" --replay changed.rec --report >out 2>err || got=$?
[ $got = 1 ] || fail "a report of a difference ended with $got: $(cat err out)"
grep -Eq "^ +1 +$number +bcm_vlan_create +result\$" out || fail "no row of line $number in: $(cat out)"
grep -qx "  now:      call bcm_vlan_create(0, 10) = 0" out || fail "what came now is not in: $(cat out)"
"$saish" --replay changed.rec --report --known known >out || fail "a known difference was an error: $(cat out)"
grep -Eq "bcm_vlan_create +result \(known\)\$" out || fail "the known difference is not marked: $(cat out)"
echo bcm_vlan_create >wrong
check 2 'wrong:1: "bcm_vlan_create" is no function and kind of difference, such as .*' \
  "$saish" --replay changed.rec --report --known wrong
check 2 'cannot read the known differences "/nowhere"' "$saish" --replay changed.rec --report --known /nowhere
difference="changed\.rec:$number: the answer differs"$'\n'"  recorded: call bcm_vlan_create\(0, 10\) = -8"
check 1 "$difference"$'\n'"  now:      call bcm_vlan_create\(0, 10\) = 0" "$saish" --replay changed.rec
# Outputs are answers too.
sed 's/curr=415/curr=416/' all.rec >changed.rec
check 1 'changed\.rec:[0-9]+: the answer differs.*curr=416.*curr=415.*' "$saish" --replay changed.rec

# A recording without its end: cut, or of a process that was killed. As far as it goes, it is repeated.
sed '$d' all.rec >cut.rec
incomplete='the recording ends here without its end mark: it was cut, or its process was'
check 3 "cut\\.rec:$(wc -l <cut.rec): $incomplete" "$saish" --replay cut.rec
check 3 "cut\\.rec:$(wc -l <cut.rec): $incomplete" "$saish" --replay-as-c cut.rec
head -c -8 cut.rec >middle.rec
check 3 "cut\\.rec:$(wc -l <cut.rec): $incomplete" "$saish" --replay cut.rec --report
check 3 'middle\.rec:[0-9]+: the recording was cut in this line' "$saish" --replay middle.rec
coproc killed { SWSDK_RECORD=killed.rec exec "$saish" -; }
pid=$killed_PID
printf 'sai_unit_get\nsai_vlan_create 0 10\nsai_unit_get\n' >&"${killed[1]}"
while read -r line <&"${killed[0]}" && [ "$line" != "sai_vlan_create 0 10" ]; do :; done
read -r line <&"${killed[0]}"
[ "$line" = "= 0" ] || fail "a shell that is to be killed said: $line"
kill -KILL "$pid"
wait "$pid" 2>/dev/null || true
check 3 "killed\\.rec:[0-9]+: $incomplete" "$saish" --replay killed.rec

# Version 1 had no end.
sed '1s/3/1/' cut.rec >old.rec
check 0 "" "$saish" --replay old.rec

# Back to a time: of the chip's clock, or of the recorder's.
time_travel() {
  printf 'show vlan\nquit\n' | "$saish" --replay "$1" --until "$2" | grep -c '^[123]0 ' || true
}
printf '%s\n' 'sai_vlan_create 0 10' 'age 60' 'sai_vlan_create 0 20' 'age 60' 'sai_vlan_create 0 30' >time.sai
"$saish" --record time.rec time.sai >out
for expected in "0 1" "59.9 1" "60 2" "119 2" "120 3" "1000 3"; do
  read -r until vlans <<<"$expected"
  [ "$(time_travel time.rec "$until")" = "$vlans" ] || fail "after $until s there are $(time_travel time.rec "$until") VLANs"
done
{
  printf 'swsdk recording 3\ncall sdk_main(0, NULL) = 0 @0.000001 1\ncall system_init(0) = 0 @0.000002 1\n'
  printf 'call bcm_vlan_create(0, 10) = 0 @0.500000 1\ncall bcm_vlan_create(0, 20) = 0 @1.500000 1\nend\n'
} >stamped.rec
[ "$(time_travel stamped.rec 1)" = 1 ] && [ "$(time_travel stamped.rec 2)" = 2 ] || fail "stamps are not times"

# Without its beginning, a recording goes on as it did.
printf '%s\n' 'sai_vlan_create 0 10' 'sai_register_l2_service 0 print' 'age 60' 'sai_vlan_port_add 0 10 1 1' 'link 1 up' \
  'learn 00:00:00:00:00:01 10 1' 'age 60' 'show mac' 'sai_vlan_destroy 0 10' >long.sai
"$saish" --record long.rec long.sai >out
for from in 0 60 120 1000; do
  "$saish" --replay long.rec --from "$from" --cut cut-off.rec
  check 0 "" "$saish" --replay cut-off.rec
  [ "$from" != 60 ] || [ "$(wc -l <cut-off.rec)" -lt "$(wc -l <long.rec)" ] || fail "nothing was cut off"
done
"$saish" --replay long.rec --from 60 --cut cut-off.rec
grep -qx 'call bcm_l2_addr_register(0, <callback 1>, <pointer 1>) = 0' cut-off.rec || fail "no callback: $(cat cut-off.rec)"
grep -q 'bcm_vlan_create' cut-off.rec && fail "what was before is still there: $(cat cut-off.rec)"
check 3 'cut\.rec:[0-9]+: the recording ends here without its end mark: .*' "$saish" --replay cut.rec --from 0 --cut cut-off.rec
[ "$(tail -1 cut-off.rec)" != end ] || fail "a cut recording got an end"
check 2 'cannot write the recording "/nowhere/a"' "$saish" --replay long.rec --from 0 --cut /nowhere/a

# What leaves is compared, too.
printf '%s\n' 'link 1 up' 'link 2 up' 'send 1 02:00:00:00:00:01 > ff:ff:ff:ff:ff:ff arp 10.1.0.1 > 10.1.0.2' >frame.sai
"$saish" --record frame.rec frame.sai >out
"$saish" --replay frame.rec --report >out || fail "frames differ: $(cat out)"
sed 's/\(event swsdk_frame_handler(0, 2, .*\) 08 06 /\1 08 07 /' frame.rec >changed.rec
cmp -s frame.rec changed.rec && fail "no frame left in: $(cat frame.rec)"
"$saish" --replay changed.rec --report >out && fail "another frame was the same: $(cat out)"
grep -q 'swsdk_frame_handler *event$' out || fail "no difference of a frame in: $(cat out)"

# What is passed on names nobody, and can be repeated.
cat >secret.rec <<'REC'
swsdk recording 3
call sdk_main(0, NULL) = 0
call system_init(0) = 0
call bcm_knet_netif_create(0, {id=1, type=1, mac_addr=3c:11:22:33:44:55, name="secret"} -> &{id=1, type=1, mac_addr=3c:11:22:33:44:55, name="secret"}) = 0
call sh_process_command(0, "led 0 load /home/secret/led.hex") = -1
call bcm_l2_addr_add(0, {mac=3c:11:22:33:44:55, vid=1, port=3}) = 0
call bcm_l2_addr_get(0, 3c:11:22:33:44:55, 1, &{mac=3c:11:22:33:44:55, vid=1, port=3}) = 0
call bcm_vlan_mac_add(0, 01:00:5e:01:01:01, 1, 0) = 0
call bcm_vlan_ip_add(0, {ip4=10.77.88.0, mask=255.255.255.0, vid=1}) = 0
call bcm_vlan_ip_add(0, {ip4=10.77.88.99, mask=255.255.255.255, vid=1}) = 0
call bcm_vlan_ip_add(0, {ip4=239.1.2.3, mask=255.255.255.255, vid=1}) = 0
call bcm_vlan_ip_add(0, {flags=0x4000, ip6=2001:db8:77::, prefix=48, vid=1}) = 0
call bcm_vlan_ip_add(0, {flags=0x4000, ip6=2001:db8:77::99, prefix=128, vid=1}) = 0
action swsdk_frame_send(0, 1, [3c 11 22 33 44 55 02 00 00 00 00 77 08 00 45 00 00 1c 00 00 00 00 40 11 00 00 0a 4d 58 63 ef 01 01 01 13 88 13 88 73 65 63 72], 42) = 0
end
REC
"$saish" --redact secret.rec >shared.rec
grep -nE 'secret|3c:11:22|3c 11 22|10\.77\.88|0a 4d 58|db8:77|73 65 63' shared.rec && fail "this is still there"
[ "$(grep -oE '[0-9a-f]{2}(:[0-9a-f]{2}){5}' shared.rec | sort -u | wc -l)" = 2 ] || fail "MAC addresses: $(cat shared.rec)"
for kept in 01:00:5e:01:01:01 239.1.2.3 255.255.255.0 '"led 0 load text-2"' 'name="text-1"' 'ip4=10.' 'ef 01 01 01 13 88 13 88 00 00 00 00'; do
  grep -qF "$kept" shared.rec || fail "$kept is not in: $(cat shared.rec)"
done
ips=$(grep -oE 'ip4=10\.[0-9.]+' shared.rec)
[ "$(sed -n 1p <<<"$ips")" = "$(sed -n '2s/[0-9]*$/0/p' <<<"$ips")" ] || fail "a host left its subnet: $ips"
"$saish" --redact secret.rec | cmp -s - shared.rec && fail "two runs gave the same addresses"
for kept; do
  "$saish" --redact "$kept" >shared.rec
  [ "$(wc -l <shared.rec)" = "$(wc -l <"$kept")" ] || fail "$kept has $(wc -l <"$kept") lines, redacted $(wc -l <shared.rec)"
  "$saish" --replay shared.rec --report >out || fail "$kept, redacted: $(cat out)"
done
check 2 '/nowhere: cannot be read, or is empty' "$saish" --redact /nowhere
check 2 'all\.sai:1: not a recording' "$saish" --redact all.sai

# What a later version may have is skipped.
sed '2i later kind of line' all.rec | sed '$i call bcm_later(0) = 0' >later.rec
last=$(($(wc -l <later.rec) - 1))
check 0 'later\.rec:2: skipped: there is no kind "later" here'$'\n'"later\\.rec:$last: skipped: there is no function \"bcm_later\" here" \
  "$saish" --replay later.rec

# What is no recording.
check 2 'missing\.rec: cannot be read' "$saish" --replay missing.rec
: >empty.rec
check 2 'empty\.rec: is empty, so it is no recording' "$saish" --replay empty.rec
check 2 'all\.sai:1: not a recording: its first line is not "swsdk recording 3"' "$saish" --replay all.sai
sed '1s/3/4/' all.rec >new.rec
check 2 'new\.rec:1: version 4 of the format; this chip reads versions up to 3' "$saish" --replay new.rec
while IFS='|' read -r line wrong; do
  printf 'swsdk recording 3\ncall %s\nend\n' "$line" >bad.rec
  check 2 "bad\\.rec:2: $wrong" "$saish" --replay bad.rec
  check 2 "bad\\.rec:2: $wrong" "$saish" --replay-as-c bad.rec
done <<'BAD'
bcm_vlan_create|"bcm_vlan_create" is no call such as .*
bcm_vlan_create(0, 10|.* is no call such as .*
bcm_vlan_create(0) = 0|1 arguments in place of 2
bcm_vlan_create(0, 70000) = 0|argument 2: "70000" is no number that fits
bcm_vlan_create(0, ten) = 0|argument 2: "ten" is no number
bcm_vlan_create(0, 10) = good|"good" is no number
bcm_vlan_port_add(0, 10, {1-300}, {}) = 0|argument 3: "\{1-300\}" is no set of ports
bcm_vlan_port_add(0, 10, {1, {}) = 0|.* is no text with all its brackets and quotes
bcm_l2_addr_add(0, {mac=00:11}) = 0|argument 2: "00:11" is no MAC address
bcm_l2_addr_add(0, {colour=1}) = 0|argument 2: "colour" is no field of this record
bcm_l2_addr_add(0, {mac}) = 0|argument 2: "mac" is no field with a value
bcm_linkscan_register(0, print) = 0|argument 2: "print" is no callback
bcm_linkscan_register(0, <callback 65>) = 0|argument 2: more callbacks than can be told apart
sh_process_command(0, led) = 0|argument 2: "led" is not between " and "
bcm_multicast_egress_get(0, 1, 8, &[] of 8, &[] of 7, &0) = 0|argument 5: 7 items in place of 8
bcm_stat_multi_get(0, 1, 2, [0], &[0, 0] of 2) = 0|argument 4: 1 items in place of 2
bcm_stat_multi_get(0, 1, 2, [0, 0], &? of 1) = -4|argument 5: 1 items in place of 2
bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, 0, 2, [::1, ::2], [::1]) = 0|argument 5: 1 items in place of 2
bcm_switch_object_count_multi_get(0, 2, [0], &[0, 0] of 2) = 0|argument 3: 1 items in place of 2
bcm_switch_temperature_monitor_get(0, 5, &[], &0) = 0|argument 3: 1 items in place of 5
bcm_trunk_set(0, 0, {}, 2, [{}]) = 0|argument 5: 1 items in place of 2
swsdk_frame_send(0, 1, [ff ff], 3) = 1|argument 3: 2 items in place of 3
swsdk_temperatures_set(0, [{current=1}], 2) = 0|argument 2: 1 items in place of 2
BAD
check 2 'cannot write the recording "/nowhere/a"' "$saish" --record /nowhere/a -c sai_unit_get
check 1 'cannot write the recording "/dev/full"' "$saish" --record /dev/full -c "sai_vlan_create 0 10"
for options in "--report" "--known known" "--replay all.rec --known known" "--replay all.rec all.sai" "--replay all.rec --record a.rec" "--replay a --replay-as-c a" "--redact a --replay a" "--cut a" "--from 1" "--replay a --from 1" "--replay a --cut a" "--replay a --cold"; do
  check 2 '[^'$'\n'']+' "$saish" $options
done
