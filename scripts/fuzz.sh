#!/usr/bin/env bash
# Fuzzes: scripts/fuzz.sh [target] [executions] [libFuzzer options...]. The target is a file of
# fuzz/ without its ending; without one, or with "all", all of them in turn. A million executions if
# not told otherwise. What is found new goes to build/fuzz/corpus, an input that breaks something to
# build/fuzz/found. For very long runs SANITIZERS=signed-integer-overflow,shift,bounds,enum,bool and
# the like leave the address sanitizer, the tracing of comparisons and the counting of an edge's
# passes out: up to twenty times the executions. With -max_len=64 behind the number most targets get
# through twice as many again.
set -euo pipefail
cd "$(dirname "$0")/.."

all=(Exchange Panels Site Settings HistoLine Command AlarmList Printer Sheet)
target=${1:-all}
executions=${2:-1000000}
options=("${@:3}")
targets=("$target")
[ "$target" != all ] || targets=("${all[@]}")

sanitizers=${SANITIZERS:-address,undefined,float-cast-overflow}
build=build/fuzz
packages=(clang-14 libclang-rt-14-dev)
if [[ $sanitizers != *address* ]]; then
    build=build/fuzz-fast
    packages+=(lld-14 libmimalloc2.0)
    options=(-reduce_inputs=0 -use_counters=0 "${options[@]}")
fi

scripts/packages.sh "${packages[@]}"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14 \
    -DKORVANELLE_FUZZ=ON -DKORVANELLE_FUZZ_SANITIZERS="$sanitizers" \
    -DKORVANELLE_BENCHMARKS=OFF
# The base is built by a tool that the sanitizers watch as well; its leaks at the end don't matter.
ASAN_OPTIONS=detect_leaks=0 cmake --build "$build" -j "${KORVANELLE_JOBS:-$(nproc)}" \
    --target "${targets[@]/#/fuzz_}"

mkdir -p build/fuzz/found
# Behind the build: the compiler has no use for it.
[[ $sanitizers == *address* ]] || export LD_PRELOAD=libmimalloc.so.2.0
export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8
# Short stacks and a small memory of what was freed: both are a good part of a run's time. An input
# that was found is run again without these for a full report.
export ASAN_OPTIONS=malloc_context_size=1:quarantine_size_mb=16
export UBSAN_OPTIONS=print_stacktrace=1
export LSAN_OPTIONS=suppressions=tests/lsan.supp
for name in "${targets[@]}"; do
    mkdir -p "build/fuzz/corpus/$name"
    case $name in
    Site) length=2048 ;;
    Panels) length=64 ;;
    Settings | AlarmList) length=192 ;;
    Printer) length=256 ;;
    *) length=512 ;;
    esac
    "$build/fuzz/fuzz_$name" "build/fuzz/corpus/$name" "fuzz/corpus/$name" \
        -runs="$executions" -max_len=$length -timeout=10 -entropic=0 -artifact_prefix=build/fuzz/found/ \
        -print_final_stats=1 "${options[@]}"
done
