#!/usr/bin/env bash
# pg_cluster.sh start|stop|halt|resume DIR
#
# halt stops the server and keeps its data; resume starts it again on that data.
#
# A private PostgreSQL cluster for the tests: made with initdb in DIR/data, listening only
# on a Unix socket in DIR (no TCP port), with the role "tarvex" trusted on that socket and a
# role "clinic", when a test makes it, asked for its password. As
# root it runs as the system's unprivileged user "postgres"; otherwise as the caller.
set -euo pipefail
command=${1:?start or stop}
dir=${2:?folder of the cluster}
bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1)
if [ -z "$bin" ]; then
    echo "pg_cluster: PostgreSQL is not installed (package postgresql)" >&2
    exit 1
fi
as_owner() {
    if [ "$(id -u)" -eq 0 ]; then
        runuser -u postgres -- "$@"
    else
        "$@"
    fi
}
case $command in
start)
    if [ -f "$dir/data/postmaster.pid" ]; then
        as_owner "$bin/pg_ctl" -D "$dir/data" -m immediate -w stop >/dev/null 2>&1 || true
    fi
    rm -rf "$dir"
    mkdir -p "$dir"
    if [ "$(id -u)" -eq 0 ]; then
        chown postgres "$dir"
    fi
    as_owner "$bin/initdb" -D "$dir/data" -A trust -U tarvex -E UTF8 --locale=C.UTF-8 \
        >"$dir/initdb.log" 2>&1 || { cat "$dir/initdb.log" >&2; exit 1; }
    # The role "clinic" logs in with a password, as a clinic's workstations do; every other
    # role is trusted on the socket.
    printf '%s\n' 'local all clinic scram-sha-256' 'local all all trust' |
        as_owner tee "$dir/data/pg_hba.conf" >/dev/null
    as_owner "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w \
        -o "-k $dir -c listen_addresses='' -p 5432" start >/dev/null ||
        { cat "$dir/server.log" >&2; exit 1; }
    ;;
stop)
    as_owner "$bin/pg_ctl" -D "$dir/data" -m fast -w stop >/dev/null
    rm -rf "$dir"
    ;;
halt)
    as_owner "$bin/pg_ctl" -D "$dir/data" -m fast -w stop >/dev/null
    ;;
resume)
    as_owner "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w \
        -o "-k $dir -c listen_addresses='' -p 5432" start >/dev/null ||
        { cat "$dir/server.log" >&2; exit 1; }
    ;;
*)
    echo "usage: pg_cluster.sh start|stop|halt|resume DIR" >&2
    exit 2
    ;;
esac
