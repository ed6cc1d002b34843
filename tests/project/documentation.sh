#!/usr/bin/env bash
# usage: documentation.sh SOURCE_DIR SAISH PYTHON
# The checks of the documentation find a message without a row, a row without a message, a stale index, a dead link, an
# unknown name, an argument or an end of a message that nobody tells of, a function without results, results that are
# not of this library, a manual page that points elsewhere, a misspelled word, a promise about comments that they do not
# keep, and output that is not so.
set -euo pipefail
source=$1 saish=$2 python=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# finds WANTED COMMAND...: in a fresh copy, changed by the commands on standard input, the check fails and says so.
finds() {
  local wanted=$1
  shift
  rm -rf "$work/copy"
  mkdir -p "$work/copy/swsdk"
  cp -r "$source"/{README.md,CONTRIBUTING.md,include,src,docs,examples} "$work/copy"
  cp -r "$source"/swsdk/{include,api,chip} "$work/copy/swsdk"
  cd "$work/copy"
  eval "$(cat)"
  if "$python" -B "$@" >"$work/out" 2>&1; then
    echo "$* found nothing, and should have said: $wanted"
    exit 1
  fi
  grep -Eq -- "$wanted" "$work/out" || { echo "$* said:"; cat "$work/out"; echo "and not: $wanted"; exit 1; }
}

messages=(docs/tools/messages.py check)
finds 'src/vlan/table\.cpp:[0-9]+: no row .*Something new' "${messages[@]}" \
  <<<'sed -i "s/Failed to init vlan: %s/Something new: %s/" src/vlan/table.cpp
      sed -i "s/Failed to init vlan: %s/And no more/" src/port/temperature.cpp'
finds 'no message in src/ is .Failed to init mirror' "${messages[@]}" \
  <<<'sed -i "s/Failed to init mirror: %s/Failed to init mac: %s/" src/l2/mirroring.cpp'
finds 'reasons and results' "${messages[@]}" <<<'sed -i "s/Table is full/Table is fuller/" swsdk/api/error.cpp'
finds 'messages\.py write' "${messages[@]}" <<<'echo >>docs/messages.md'
finds 'cannot be logged by sai_unit_get' "${messages[@]}" \
  <<<'sed -i "s/ => sai_fp_ospf_ttl1_set$/ => sai_unit_get/" docs/messages.in.md'

finds 'no message in src/ makes the harmless line .find a group' "${messages[@]}" \
  <<<'sed -i "s/^| .find group 0x/| \`find a group 0x/" docs/messages.in.md'

links=(docs/tools/links.py .)
finds 'README\.md:[0-9]+: there is no nowhere\.md' "${links[@]}" <<<'echo "[a](nowhere.md)" >>README.md'
finds 'has no heading #nothing' "${links[@]}" <<<'echo "[a](docs/messages.md#nothing)" >>README.md'
finds 'no header has sai_no_function' "${links[@]}" <<<'echo "\`sai_no_function()\`" >>README.md'
finds 'docs/python\.md:[0-9]+: there is no \.\./include/sai\.h' docs/tools/links.py --installed . <<<'rm include/sai.h'

manual=(docs/tools/manual.py man)
finds 'sai_vlan_create: nothing is said of its argument vid' "${manual[@]}" \
  <<<'sed -i "/^ \* Creates a VLAN with/,/sai_vlan_create/{/@param vid/d}" include/sai.h'
finds 'sai_unit_get: nothing is said of its result' "${manual[@]}" \
  <<<'sed -i "/@return always 0$/{N;N;/sai_unit_get/{s/@return always 0//}}" include/sai.h'

finds "sai_vlan_create: '.*above.*' points to a place" "${manual[@]}" \
  <<<'sed -i "s/^ \* Creates a VLAN with the CPU port.*/ * As above, with the CPU port as a tagged member./" include/sai.h'
finds "sai_l2_info: nothing is said of 'newline'" "${manual[@]}" \
  <<<'sed -i "s/ends with a newline$/ends/; s/with a newline of its own/so/; s/^ \* of its own behind/ * behind/" include/sai.h'

finds 'sai_vlan_create: docs/results has nothing' "${manual[@]}" <<<'sed -i "/^sai_vlan_create\\b/d" docs/results/*'
finds "no message of the function is 'Failed to make vlan" "${manual[@]}" \
  <<<'sed -i "s/Failed to create vlan/Failed to make vlan/" docs/results/failures'
finds 'sai_trunk_create: its comment names -13' "${manual[@]}" <<<'sed -i "/(full)/d" docs/results/refusals'
finds 'sai_ipmc_add: docs/results has nothing of a table that bcm_ipmc_add finds full' "${manual[@]}" \
  <<<'sed -i "/^sai_ipmc_add\tbcm_ipmc_add\t-6$/d" docs/results/refusals'
finds 'does not declare bcm_vlan_make' "${manual[@]}" <<<'sed -i "s/\tbcm_vlan_create\t/\tbcm_vlan_make\t/" docs/results/*'

spelling=(docs/tools/spelling.py .)
finds "README.md: 'recieved' is not a word" "${spelling[@]}" <<<'echo "It is recieved." >>README.md'
finds "docs/tools/words: 'zyzzy' is not needed" "${spelling[@]}" <<<'echo zyzzy >>docs/tools/words'

leftovers=(docs/tools/leftovers.py .)
finds 'the comment of sai_l3_host_route_create does not say .that egress object stays' "${leftovers[@]}" \
  <<<'sed -i "s/that egress object stays/it stays/" include/sai.h'
finds 'too few rows' "${leftovers[@]}" <<<'sed -i "/^| .*sai_/d" docs/failures.md'

page=docs/virtual-chip.md
examples=(docs/tools/examples.py "$page" --saish "$saish" --compile true)
finds "$page:[0-9]+: this is shown" "${examples[@]}" <<<"sed -i 's/  = -13 SAI_E_FULL/  = 0/; /^\`\`\`c$/,/^\`\`\`$/d' $page"
finds 'this script ends with' "${examples[@]}" <<<"sed -i 's/^expect SAI_E_FULL /expect 0 /; /^\`\`\`c$/,/^\`\`\`$/d' $page"
finds 'a limit is another one' docs/tools/limits.py "$page" swsdk c++ <<<"sed -i 's/| trunks | 128 |/| trunks | 127 |/' $page"
