#!/bin/bash
# A bounded fuzz campaign: runs the libFuzzer target for SECONDS in all, in sessions (a fault ends
# a session; the next one goes on from the corpus gathered so far), then prints its figures.
# Usage: run_campaign.sh TARGET SECONDS WORKDIR
# Faults found are kept in WORKDIR/artifacts (crashes, sanitizer reports, wrong answers, bad texts)
# and WORKDIR/hangs; minimise one with `TARGET -minimize_crash=1 -runs=10000 FILE` and add it to
# tests/fuzz/reproducers once fixed. Exits 1 when any fault was found.
set -u
target=$1
seconds=$2
work=$3
here=$(cd "$(dirname "$0")" && pwd)

mkdir -p "$work/corpus" "$work/artifacts" "$work/hangs" "$work/logs"
rm -f "$work"/logs/* "$work"/stats.*
export ASAN_OPTIONS=${ASAN_OPTIONS:-abort_on_error=1:detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
export ZP_FUZZ_HANGS=$work/hangs

end=$((SECONDS + seconds))
session=0
while :; do
    remaining=$((end - SECONDS))
    [ "$remaining" -gt 0 ] || break
    session=$((session + 1))
    ZP_FUZZ_STATS=$work/stats.$session "$target" -max_total_time="$remaining" -timeout=10 \
        -rss_limit_mb=2048 -max_len=4096 -print_final_stats=1 \
        -artifact_prefix="$work/artifacts/" "$work/corpus" "$here/corpus" "$here/reproducers" \
        > "$work/logs/session.$session" 2>&1
    status=$?
    [ "$status" -eq 0 ] && break
    [ "$session" -ge 200 ] && break # a fault on every start: stop
done

# A slow call counts as a hang when its input is slow again when run alone: on a busy machine, and
# under the sanitizers, a call's processor time has outliers that no input reproduces.
# Mixture selections of many components are slow under the sanitizers, so a campaign keeps many
# slow inputs: at most ZP_FUZZ_HANG_CHECKS of them (40 by default) are run again, the others stay
# unchecked in $work/hangs.
confirmed=0
checked=0
unchecked=0
for input in "$work"/hangs/*; do
    [ -f "$input" ] || continue
    case "$input" in *.unconfirmed) continue ;; esac
    if [ "$checked" -ge "${ZP_FUZZ_HANG_CHECKS:-40}" ]; then
        unchecked=$((unchecked + 1))
        continue
    fi
    checked=$((checked + 1))
    slow=0
    for run in 1 2 3; do
        "$target" "$input" 2>&1 | grep -q 'ZENTROPIA-FUZZ HANG' && slow=$((slow + 1))
    done
    if [ "$slow" -ge 2 ]; then confirmed=$((confirmed + 1)); else mv "$input" "$input.unconfirmed"; fi
done

sum() { cat "$work"/stats.* 2>/dev/null | awk -v k="$1" '$1 == k { s += $2 } END { print s + 0 }'; }
count() { grep -l -E "$1" "$work"/logs/session.* 2>/dev/null | wc -l; }
calls=$(sum calls)
inputs=$(sum inputs)
good=$(sum good_calls)
mixtures=$(sum mixtures)
mixture_states=$(sum mixture_states)
slow_hangs=$(sum hangs)
wrong=$(count 'ZENTROPIA-FUZZ WRONG ANSWER')
bad_texts=$(count 'ZENTROPIA-FUZZ BAD TEXT')
sanitizer=$(count 'ERROR: (AddressSanitizer|LeakSanitizer|MemorySanitizer)|runtime error:')
timeouts=$(count 'ERROR: libFuzzer: timeout')
# every other abnormal end of a session: signals, out-of-memory, a target that exited
crashes=0
for log in "$work"/logs/session.*; do
    grep -q -E 'ZENTROPIA-FUZZ (WRONG ANSWER|BAD TEXT)|ERROR: (AddressSanitizer|LeakSanitizer)|runtime error:|ERROR: libFuzzer: timeout' "$log" && continue
    grep -q -E 'ERROR: libFuzzer|deadly signal|==ERROR' "$log" && crashes=$((crashes + 1))
done
slowest=$(cat "$work"/stats.* 2>/dev/null | awk '$1 == "slowest_ms" && $2 > m { m = $2; p = $3 } END { printf "%.2f ms (%s)", m, p }')

echo "fuzz campaign: ${seconds} s, ${session} session(s), corpus $(ls "$work/corpus" | wc -l) inputs"
echo "  inputs run:        $inputs"
echo "  calls:             $calls"
echo "  known good calls:  $good answered rightly"
echo "  mixtures:          $mixtures cubic-model selections accepted, $mixture_states of their states answered"
echo "  crashes:           $crashes"
echo "  sanitizer reports: $sanitizer"
echo "  hangs:             $((confirmed + timeouts)) (calls above 50 ms of processor time, 1 s on a cubic model's fluid, that do so again when run alone: $confirmed of $checked inputs checked, $unchecked unchecked, $slow_hangs slow calls seen; inputs above 10 s: $timeouts; slowest call $slowest)"
echo "  wrong answers:     $wrong"
echo "  bad texts:         $bad_texts"
echo "  faults kept in $work/artifacts and $work/hangs, logs in $work/logs"
[ $((crashes + sanitizer + confirmed + timeouts + wrong + bad_texts)) -eq 0 ]
