# Sourced by ./run: finds or makes a Wine that runs 32-bit programs, and runs programs in it.
#
# Two kinds are known. `host` is the machine's own wine, used when it passes a 32-bit probe.
# `root` is a Debian root of its own in the cache folder, made once; programs run in it through
# chroot inside a private mount namespace, so nothing stays mounted when they end.

wine_cache=${TARNHD_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/tarnhd}
wine_root=$wine_cache/wine-root
wine_prefix=$project/build/wine-prefix
wine_kind=

wine_env=(PATH=/usr/bin:/bin:/usr/sbin:/sbin HOME=/root XDG_RUNTIME_DIR=/tmp LANG=C.UTF-8 WINEDEBUG=-all
    "WINEDLLOVERRIDES=winedbg.exe=d;mscoree=d;mshtml=d" "WINEPREFIX=$wine_prefix")

# Runs a command of the Wine installation (wine, wineserver, ...) in the folder that is current now.
wine_command() {
    if [ "$wine_kind" = host ]; then
        env -i "${wine_env[@]}" "${wine_extra_env[@]}" "$@"
        return
    fi
    local share=(unshare -m --propagation private)
    [ "$(id -u)" -eq 0 ] || share=(unshare -rm --propagation private)
    "${share[@]}" bash -c '
        root=$1 project=$2 folder=$3; shift 3
        mount -t proc proc "$root/proc" && mount --bind "$project" "$root$project" || exit 125
        exec chroot "$root" /usr/bin/env -i --chdir="$folder" "$@"' wine-root \
        "$wine_root" "$project" "$PWD" "${wine_env[@]}" "${wine_extra_env[@]}" "$@"
}

wine_probe_host() {
    command -v wine >/dev/null 2>&1 || return 1
    local probe=$wine_cache/probe.exe
    mkdir -p "$wine_cache"
    echo 'int main(void) { return sizeof(void *) == 4 ? 42 : 1; }' |
        i686-w64-mingw32-gcc-posix -x c -o "$probe" - 2>/dev/null || return 1
    env -i "${wine_env[@]}" WINEPREFIX="$wine_cache/probe-prefix" timeout 120 wine "$probe" >/dev/null 2>&1
    [ $? -eq 42 ]
}

# Every step writes to a folder that becomes the real one only by the last rename: an interrupted
# attempt leaves nothing that a later one could mistake for a finished root.
wine_make_root() {
    [ "$(id -u)" -eq 0 ] || die "this machine's wine runs no 32-bit programs, and making a Wine root needs root: run './run setup' once as root"
    install_packages debootstrap
    mkdir -p "$wine_cache"
    exec 8>"$wine_cache/wine-root.lock"
    flock 8
    if [ ! -e "$wine_root/.complete" ]; then
        say "making the Wine root in $wine_root (once, about two minutes and 2 GB)"
        rm -rf "$wine_cache"/wine-root.new
        local new=$wine_cache/wine-root.new log=$wine_cache/wine-root.log
        say "  1/3 base system"
        debootstrap --arch=amd64 --variant=minbase trixie "$new" >"$log" 2>&1 || die "debootstrap failed, see $log"
        printf '#!/bin/sh\nexit 101\n' >"$new/usr/sbin/policy-rc.d"
        chmod +x "$new/usr/sbin/policy-rc.d"
        say "  2/3 package lists"
        chroot "$new" dpkg --add-architecture i386 >>"$log" 2>&1
        chroot "$new" apt-get update >>"$log" 2>&1 || die "apt-get update failed in the Wine root, see $log"
        say "  3/3 wine"
        chroot "$new" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
            wine wine64 wine32:i386 >>"$log" 2>&1 || die "installing wine failed, see $log"
        chroot "$new" apt-get clean
        touch "$new/.complete"
        rm -rf "$wine_root"
        mv "$new" "$wine_root"
    fi
    flock -u 8
    exec 8>&-
}

wine_setup() {
    [ -n "$wine_kind" ] && return
    mkdir -p "$wine_cache"
    local known=$wine_cache/kind
    if [ -e "$wine_root/.complete" ]; then
        wine_kind=root
    elif [ "$(cat "$known" 2>/dev/null)" = host ] && command -v wine >/dev/null 2>&1; then
        wine_kind=host
    elif wine_probe_host; then
        wine_kind=host
        echo host >"$known"
    else
        wine_make_root
        wine_kind=root
    fi
    if [ "$wine_kind" = root ]; then mkdir -p "$wine_root$project" "$wine_root/proc"; fi
}

# A server that stays keeps each program's start at tens of milliseconds. It is cut off from all
# pipes of this script, or whoever reads our output would wait for it to end.
wine_start() {
    wine_setup
    mkdir -p "$wine_prefix"
    wine_extra_env=()
    # One that was copied or moved here is made anew: what was registered in it has its path, and a server that still
    # runs for it sees the files of the old place.
    if [ "$(cat "$wine_prefix/.complete" 2>/dev/null)" != "$(realpath "$project")" ]; then
        say "making the Wine prefix (once, about ten seconds)"
        wine_command wineserver -k >/dev/null 2>&1 </dev/null
        find "$wine_prefix" -mindepth 1 -delete 2>/dev/null
    fi
    wine_command wineserver -p </dev/null >/dev/null 2>&1
    # The first program boots the prefix with its services, so no test inherits that job. A wineboot by hand would
    # boot twice: two service managers, and calls that now and then wait most of a minute for the wrong one.
    wine_command wine cmd /c exit </dev/null >/dev/null 2>&1 || die "Wine does not boot"
    realpath "$project" >"$wine_prefix/.complete"
    wine_register
}

# Wine's own classes come back with each update of the prefix, so this is done at each start. Only ever in the
# project's own prefix: the library refuses anything but Wine.
wine_register() {
    local library=$project/build/product/bin/systemobjects.dll program='C:\windows\syswow64\regsvr32.exe'
    [ -e "$library" ] || return 0
    [ -d "$wine_prefix/drive_c/windows/syswow64" ] || program=regsvr32
    wine_command wine "$program" /s "Z:${library//\//\\}" </dev/null >/dev/null 2>&1 ||
        die "the stand-ins for classes of Windows cannot be registered"
}

wine_stop() {
    [ -n "$wine_kind" ] || return 0
    wine_extra_env=()
    wine_command wineserver -k >/dev/null 2>&1 </dev/null || true
}
