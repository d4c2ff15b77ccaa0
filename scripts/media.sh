# What the scripts that make media with the ffmpeg program have in common; they source it.
#
# A script describes itself in the comment below its first line, defines a function `make_NAME OUT` for
# each medium, and then calls `bring_media "$@"`. A function that ends with code 77 says that this ffmpeg
# has no encoder for its medium.

script=$(readlink -f "$0")
program=$(basename "$script" .sh)

run() { ffmpeg -hide_banner -loglevel error -nostdin -y "$@" </dev/null; }

# begin_media DIR: looks whether there is all that is needed; sets $dir and $scratch.
begin_media() {
    if [ $# -lt 1 ] || [ "${1#-}" != "$1" ]; then
        sed -n '2,/^set /s/^# \{0,1\}//p' "$script" | sed '/^set /d'
        exit 2
    fi
    if ! command -v ffmpeg >/dev/null; then
        echo "$program: the ffmpeg program is missing; run scripts/install-deps.sh" >&2
        exit 1
    fi
    mkdir -p "$1"
    dir=$(cd "$1" && pwd)
    scratch=$(mktemp -d "$dir/.making-XXXXXX")
    trap 'rm -rf "$scratch"' EXIT
}

# bring_one NAME: makes it in the scratch folder; it gets its name when it is whole.
bring_one() {
    # A shell of its own, so that its first failing command ends it and the code can be seen here.
    set +e
    (
        set -e
        "make_$1" "$scratch/$1"
    )
    local code=$?
    set -e
    if [ $code = 77 ]; then
        echo "left out $1: this ffmpeg has no encoder for it"
        return
    elif [ $code != 0 ]; then
        echo "$program: $1 could not be made (ffmpeg said why above)" >&2
        exit 1
    fi
    rm -rf "${dir:?}/$1"
    mv -T "$scratch/$1" "$dir/$1"
    touch "$dir/$1"
    echo "made $dir/$1"
}

# must_make NAME: true if it isn't there, or is older than the script, unless that sets $keeps_what_is_there.
must_make() {
    [ -e "$dir/$1" ] || return 0
    [ -z "${keeps_what_is_there:-}" ] && [ ! "$dir/$1" -nt "$script" ]
}

# bring_media DIR [NAME...]: what must be made; without names everything.
bring_media() {
    begin_media "$@"
    shift
    local all name  # names have no spaces
    all=$(declare -F | sed -n 's/^declare -f make_//p')
    for name in ${*:-$all}; do
        if ! declare -F "make_$name" >/dev/null; then
            echo "$program: no medium is called '$name'; there are:" $all >&2
            exit 2
        fi
        if must_make "$name"; then
            bring_one "$name"
        fi
    done
}
