#!/usr/bin/env bash
# The Debian package as a clinic gets it. Built by CPack from this build folder; checked by
# lintian and the desktop entry's and AppStream data's validators; unpacked into a clean
# root, whose programs are started on a virtual screen of 1366x768 in an empty home with no
# XDG variables: the data folder is filled, the main window comes up, the pictures are
# found and the help opens. Then a second user at the same moment, and an installation
# under a prefix with spaces whose delivered files are read-only.
#
#   installed_package.sh BUILD_FOLDER BUILD_TYPE
set -euo pipefail
build=$(cd "$1" && pwd)
build_type=$2

work=$(mktemp -d /tmp/tarvex-package-XXXXXX)
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    chmod -R u+w "$work" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
fail() {
    echo "FAIL: $*"
    exit 1
}
# The second user (when this runs as root) must reach the unpacked programs.
chmod 755 "$work"

# --- The package -------------------------------------------------------------------------
cpack --config "$build/CPackConfig.cmake" -B "$work/package" >"$work/cpack.log" 2>&1 ||
    { cat "$work/cpack.log"; fail "cpack could not make the package"; }
deb=$(ls "$work"/package/tarvex_*.deb)
version=$(dpkg-deb -f "$deb" Version)
echo "package $(basename "$deb"): $(stat -c %s "$deb") bytes, installed $(dpkg-deb -f "$deb" Installed-Size) KiB"

depends=$(dpkg-deb -f "$deb" Depends)
echo "Depends: $depends"
for needed in libqt6core6 libqt6gui6 libqt6widgets6 libqt6sql6 libqt6sql6-sqlite libqt6sql6-psql \
    libqt6multimedia6 libqt6multimediawidgets6 libqt6printsupport6 gstreamer1.0-plugins-base \
    gstreamer1.0-plugins-good libzip4 libpq5 fonts-liberation fonts-dejavu-core sqlite3 zip unzip; do
    grep -Eq "(^|, )$needed( |,|$)" <<<"$depends" || fail "the package does not depend on $needed"
done
# Nothing that only the build or the tests need.
for unwanted in -dev gtest benchmark cmake ninja clang xvfb xdotool openbox cups lintian \
    'postgresql(,|$| )' ffmpeg; do
    if grep -Eq -- "$unwanted" <<<"$depends"; then fail "the package depends on $unwanted"; fi
done
grep -q "postgresql-client" <<<"$(dpkg-deb -f "$deb" Recommends)" ||
    fail "the package does not recommend postgresql-client"

# lintian: nothing but what the README explains (the overrides travel in the package). The
# debug build is not optimized, so the compiler cannot check buffer functions there.
suppress=""
case "$build_type" in Release | RelWithDebInfo | MinSizeRel) ;; *) suppress="--suppress-tags hardening-no-fortify-functions" ;; esac
# shellcheck disable=SC2086
lintian --info --pedantic --display-experimental $suppress "$deb" >"$work/lintian.log" 2>&1 || true
if grep -E '^[EWIPX]: ' "$work/lintian.log"; then fail "lintian has findings (above)"; fi
if grep -Eiq 'error|fatal' "$work/lintian.log"; then cat "$work/lintian.log"; fail "lintian did not run"; fi
echo "lintian: no findings"

# --- Unpacked into a clean root ---------------------------------------------------------------
root="$work/root"
dpkg-deb -x "$deb" "$root"
usr="$root/usr"
for program in tarvex tarvex-print tarvex-migrate tarvex-picture-bench; do
    [ -x "$usr/bin/$program" ] || fail "bin/$program is missing"
    [ -f "$usr/share/man/man1/$program.1.gz" ] || fail "the manual page of $program is missing"
    man --warnings -E UTF-8 -l "$usr/share/man/man1/$program.1.gz" 2>"$work/man.err" >/dev/null
    [ -s "$work/man.err" ] && { cat "$work/man.err"; fail "the manual page of $program has faults"; }
    line=$(env -i PATH=/usr/bin:/bin "$usr/bin/$program" --version 2>/dev/null)
    [ "$line" = "$program (TVX Regimenter) $version" ] || fail "$program --version says \"$line\""
    env -i PATH=/usr/bin:/bin "$usr/bin/$program" --help >"$work/help.out" 2>&1 ||
        fail "$program --help failed"
    grep -q "$program" "$work/help.out" || fail "$program --help does not name it"
    status=0
    env -i PATH=/usr/bin:/bin QT_QPA_PLATFORM=offscreen "$usr/bin/$program" --no-such-option \
        >"$work/wrong.out" 2>"$work/wrong.err" || status=$?
    [ "$status" -ne 0 ] || fail "$program took an unknown option"
    [ -s "$work/wrong.out" ] && fail "$program answered an unknown option on standard output"
    grep -q "no-such-option" "$work/wrong.err" || fail "$program did not name the unknown option"
done
for file in share/tarvex/templates/Tarvex.MDB "share/tarvex/templates/Exercise Library.MDB" \
    share/tarvex/templates/Picklist.MDB share/tarvex/templates/cover.txt \
    share/tarvex/Help/contents.txt "share/tarvex/Help/TVX Users Manual.pdf" \
    share/tarvex/PICTURE/385_1.JPG share/tarvex/ICON/385.JPG share/tarvex/MOVIE/385.AVI \
    share/applications/com.tarvex.Regimenter.desktop \
    share/metainfo/com.tarvex.Regimenter.metainfo.xml \
    share/icons/hicolor/scalable/apps/com.tarvex.Regimenter.svg \
    share/doc/tarvex/copyright share/doc/tarvex/changelog.gz share/lintian/overrides/tarvex; do
    [ -f "$usr/$file" ] || fail "$file is missing"
done
for size in 16 22 24 32 48 64 128 256; do
    png="$usr/share/icons/hicolor/${size}x$size/apps/com.tarvex.Regimenter.png"
    [ -f "$png" ] || fail "the ${size}x$size icon is missing"
    drawn=$(ffprobe -v error -show_entries stream=width,height -of csv=p=0 "$png")
    [ "$drawn" = "$size,$size" ] || fail "the ${size}x$size icon is $drawn"
done
# Every file is for everyone to read, and nothing is for anyone to write but root.
bad=$(find "$root" \( -type f ! -perm -0444 \) -o -perm /0022 | head -3)
[ -z "$bad" ] || fail "wrong rights on: $bad"
# No trace of the build folder: the installed programs find everything from their own place.
for program in "$usr"/bin/*; do
    if grep -aq "$build" "$program"; then fail "$(basename "$program") holds the build path $build"; fi
done
desktop-file-validate "$usr/share/applications/com.tarvex.Regimenter.desktop" >"$work/desktop.log" 2>&1 ||
    { cat "$work/desktop.log"; fail "desktop-file-validate"; }
grep -q '^Exec=tarvex$' "$usr/share/applications/com.tarvex.Regimenter.desktop" ||
    fail "the desktop entry does not start tarvex"
appstreamcli validate --no-net "$usr/share/metainfo/com.tarvex.Regimenter.metainfo.xml" \
    >"$work/appstream.log" 2>&1 || { cat "$work/appstream.log"; fail "appstreamcli validate"; }
grep -q "<release version=\"$version\"" "$usr/share/metainfo/com.tarvex.Regimenter.metainfo.xml" ||
    fail "the AppStream data has no release $version"
echo "unpacked: programs, delivered files, desktop entry, AppStream data, icons and manual pages are in place"

# --- On a virtual screen -----------------------------------------------------------------------
exec 3>"$work/display"
Xvfb -displayfd 3 -screen 0 1366x768x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
pids+=($!)
exec 3>&-
for _ in $(seq 1 50); do [ -s "$work/display" ] && break; sleep 0.1; done
[ -s "$work/display" ] || fail "Xvfb did not start"
export DISPLAY=":$(head -1 "$work/display")"
openbox >/dev/null 2>&1 &
pids+=($!)
sleep 1

# run_as USER_ID HOME PROGRAM...: the program in a bare environment, as that user.
run_as() {
    local uid=$1 home=$2
    shift 2
    local as=()
    [ "$uid" != "$(id -u)" ] && as=(setpriv --reuid="$uid" --regid="$uid" --clear-groups)
    "${as[@]}" env -i HOME="$home" PATH=/usr/bin:/bin DISPLAY="$DISPLAY" LANG=C.UTF-8 "$@"
}
# start_as, the same in the background: `start_as ... &` is then the program's own process.
start_as() {
    local uid=$1 home=$2
    shift 2
    local as=()
    [ "$uid" != "$(id -u)" ] && as=(setpriv --reuid="$uid" --regid="$uid" --clear-groups)
    exec "${as[@]}" env -i HOME="$home" PATH=/usr/bin:/bin DISPLAY="$DISPLAY" LANG=C.UTF-8 "$@"
}

# window_of PID NAME SECONDS: the visible window of the process with that exact name.
window_of() {
    local pid=$1 name=$2 window
    for _ in $(seq 1 $(($3 * 5))); do
        for window in $(xdotool search --onlyvisible --pid "$pid" 2>/dev/null); do
            [ "$(xdotool getwindowname "$window" 2>/dev/null)" = "$name" ] && { echo "$window"; return 0; }
        done
        kill -0 "$pid" 2>/dev/null || return 1
        sleep 0.2
    done
    return 1
}

window_names() {
    local window
    for window in $(xdotool search --onlyvisible --pid "$1" 2>/dev/null); do
        xdotool getwindowname "$window" 2>/dev/null || true
    done
}

# close PID: the main window's close box, as a clinician ends the day; the program must end.
close_program() {
    local pid=$1 main
    main=$(window_of "$pid" "TVX Regimenter" 5) || fail "no main window to close"
    for name in "Tip of the Day" "TVX Regimenter Help"; do
        local other
        if other=$(window_of "$pid" "$name" 1); then
            xdotool windowactivate --sync "$other" key Escape
            sleep 0.5
        fi
    done
    xdotool windowactivate --sync "$main" key --clearmodifiers alt+F4
    for _ in $(seq 1 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.2; done
    kill -0 "$pid" 2>/dev/null && fail "the program did not end at its close box"
    wait "$pid" || fail "the program ended with status $?"
}

# check_started PID HOME LOG EXPECTED_DELIVERED: the first start in an empty home.
check_started() {
    local pid=$1 home=$2 log=$3 delivered=$4
    window_of "$pid" "TVX Regimenter" 30 >/dev/null || { cat "$log"; fail "the main window did not come up"; }
    local data="$home/.local/share/Tarvex"
    for file in Tarvex.MDB "Exercise Library.MDB" Picklist.MDB cover.txt TIPOFDAY.TXT \
        "Patient Instructions.Doc" ICON/385.JPG tarvex.lock; do
        [ -f "$data/$file" ] || fail "the data folder lacks $file"
    done
    [ "$(stat -c %a "$data")" = 700 ] || fail "the data folder is open to others"
    [ "$(stat -c %a "$data/Tarvex.MDB")" = 600 ] || fail "Tarvex.MDB is open to others"
    [ "$(stat -c %a "$data/ICON/385.JPG")" = 600 ] || fail "the copied icons are not the user's"
    local names
    names=$(window_names "$pid")
    if grep -q -e "Exercise Pictures Not Found" -e "Picture Location" <<<"$names"; then
        fail "the start did not find the pictures: $names"
    fi
    echo "started in \"$home\": data folder filled, main window up ($(tr '\n' ',' <<<"$names"))"
    : "$delivered"
}

# The settings a run leaves behind name the pictures and movies of the installation.
check_media_found() {
    local home=$1 delivered=$2
    local conf="$home/.config/Tarvex/Tarvex.conf"
    [ -f "$conf" ] || fail "no settings were written in $conf"
    grep -qxF "Picture=$delivered/PICTURE/" "$conf" || { cat "$conf"; fail "the pictures were not found in $delivered"; }
    grep -qxF "Movie=$delivered/MOVIE/" "$conf" || { cat "$conf"; fail "the movies were not found in $delivered"; }
}

# --- The first user ---------------------------------------------------------------------------
me=$(id -u)
home1="$work/home of one"
mkdir "$home1"
start_as "$me" "$home1" "$usr/bin/tarvex" >"$work/first.log" 2>&1 &
first=$!
pids+=("$first")
check_started "$first" "$home1" "$work/first.log" "$usr/share/tarvex"

# Help > Contents (F1) opens the help from the installation.
main=$(window_of "$first" "TVX Regimenter" 5)
if tip=$(window_of "$first" "Tip of the Day" 3); then
    xdotool windowactivate --sync "$tip" key Escape
    sleep 0.5
fi
xdotool windowactivate --sync "$main" key F1
window_of "$first" "TVX Regimenter Help" 15 >/dev/null || fail "F1 did not open the help"
echo "the help opened"

# --- A second user at the same moment ------------------------------------------------------
if [ "$me" -eq 0 ]; then
    other=54321
    home2="$work/home of two"
    mkdir "$home2"
    chown "$other:$other" "$home2"
    chmod 700 "$home1"
else
    other=$me
    home2="$work/home of two"
    mkdir "$home2"
    echo "not root: the second user is this user with a home of its own"
fi
start_as "$other" "$home2" "$usr/bin/tarvex" >"$work/second.log" 2>&1 &
second=$!
pids+=("$second")
check_started "$second" "$home2" "$work/second.log" "$usr/share/tarvex"
kill -0 "$first" || fail "the first user's program ended when the second started"
[ "$(stat -c %u "$home2/.local/share/Tarvex/Tarvex.MDB")" = "$other" ] ||
    fail "the second user's databases are not theirs"
if [ "$other" != "$me" ]; then
    if run_as "$other" "$home2" cat "$home1/.local/share/Tarvex/Tarvex.MDB" >/dev/null 2>&1; then
        fail "the second user can read the first user's patients"
    fi
    echo "second user (uid $other) started beside the first, with a data folder and lock of their own"
fi
close_program "$second"
close_program "$first"
check_media_found "$home1" "$usr/share/tarvex"
check_media_found "$home2" "$usr/share/tarvex"
[ -f "$home1/.local/share/Tarvex/tarvex.lock" ] && fail "the lock stayed after the program ended"

# --- The pictures on a printed sheet ------------------------------------------------------------
# A stored program of the delivered exercise 385 (three pictures), printed by the installed
# tarvex-print: the sheet holds the pictures only when the installation's are found.
db="$home1/.local/share/Tarvex/Tarvex.MDB"
sqlite3 "$db" <<SQL
ATTACH '$home1/.local/share/Tarvex/Exercise Library.MDB' AS lib;
INSERT INTO Patient (PatientID, ID, LastName, FirstName, FullName) VALUES (1, 'P1', 'Doe', 'Jan', 'Doe, Jan');
INSERT INTO Invoice (InvoiceID, PatientID, Date) VALUES (1, 1, '2026-11-24 00:00:00');
INSERT INTO Exercise (InvoiceID, RankOnTape, ExerciseID, code, "Desc", AbbrevDesc, Reps, Hold, Sets,
    Movie, Icon, Picture0, Picture1, Picture2, Instruct0, Instruct1, Instruct2, HasVideo,
    VideoReps, VideoHold, VideoSets)
SELECT 1, 1, ExerciseID, code, "Desc", AbbrevDesc, Reps, Hold, Sets, Movie, Icon, Picture0,
    Picture1, Picture2, Instruct0, Instruct1, Instruct2, HasVideo, VideoReps, VideoHold, VideoSets
FROM lib.ExerciseLibrary WHERE ExerciseID = 385;
SQL
print_images() {
    rm -f "$work/sheet.pdf"
    run_as "$me" "$home1" "$usr/bin/tarvex-print" --job ex2 --invoice 1 --out "$work/sheet.pdf" \
        >"$work/print.log" 2>&1 || { cat "$work/print.log"; fail "tarvex-print failed"; }
    pdfimages -list "$work/sheet.pdf" | tail -n +3 | wc -l
}
found=$(print_images)
[ "$found" -ge 3 ] || fail "the printed sheet holds $found pictures, not the exercise's three"
# The same sheet without the installation's pictures holds none: the count above is theirs.
mv "$usr/share/tarvex/PICTURE" "$usr/share/tarvex/PICTURE.away"
missing=$(print_images)
mv "$usr/share/tarvex/PICTURE.away" "$usr/share/tarvex/PICTURE"
[ "$missing" -lt "$found" ] || fail "the sheet held $missing pictures without the installation's"
echo "the installed pictures print: $found on the sheet ($missing without them)"

# --- A prefix with spaces, its delivered files read-only ----------------------------------------
prefix="$work/Clinic Programs/TVX Regimenter"
cmake --install "$build" --prefix "$prefix" >"$work/install.log" 2>&1 ||
    { cat "$work/install.log"; fail "cmake --install into \"$prefix\""; }
chmod -R a-w "$prefix/share/tarvex"
chmod -R a+rX "$work/Clinic Programs"
home3="$work/home of three"
mkdir "$home3"
[ "$other" != "$me" ] && chown "$other:$other" "$home3"
start_as "$other" "$home3" "$prefix/bin/tarvex" >"$work/third.log" 2>&1 &
third=$!
pids+=("$third")
check_started "$third" "$home3" "$work/third.log" "$prefix/share/tarvex"
close_program "$third"
check_media_found "$home3" "$prefix/share/tarvex"
echo "installed under \"$prefix\" with read-only delivered files: started, filled its data folder, found the pictures"
echo "PASS"
