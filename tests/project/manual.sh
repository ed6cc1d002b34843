#!/usr/bin/env bash
# usage: manual.sh LIBRARY SAISH SWSDK_SWITCH MAN_DIR
# Every exported name has a manual page that stands on its own, every command of the shell is in saish(1), every option of
# a program is in its page, and no page has a fault.
set -euo pipefail
library=$1 saish=$2 switch=$3 pages=$4

names=$(nm --dynamic --defined-only "$library" | awk '{print $3}' | sed 's/@.*//')
[ "$(wc -w <<<"$names")" -ge 200 ] || { echo "$library: too few names found; is it still read rightly?"; exit 1; }
for name in $names; do
  for needed in "SH SYNOPSIS" "SH DESCRIPTION" "TH $name 3"; do
    grep -q "^\.$needed" "$pages/man3/$name.3" || { echo "$name: its page has no .$needed"; exit 1; }
  done
  grep -q "^\.BR $name (3)" "$pages/man7/sai.7" || { echo "sai(7) does not list $name"; exit 1; }
done

# says NAME PATTERN: the page of that name says so.
says() { grep -Eq -- "$2" "$pages/man3/$1.3" || { echo "the page of $1 does not say $2"; exit 1; }; }
says sai_register_l2_service 'BCM_L2_CALLBACK_DELETE.* \(0\)'
says sai_register_l2_service '#include <bcm/l2\.h>'
says sai_register_l2_service 'valid during the call'
says sai_register_link_service 'handler\(int unit'
says sai_register_link_service 'linkstatus'
says sai_vlan_port_add '^\.BR sai_vlan_port_remove \(3\),'
says sai_vlan_port_add 'BCM_.*NOT_.*FOUND'
says sai_vlan_port_add 'share/doc/.*/messages\.md'

# "man -k" looks at the names and what is said beside them.
for word in remove delete; do
  for function in sai_vlan_destroy sai_vlan_port_remove sai_vlan_mac_del sai_bpdu_unset sai_stg_clear; do
    grep -A2 '^\.SH NAME' "$pages/man3/$function.3" | grep -q "$word" ||
      { echo "man -k $word does not find $function"; exit 1; }
  done
done

for call in $(grep -hoE '\\fI(bcm|soc)_[a-z0-9_]+' "$pages"/man3/*.3 | sed 's/^\\fI//' | grep -v '_t$' | sort -u); do
  grep -q "^\.B $call\$" "$pages/man7/swsdk.7" || { echo "swsdk(7) does not tell of $call"; exit 1; }
done

commands=$("$saish" -c "help all" | sed '/^Functions of the library/,$d; 1d; /^$/d' | awk '{print $1}')
[ "$(wc -w <<<"$commands")" -ge 10 ] || { echo "$saish: too few commands found; is its help still read rightly?"; exit 1; }
for command in $commands; do
  grep -Eq "^\.(B|BI|BR) $command( |\$)" "$pages/man1/saish.1" || { echo "saish(1) does not tell of $command"; exit 1; }
done

tables=$("$saish" -c "help show" | sed -n 's/^  TABLE: //p')
[ "$(wc -w <<<"$tables")" -ge 30 ] || { echo "$saish: too few tables found; is its help still read rightly?"; exit 1; }
tr '\n' ' ' <"$pages/man1/saish.1" | grep -Fq "tables: $tables." || { echo "saish(1) does not list $tables"; exit 1; }

for program in "$saish" "$switch" "$(dirname "$switch")/swsdk-run" "$(dirname "$switch")/../sweep/swsdk-sweep"; do
  options=$("$program" --help | grep -Eo -- '^ +-[^ ]+' | tr -d ' ' | tr ',' '\n')
  [ "$(wc -w <<<"$options")" -ge 4 ] || { echo "$program: too few options found; is its help still read rightly?"; exit 1; }
  for option in $options; do
    grep -Eq "^\.[BIR]+ .*${option//-/\\\\-}\>" "$pages/man1/$(basename "$program").1" ||
      { echo "the page of $program does not tell of $option"; exit 1; }
  done
done

mandoc -T lint -W warning "$pages"/man?/*
