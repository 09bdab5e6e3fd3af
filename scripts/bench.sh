#!/bin/bash
# Benchmarks of dbus-ex-plix on this machine, in one run of about ten
# minutes on two cores (run as root):
#
#   scripts/bench.sh
#
# Builds the service and the benchmark programs in build-bench (with
# -DPLIX_BENCH=ON), then, inside private mount, IPC and PID namespaces with
# the machine's lock directory replaced by a temporary one, starts a private
# bus, the floor service and the service with generated configurations of
# 100 to 100,000 values and measures call latency, throughput, start-up,
# commit cost and memory, each against its floor, and, for comparison, a
# durable ten-key write to dconf-service on a private session bus, measured
# in alternating rounds with the service's durable Apply of the ten values of
# a file of ten (and ten property writes to xfconfd, the Xfce settings
# daemon, on the same bus), with the disk's share of both timed alone.
# Prints the table, writes build-bench/bench.csv, build-bench/bench.png and
# build-bench/engine_bench.csv (the in-process benchmarks of the engine).
set -euo pipefail
export LC_ALL=C

root=$(cd "$(dirname "$0")/.." && pwd)
# PLIX_BENCH_BUILD replaces the build directory (a developer's own).
build=${PLIX_BENCH_BUILD:-$root/build-bench}
service_name=com.orvanta.plix
floor_name=com.orvanta.plix.floor
memory_floor_name=com.orvanta.plix.memoryfloor
# PLIX_BENCH_SIZES replaces the list of configuration sizes (for a quick try).
sizes="${PLIX_BENCH_SIZES:-100 1000 10000 100000}"
# PLIX_BENCH_REPEAT runs the latency rows of each size that many times, for
# their spread from run to run.
repeat="${PLIX_BENCH_REPEAT:-1}"

outer()
{
    if [ "$(id -u)" != 0 ]; then
        echo "bench.sh: run as root (it uses private namespaces and a bind mount)" >&2
        exit 1
    fi
    "$root/scripts/install-deps.sh" gnuplot-nox libbenchmark-dev dconf-service xfconf
    cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DPLIX_BENCH=ON \
        -DPLIX_BUILD_TESTS=OFF >/dev/null
    cmake --build "$build" -j2 --target dbus-ex-plix plix_bench_gen plix_bench_client \
        floor_service memory_floor engine_bench
    run=$(mktemp -d /tmp/plix-bench-XXXXXX)
    trap 'rm -rf "$run"' EXIT
    mkdir "$run/lock"
    # Everything started below lives in the new PID namespace, so it ends
    # with the run whatever happens; the time-out bounds the whole run.
    PLIX_BENCH_RUN=$run timeout --signal=TERM --kill-after=10 1200 \
        unshare --mount --ipc --pid --fork --kill-child --mount-proc --propagation private \
        "$0" --inside
}

# ---- inside the namespaces ------------------------------------------------

# shellcheck source-path=SCRIPTDIR/.. source=bench/bench-helpers.sh
source "$root/bench/bench-helpers.sh"

start_bus()
{
    launch bus dbus-daemon --config-file="$root/bench/bench-bus.conf" \
        --address="unix:path=$run/bus" --nofork --print-address=3 3>"$run/bus.address"
    wait_for_file "$run/bus.address"
    export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$run/bus"
}

measure_floors()
{
    local times=() r
    for r in 1 2 3 4 5; do
        start_timed "$floor_name" floor "$build/bench/floor_service" "$floor_name"
        times+=("$ready_ms")
        [ "$r" = 5 ] || stop_process "$pid"
    done
    floor_startup=$(summary "${times[@]}" | awk '{ print $2 }')
    launch memory_floor "$build/bench/memory_floor" "$memory_floor_name"
    local memory_pid=$pid
    wait_for_name --system "$memory_floor_name"
    sleep 1
    floor_rss=$(memory_of "$memory_pid" VmRSS)
    floor_hwm=$(memory_of "$memory_pid" VmHWM)
    stop_process "$memory_pid"
}

measure_size()
{
    local n=$1 repeats=5 count=2000 times=() r
    if [ "$n" -ge 100000 ]; then
        repeats=3
        count=1000
    fi
    mkdir "$run/cfg$n"
    "$build/bench/plix_bench_gen" "$run/cfg$n" values "$n" >/dev/null
    for r in $(seq "$repeats"); do
        start_timed "$service_name" "service$n" "$build/service/dbus-ex-plix" \
            -c "$run/cfg$n/plix_config.xml"
        times+=("$ready_ms")
        [ "$r" = "$repeats" ] || stop_process "$pid"
    done
    local service_pid=$pid
    read -r tmin tmed tmax <<<"$(summary "${times[@]}")"
    row startup "$n" "exec to first reply" ms "$tmin" "$tmed" "$tmax" "$floor_startup"
    local per_value
    per_value=$(awk -v t="$tmed" -v f="$floor_startup" -v n="$n" 'BEGIN { print (t - f) * 1000 / n }')
    row startup "$n" "start-up cost per value (beyond the floor)" us "$per_value" "$per_value" \
        "$per_value" 0
    sleep 1
    local rss
    rss=$(memory_of "$service_pid" VmRSS)
    row memory "$n" "VmRSS idle after start-up" kB "$rss" "$rss" "$rss" "$floor_rss"
    measure_latency "$n" "$count"
    client throughput "$service_name" "$floor_name" "$n" 2 1 4 32 >>"$csv"
    # Idle again, now with its password digests initialised like the floor's.
    sleep 1
    local rss_used hwm
    rss_used=$(memory_of "$service_pid" VmRSS)
    hwm=$(memory_of "$service_pid" VmHWM)
    row memory "$n" "VmRSS idle after the calls" kB "$rss_used" "$rss_used" "$rss_used" "$floor_rss"
    row memory "$n" "VmHWM" kB "$hwm" "$hwm" "$hwm" "$floor_hwm"
    echo "$n $tmed $(awk -v r="$rss_used" -v h="$hwm" -v f="$floor_startup" -v fr="$floor_rss" \
        'BEGIN { print r / 1024, h / 1024, f, fr / 1024 }')" >>"$run/points"
    stop_process "$service_pid"
}

# The latency rows of size N (the service running): the durable rewrite of
# the store file of the ten values the transactions set is timed on a copy of
# that file, never on the service's own. With more than one run each row
# names its run, and one row a figure gives the spread of the runs' medians
# (min, median and max of them in the min, median and p99 columns).
measure_latency()
{
    local n=$1 count=$2 r figure lo mid hi floor
    mkdir "$run/rewrite$n"
    cp "$run/cfg$n/store0.json" "$run/rewrite$n/store0.json"
    if [ "$repeat" -le 1 ]; then
        client latency "$service_name" "$floor_name" "$n" "$count" "$run/rewrite$n/store0.json" \
            >>"$csv"
        return
    fi
    for r in $(seq "$repeat"); do
        client latency "$service_name" "$floor_name" "$n" "$count" "$run/rewrite$n/store0.json" |
            tee -a "$run/latency$n" |
            awk -F, -v OFS=, -v r="$r" '{ $3 = $3 " (run " r ")"; print }' >>"$csv"
    done
    while IFS= read -r figure; do
        read -r lo mid hi <<<"$(column_summary "$run/latency$n" "$figure" 6)"
        read -r _ floor _ <<<"$(column_summary "$run/latency$n" "$figure" 8)"
        row latency "$n" "$figure (spread of $repeat medians)" us "$lo" "$mid" "$hi" "$floor"
    done < <(cut -d, -f3 "$run/latency$n" | awk '!seen[$0]++')
}

# The 10-value file comes second: the first file holds the only password
# value, and the Apply against dconf sets plain values only, as dconf's keys
# are. Runs while dconf-service runs too.
measure_commits()
{
    mkdir "$run/commit"
    local ids
    mapfile -t ids < <("$build/bench/plix_bench_gen" "$run/commit" files 1000,10,10000)
    start_timed "$service_name" service-commit "$build/service/dbus-ex-plix" \
        -c "$run/commit/plix_config.xml"
    local service_pid=$pid
    client commits "$service_name" "$floor_name" 1000 \
        "${ids[1]}:10" "${ids[0]}:1000" "${ids[2]}:10000" >>"$csv"
    mkdir "$run/disk"
    cp "$run/commit/store1.json" "$run/disk/store1.json"
    client versus "$service_name" 300 "${ids[1]}" "$run/disk/store1.json" "${with_xfconf[@]}" \
        >>"$csv"
    stop_process "$service_pid"
}

# The desktop settings store's writer on a session bus of its own, with its
# files in the run directory (also for a copy the bus would start itself).
start_dconf()
{
    mkdir -p "$run/dconf/config" "$run/dconf/runtime"
    chmod 700 "$run/dconf/runtime"
    export XDG_CONFIG_HOME=$run/dconf/config XDG_RUNTIME_DIR=$run/dconf/runtime
    launch session-bus dbus-daemon --session --address="unix:path=$run/session-bus" --nofork \
        --print-address=3 3>"$run/session-bus.address"
    wait_for_file "$run/session-bus.address"
    export DBUS_SESSION_BUS_ADDRESS="unix:path=$run/session-bus"
    launch dconf /usr/libexec/dconf-service
    wait_for_name --session ca.desrt.dconf
    with_xfconf=()
    local xfconfd
    for xfconfd in /usr/lib/*/xfce4/xfconf/xfconfd; do
        [ -x "$xfconfd" ] || continue
        launch xfconfd "$xfconfd"
        wait_for_name --session org.xfce.Xfconf
        with_xfconf=(xfconf)
        break
    done
}

print_table()
{
    echo
    echo "Figures of the service and their floors (ratio: service cost / floor cost)"
    column -t -s, "$csv"
}

inside()
{
    run=$PLIX_BENCH_RUN
    csv=$build/bench.csv
    trap stop_all EXIT
    trap 'exit 130' INT TERM
    mount --bind "$run/lock" "$(readlink -f /var/lock)"
    echo "section,values,figure,unit,min,median,p99,floor,ratio" >"$csv"
    : >"$run/points"
    start_bus
    echo "bench.sh: floors"
    measure_floors
    for n in $sizes; do
        echo "bench.sh: $n values"
        measure_size "$n"
    done
    echo "bench.sh: commits, and Apply against dconf"
    start_dconf
    measure_commits
    gnuplot -e "data='$run/points'; output='$build/bench.png'" "$root/bench/plot.gp"
    print_table
    echo
    echo "bench.sh: engine without the bus"
    "$build/bench/engine_bench" --benchmark_min_time=0.2 --benchmark_color=false \
        --benchmark_out="$build/engine_bench.csv" --benchmark_out_format=csv
    echo
    echo "Written: $csv $build/bench.png $build/engine_bench.csv"
}

if [ "${1:-}" = --inside ]; then
    inside
else
    outer
fi
