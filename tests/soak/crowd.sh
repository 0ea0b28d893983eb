# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Sourced by scripts that play many scenarios, several at the same time, and keep what is known of those that fail. They set
#   kind             what a scenario is called, such as "storm"
#   build            the build folder
#   out              where the folder of a failed one goes: the scenario, and what was printed and logged
#   at_once, speed   how many go together, and how many times as fast
# and define write_scenario NAME, which prints the scenario of that name.
# shellcheck shell=bash disable=SC2154
player=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd -P)/play
tell_every=30
declare -A name_in=() # by the process that plays it
declare -A slot_in=()
declare -A failed_with=() # how, by name
played=0
crowded=0
told=0
work=$(mktemp -d)

end_plays() {
    [ "${#name_in[@]}" -eq 0 ] || kill "${!name_in[@]}" 2>/dev/null || true
    rm -rf "$work"
}
trap end_plays EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

minutes() {
    printf '%d.%d minutes' $((SECONDS / 60)) $((SECONDS % 60 / 6))
}

# start NAME SLOT
start() {
    local folder=$work/$1
    mkdir "$folder"
    write_scenario "$1" >"$folder/$kind.scn"
    "$player" "$speed" "$build" "$folder/$kind.scn" "$kind-$2" >"$folder/symptom" &
    name_in[$!]=$1
    slot_in[$!]=$2
}

# keep NAME SLOT: what is known of one that failed.
keep() {
    local kept=$out/$1
    failed_with[$1]=$(cat "$work/$1/symptom")
    rm -rf "$kept"
    mkdir -p "$kept"
    cp "$work/$1/$kind.scn" "$build/tests/soak/slots/$kind-$2/record/"*.txt "$kept"
    echo "${kind^} $1 failed: ${failed_with[$1]}"
}

# tell COUNT
tell() {
    ((SECONDS - told >= tell_every)) || return 0
    told=$SECONDS
    echo "$played of $1 ${kind}s, ${#failed_with[@]} failed, $(minutes)"
}

# Waits for one that is played; sets slot to its own, which is free then.
await_one() {
    local ended status=0
    wait -n -p ended "${!name_in[@]}" || status=$?
    local name=${name_in[$ended]}
    slot=${slot_in[$ended]}
    unset "name_in[$ended]" "slot_in[$ended]"
    played=$((played + 1))
    [ "$status" -eq 0 ] || keep "$name" "$slot"
    rm -r "${work:?}/$name"
}

# play_all NAME...
play_all() {
    local name slot
    mkdir -p "$out"
    for name in "$@"; do
        slot=${#name_in[@]}
        ((slot < at_once)) || await_one
        start "$name" "$slot"
        tell $#
    done
    while [ "${#name_in[@]}" -gt 0 ]; do
        await_one
        tell $#
    done
}

# Beside the others a program may not get the processor for so long that a wait is over, a tool is taken for stalled, or the
# server's answer is too late to be shown. What failed so has another try by itself, and is counted apart if it passes.
judge_again() {
    local name symptom
    for name in "${!failed_with[@]}"; do
        [[ ${failed_with[$name]} =~ ^(wait|hold|expect\ text)\  ]] || continue
        if symptom=$("$player" "$speed" "$build" "$out/$name/$kind.scn" "$kind-0"); then
            echo "${kind^} $name passed by itself."
            unset "failed_with[$name]"
            crowded=$((crowded + 1))
        else
            failed_with[$name]=$symptom
        fi
    done
}

# verdict WHAT: says how WHAT went, and fails where one failed.
verdict() {
    echo "$1, ${#failed_with[@]} failed, $crowded failed only beside others, $(minutes)"
    [ "${#failed_with[@]}" -eq 0 ]
}
