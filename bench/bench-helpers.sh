# Process and table helpers of scripts/bench.sh, sourced by it inside its
# namespaces: starting and stopping the programs it measures, waiting for
# them, and the rows of its CSV table. Uses the script's variables run (the
# run directory), build (the build directory) and csv (the table), and sets
# pid and ready_ms for it.
# shellcheck shell=bash disable=SC2154,SC2034
started=()

stop_process()
{
    local pid=$1
    kill -TERM "$pid" 2>/dev/null || return 0
    for _ in $(seq 100); do
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.1
    done
    kill -KILL "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
}

stop_all()
{
    local pid
    for pid in "${started[@]}"; do
        stop_process "$pid"
    done
}

wait_for_file()
{
    for _ in $(seq 100); do
        [ -s "$1" ] && return 0
        sleep 0.1
    done
    echo "bench.sh: $1 did not appear" >&2
    return 1
}

# Waits (up to ten seconds) until NAME has an owner on the bus (--system or
# --session).
wait_for_name()
{
    for _ in $(seq 100); do
        gdbus call "$1" --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
            --method org.freedesktop.DBus.NameHasOwner "$2" | grep -q true && return 0
        sleep 0.1
    done
    echo "bench.sh: $2 did not appear" >&2
    return 1
}

client()
{
    "$build/bench/plix_bench_client" "$@"
}

# Starts a program in the background with its output in the run directory;
# sets "pid".
launch()
{
    local log=$1
    shift
    "$@" >"$run/$log.log" 2>&1 &
    pid=$!
    started+=("$pid")
}

# Starts the program and sets "ready_ms" to the milliseconds from its exec to
# the first successful reply of NAME; leaves it running with its id in "pid".
start_timed()
{
    local name=$1 log=$2
    shift 2
    local since=$EPOCHREALTIME
    launch "$log" "$@"
    ready_ms=$(client ready "$name" "$since" 300)
}

memory_of()
{
    awk -v key="$2:" '$1 == key { print $2 }' "/proc/$1/status"
}

# min median max of the numbers given.
summary()
{
    printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END { print v[1], v[int((NR + 1) / 2)], v[NR] }'
}

# min median max of one column of the rows of one figure in a CSV file.
column_summary()
{
    # shellcheck disable=SC2046 # one argument per number
    summary $(awk -F, -v f="$2" -v c="$3" '$3 == f { print $c }' "$1")
}

row()
{
    # section values figure unit min median p99 floor: ratio median / floor
    awk -v s="$1" -v n="$2" -v f="$3" -v u="$4" -v a="$5" -v m="$6" -v p="$7" -v fl="$8" \
        'BEGIN { printf "%s,%s,%s,%s,%.1f,%.1f,%.1f,%.1f,%.2f\n", s, n, f, u, a, m, p, fl, (fl > 0 ? m / fl : 0) }' \
        >>"$csv"
}
