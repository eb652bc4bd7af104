# Sourced by ./corvane, ./test and the scripts beside this file, with `root` set to the absolute path of the
# tree: installing what packages.txt lists, configuring and building. Progress goes to standard error.

export DEBIAN_FRONTEND=noninteractive
# What one clone of the tree has compiled serves all of them.
export CCACHE_BASEDIR="$root" CCACHE_NOHASHDIR=1

say() {
    printf 'corvane: %s\n' "$*" >&2
}

# packages SECTION…: the names under these headings of packages.txt.
packages() {
    section=
    while read -r line; do
        case $line in
        '' | '#'*) ;;
        '['*']') section=${line#?} section=${section%?} ;;
        *) case " $* " in *" $section "*) printf '%s\n' "$line" ;; esac ;;
        esac
    done <"$root/packages.txt"
}

# missing_packages SECTION…: those of them that are not installed.
missing_packages() {
    for name in $(packages "$@"); do
        case $(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null) in
        installed) ;;
        *) printf '%s ' "$name" ;;
        esac
    done
}

# install_packages SECTION…: installs the missing ones, as root or through sudo.
install_packages() {
    missing=$(missing_packages "$@")
    [ -z "$missing" ] && return 0
    if [ "$(id -u)" = 0 ]; then
        as_root=
        say "installing ${missing% }"
    elif command -v sudo >/dev/null; then
        as_root='sudo DEBIAN_FRONTEND=noninteractive'
        say "installing through sudo: ${missing% }"
    else
        say "please install as root: ${missing% }"
        return 1
    fi
    # The lists may be old or, on a fresh machine, not there at all. A package that is listed already can
    # still be installed when one of several sources does not answer now.
    mkdir -p "$root/build" || return 1
    run_logged "$root/build/packages.log" $as_root apt-get -qq -o DPkg::Lock::Timeout=600 update ||
        say "some package lists could not be renewed"
    run_logged "$root/build/packages.log" $as_root apt-get -qq -o DPkg::Lock::Timeout=600 \
        install --no-install-recommends -y $missing
}

# configured PRESET: its build folder is there, and is of this tree (a tree that was moved is not).
configured() {
    [ -e "$root/build/$1/build.ninja" ] &&
        grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$root/build/$1/CMakeCache.txt"
}

# configure PRESET [OPTION…]
configure() {
    fresh=--fresh
    if configured "$1"; then fresh=; fi
    (cd "$root" && cmake $fresh --preset "$@")
}

# fuzz_targets: those that the build knows; an old build's may still lie beside them.
fuzz_targets() {
    ninja -C "$root/build/fuzz" -t targets all | sed -n 's,^bin/\([a-z0-9_]*_fuzzer\): .*,\1,p' | sort
}

# run_logged LOG COMMAND…: on a terminal the command speaks for itself, on standard error; elsewhere its
# output goes to the log, whose tail is shown when the command fails.
run_logged() {
    log=$1
    shift
    if [ -t 2 ]; then
        "$@" >&2
    else
        "$@" >"$log" 2>&1 || {
            tail -n 60 "$log" >&2
            return 1
        }
    fi
}
