#!/usr/bin/env bash
# usage: remote.sh CHIP_SERVER PROGRAM...
# Each test program passes with its chip in another process, except for the tests that are listed here.
set -euo pipefail
server=$1
shift

# The journal of a call that an injected fault answers with success shows what its outputs held before, which is not sent
# to a chip elsewhere.
without=All/PortAttribute.PassesTheSdksSuccessOn/*Get
for test in MiimRead Clause45Read PortRead FecGet DfeGet; do without+=":All/Phy.PassesTheSdksSuccessOn/$test"; done
without+=:Policers.AreMadeReadSetUpAndAttached:Policers.EndAtTheStepThatFailsAndTellNoId
without+=:Policers.AreReadThroughTheirEntry:Policers.WriteNoOutputWhenTheyCannotBeRead
# It sets single bytes behind the end of a name, which no text shows.
without+=:UnmodeledFields.OfNetworkInterfacesAreRefused
# A client may begin a recording at any time.
without+=:Recording.BeginsWithTheChipOff
# A chip in another process is not told which ids the recorded one chose.
without+=:ReplayAll.ChoosesTheIdsThatTheRecordedChipChose
# Aggregates are cut for other processes.
without+=:Aggregates.ComeWholeToAHandlerThatTakesThem
# A child works on the chip of its parent.
without+=:Process.AChildHasACopyOfTheVirtualChip
# It makes the calls of BadInput, each with its journal, for what the manual says.
without+=:Refusals.*

folder=$(mktemp -d)
process=
end() {
  [ -z "$process" ] || kill "$process" || true
  rm -rf "$folder"
}
trap end EXIT
failed=0
for program in "$@"; do
  rm -f "$folder/output"  # of the one before
  "$server" --listen "$folder/chip" >"$folder/output" &
  process=$!
  for ((i = 0; i < 500; ++i)); do
    grep -qs listening "$folder/output" && break
    sleep 0.02
  done
  name=$(basename "$program")
  if SWSDK_CHIP=$folder/chip "$program" --gtest_brief=1 --gtest_filter="-$without" >"$folder/$name" 2>&1; then
    echo "$name: $(tail -1 "$folder/$name")"
  else
    failed=$((failed + 1))
    echo "$name failed:"
    grep -v '^\[ *OK' "$folder/$name" | tail -60
  fi
  kill "$process"
  wait "$process"
  process=
done
exit $((failed > 0))
