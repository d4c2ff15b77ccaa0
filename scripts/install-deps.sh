#!/usr/bin/env bash
# Installs what building, testing and running playfile needs and is missing, from Debian's packages.
#
#   scripts/install-deps.sh            install what is missing
#   scripts/install-deps.sh --list     print the names of the packages
#   scripts/install-deps.sh --check    say what is missing and install nothing (1: something is)
set -euo pipefail

packages=(
    # compilers and tools
    g++ make cmake ninja-build pkg-config ccache git python3
    clang clang-format clang-tidy libclang-rt-14-dev
    # libraries
    libsqlite3-dev libavcodec-dev libavformat-dev libavutil-dev libswscale-dev libpng-dev
    libcurl4-openssl-dev nlohmann-json3-dev libcli11-dev
    # tests, benches and test media
    libgtest-dev libgmock-dev libbenchmark-dev libsndfile1-dev ffmpeg curl
)

fail() {
    echo "install-deps: $1" >&2
    echo "install-deps: remedy: $2" >&2
    exit 1
}

missing_packages() {
    for package in "${packages[@]}"; do
        case "$(dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null || true)" in
            ii*|hi*) ;;
            *) echo "$package" ;;
        esac
    done
}

case "${1:-}" in
    --list)
        printf '%s\n' "${packages[@]}"
        exit 0 ;;
    --check|"") ;;
    *)
        sed -n '2,/^set /s/^# \{0,1\}//p' "$0" | sed '/^set /d'
        exit 2 ;;
esac

command -v dpkg-query >/dev/null && command -v apt-get >/dev/null ||
    fail "this is not a Debian system (there is no apt-get)" \
         "install by hand what these packages hold: ${packages[*]}"

mapfile -t missing < <(missing_packages)
if [ ${#missing[@]} = 0 ]; then
    exit 0
fi
if [ "${1:-}" = --check ]; then
    echo "install-deps: missing: ${missing[*]}"
    exit 1
fi

as_root=()
if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null ||
        fail "missing packages, and neither root nor sudo to install them: ${missing[*]}" \
             "as root: apt-get install -y ${missing[*]}"
    as_root=(sudo --non-interactive)
    "${as_root[@]}" true 2>/dev/null || as_root=(sudo)
fi

apt() { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y "$@"; }

echo "install-deps: installing ${missing[*]}"
apt -o Acquire::Retries=3 update ||
    fail "the lists of packages could not be fetched" \
         "check the network and /etc/apt/sources.list, then run this again"

if ! apt -o Acquire::Retries=3 install --no-install-recommends "${missing[@]}"; then
    # One by one, so that the package at fault is named.
    for package in "${missing[@]}"; do
        apt install --no-install-recommends "$package" ||
            fail "package '$package' could not be installed (apt-get said why above)" \
                 "apt-get install $package, or install by hand what it holds"
    done
fi

mapfile -t missing < <(missing_packages)
[ ${#missing[@]} = 0 ] ||
    fail "still missing after the installation: ${missing[*]}" "apt-get install ${missing[*]}"
echo "install-deps: all that is needed is installed"
