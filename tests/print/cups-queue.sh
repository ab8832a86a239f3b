#!/usr/bin/env bash
# A private CUPS server for the printing tests, with two queues of the cups-pdf backend:
#   TarvexPDF     accepts jobs and writes each as a PDF file into the printing user's
#                 home folder, under PDF/ (the default destination of this server);
#   TarvexReject  is enabled but rejects every job.
# The server listens on a socket of its own only and keeps all its state in a folder
# under /tmp (its filters run as the user lp, who may not reach a build folder), so the
# machine's own printers are neither seen nor touched. <link> is made a symbolic link to
# that folder; clients reach the server with CUPS_SERVER=<link>/cups.sock.
#
#   cups-queue.sh start <link>   (re)starts the server and makes the queues
#   cups-queue.sh stop <link>    stops it and removes its folder and the link
#
# cupsd and the cups-pdf backend need root: the script uses sudo when it is not root.
set -euo pipefail

action=${1:?start or stop}
link=$(realpath -m -s "${2:?link}")
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo -n"
ppd=/usr/share/ppd/cups-pdf/CUPS-PDF_opt.ppd

stop_server() {
    [ -L "$link" ] || return 0
    local folder
    folder=$(readlink "$link")
    if [ -f "$folder/cupsd.pid" ]; then
        local pid
        pid=$(cat "$folder/cupsd.pid")
        $sudo kill "$pid" 2>/dev/null || true
        for _ in $(seq 50); do
            $sudo kill -0 "$pid" 2>/dev/null || break
            sleep 0.1
        done
    fi
    case "$folder" in /tmp/tarvex-cups.*) $sudo rm -rf "$folder" ;; esac
    rm -f "$link"
}

if [ "$action" = stop ]; then
    stop_server
    exit 0
fi

for tool in /usr/sbin/cupsd lpadmin lpstat cupsreject; do
    command -v "$tool" >/dev/null || {
        echo "cups-queue: $tool is missing (apt-get install cups printer-driver-cups-pdf)" >&2
        exit 1
    }
done
[ -f "$ppd" ] || {
    echo "cups-queue: $ppd is missing (apt-get install printer-driver-cups-pdf)" >&2
    exit 1
}

stop_server
folder=$(mktemp -d /tmp/tarvex-cups.XXXXXX)
chmod 755 "$folder"
mkdir -p "$folder"/{conf,spool,cache,state,log,tmp}
chmod 1777 "$folder/tmp" # the filters, run as lp, write their temporary files here
mkdir -p "$(dirname "$link")"
ln -sfn "$folder" "$link"
export CUPS_SERVER="$folder/cups.sock"
cat >"$folder/conf/cups-files.conf" <<EOF
SystemGroup root
ServerRoot $folder/conf
RequestRoot $folder/spool
CacheDir $folder/cache
StateDir $folder/state
TempDir $folder/tmp
AccessLog $folder/log/access_log
ErrorLog $folder/log/error_log
PageLog $folder/log/page_log
EOF
cat >"$folder/conf/cupsd.conf" <<EOF
LogLevel warn
Listen $folder/cups.sock
Browsing No
WebInterface No
DefaultAuthType None
<Location />
  Order allow,deny
  Allow all
</Location>
<Location /admin>
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
EOF

$sudo setsid /usr/sbin/cupsd -f -c "$folder/conf/cupsd.conf" -s "$folder/conf/cups-files.conf" \
    </dev/null >"$folder/log/cupsd.out" 2>&1 &
echo $! >"$folder/cupsd.pid"

for _ in $(seq 100); do
    lpstat -r 2>/dev/null | grep -q "^scheduler is running" && break
    sleep 0.1
done
lpstat -r 2>/dev/null | grep -q "^scheduler is running" || {
    echo "cups-queue: the server did not start:" >&2
    cat "$folder/log/cupsd.out" "$folder/log/error_log" >&2 2>/dev/null || true
    exit 1
}

# lpadmin warns that printer drivers are deprecated; the PPD is what cups-pdf ships.
lpadmin -p TarvexPDF -v cups-pdf:/ -E -P "$ppd" 2>/dev/null
lpadmin -d TarvexPDF
lpadmin -p TarvexReject -v cups-pdf:/ -E -P "$ppd" 2>/dev/null
cupsreject -r "Tests: this queue rejects every job" TarvexReject
lpstat -p -a
