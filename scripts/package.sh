# Sourced by ./run: what is handed out, as archives that are the same to the byte wherever they are made.

package_packages=(python3 nlohmann-json3-dev gcc-mingw-w64-i686-posix-runtime mingw-w64-i686-dev googletest libcli11-dev)

# Times of all files: the commit's, unless the caller says another one.
package_time() {
    if [ -z "${SOURCE_DATE_EPOCH:-}" ]; then
        SOURCE_DATE_EPOCH=$(git -C "$project" log -1 --format=%ct) || die "no commit here: set SOURCE_DATE_EPOCH"
        [ -z "$(git -C "$project" status --porcelain)" ] || say "the sources have changes that no commit has"
    fi
    echo "$SOURCE_DATE_EPOCH"
}

command_package() {
    local arguments=() time
    # The build and all that it starts are not to have it.
    export -n PACKAGE_SIGN_PASSWORD
    while [ $# -gt 0 ]; do
        case $1 in
            --sign)
                [ -r "${2:-}" ] || die "--sign takes a PKCS #12 file with key and certificate"
                arguments+=(--sign "$(realpath "$2")")
                shift 2
                ;;
            *) die "package takes --sign FILE.p12 only, not $1" ;;
        esac
    done
    [ ${#arguments[@]} -eq 0 ] || package_packages+=(osslsigncode)
    install_packages "${package_packages[@]}"
    time=$(package_time) || exit
    build_flavour product
    # One that makes paths relative gives the symbols, and the library's checksum of them, other names of headers.
    ! grep -q '^CMAKE_CXX_COMPILER_LAUNCHER:[A-Z]*=.' "$project/build/product/CMakeCache.txt" ||
        say "built through a compiler cache: the bytes may not be those of a build without it"
    say "packing"
    [ -z "${PACKAGE_SIGN_PASSWORD+set}" ] || export PACKAGE_SIGN_PASSWORD
    python3 "$project/scripts/package/make.py" --build "$project/build/product" --out "$project/build" \
        --epoch "$time" "${arguments[@]}" || die "there is no package"
}
