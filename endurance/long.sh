#!/usr/bin/env bash
# What ./test tries for a moment, for as long as one likes, on SQLite and on PostgreSQL:
#
#   endurance/long.sh [FIGURES]      the figures go to that file too, endurance.txt unless it is given
#
# KILLS=1000 HISTORIES=10000 FAILOVERS=20 DISTURBANCES=90 in the environment say how much of each.
set -uo pipefail
cd "$(dirname "$0")/.."
exec > >(tee "${1:-endurance.txt}")
tools/install-packages build test || exit 1
PATH=$PATH:/usr/sbin command -v haproxy >/dev/null || { echo "haproxy is missing: tools/install-packages front" >&2; exit 1; }
tools/configure dev
cmake --build --preset dev --target tarvex-server ServerKills ServerHistories >/dev/null || exit 1
tests=build/dev/tests/server
server=build/dev/TarvexServer/app/tarvex-server
beside=tests/server/postgresql.py
failed=0

# What it is called and the command, of which the lines with figures are kept.
try() {
    local name=$1 begin=$SECONDS output
    shift
    if output=$("$@" 2>&1); then
        echo "$name: $(grep -E 'kills|confirmed|histories' <<<"$output" | paste -sd '|'), $((SECONDS - begin)) s"
    else
        failed=1
        echo "$name: FAILED after $((SECONDS - begin)) s"
        tail -n 40 <<<"$output"
    fi
}

echo "Commit $(git rev-parse --short HEAD), $(nproc) cores, $(date -u '+%Y-%m-%d %H:%M') UTC"
export TARVEX_KILLS=${KILLS:-1000} TARVEX_HISTORIES=${HISTORIES:-10000}
try "Kills on SQLite" "$tests/ServerKills"
try "Kills on PostgreSQL" "$beside" "$tests/ServerKills"
try "Histories on SQLite" "$tests/ServerHistories"
try "Histories on PostgreSQL" "$beside" "$tests/ServerHistories"
for ((round = 1; round <= ${FAILOVERS:-20}; ++round)); do
    try "Failover $round" python3 -B tests/server/failover.py "$server"
done
try "Three processes behind HAProxy" endurance/processes.py "$server" "${DISTURBANCES:-90}"
exit "$failed"
