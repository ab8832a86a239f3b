# Sourced by ./run and ./test: installs the Debian packages the build, the tests and the
# program need, when any of them is missing.
TARVEX_PACKAGES=(
    qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite libqt6sql6-psql postgresql-client
    qt6-multimedia-dev libqt6multimediawidgets6
    gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-libav
    libzip-dev libpq-dev zip sqlite3 libgtest-dev libbenchmark-dev cmake ninja-build g++ pkg-config
    fonts-liberation fonts-dejavu-core fonts-noto-cjk xvfb xauth ffmpeg poppler-utils unzip p7zip-full
    clang-format librsvg2-bin
)
# Only the tests need these: a real print queue (a private CUPS server whose cups-pdf
# queue writes PDF files), LibreOffice, which prints the patient instructions, a window
# manager with xprop and xdotool for the tests on a virtual display, and a PostgreSQL
# server for a private cluster of the tests (it brings the client programs as well), and
# what builds and checks the Debian package (dpkg-shlibdeps, lintian, the desktop entry's
# and the AppStream data's validators, and man to check the manual pages).
TARVEX_TEST_PACKAGES=(
    cups printer-driver-cups-pdf ghostscript libreoffice-writer libreoffice-core
    openbox x11-utils xdotool clang-tidy postgresql
    dpkg-dev lintian desktop-file-utils appstream man-db
)

# ensure_deps [extra packages...]
ensure_deps() {
    local missing=()
    local pkg
    for pkg in "${TARVEX_PACKAGES[@]}" "$@"; do
        if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed"; then
            missing+=("$pkg")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -qq
    $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}
