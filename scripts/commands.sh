# Sourced by ./run: one function per command.

flavours=(product asan tsan fuzz)
# Opens the pages that tarnctl writes. Of Debian's browsers the one without windows and what these need.
browser_package=chromium-headless-shell

command_help() {
    cat <<'END'
usage: ./run COMMAND [ARGS]

  demo               build, then show remote scan and installation requests from the store key to the result
  test [-R REGEX]    build and run all tests: under Wine, and natively under the sanitizers
       [--flavour F]   only product, asan, tsan or fuzz
       [--fresh-prefix]  in a new Wine prefix
  build [TARGET...]  build the 32-bit Windows flavour
  bench [ARGS]       build and run the benchmarks, pinned to one core
  soak [--PART N ...]  kill the store and change things at random times, without recovery and with it; parts are kills
                     (400), starts (60), changes (120), requests (40), minutes (0, of kills every ten seconds with
                     recovery on); --only on|off, --seed N
  fuzz [SECONDS]     run every fuzz target for that long (60), from its inputs and what it found before
  lint               check the format, what the pages quote, and run the static checks
  docs               make docs/keys.md and docs/reference anew from the code
  package            make the archives to hand out: build/tarnhd-VERSION-*.zip and their checksums
       [--sign FILE.p12]  sign library and programs; the password is PACKAGE_SIGN_PASSWORD's or asked for
  host -- ARGS       run the console host under Wine: ./run host -- --help
  wine PROGRAM ARGS  run any program under the project's Wine
  gdb PROGRAM ARGS   the same in gdb; with a number instead, the process that runs under it: docs/debugging.md
  setup              install packages and make the Wine root, nothing else
  clean              remove what was built here (the Wine root in the cache folder stays)
END
}

command_setup() {
    install_packages "${build_packages[@]}"
    wine_setup
}

# Where a flavour's build folder was configured when that was another checkout, of which this one is a copy, or this
# one before it was moved: CMake would go on there, again and again.
made_elsewhere() {
    local made_in
    made_in=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "build/$1/CMakeCache.txt" 2>/dev/null)
    [ -n "$made_in" ] && [ "$(realpath -m "$made_in")" != "$(realpath "$project")" ] && echo "$made_in"
}

# One build at a time on a machine: each takes both cores.
build_flavour() {
    local flavour=$1
    shift
    install_packages "${build_packages[@]}"
    [ "$flavour" != fuzz ] || install_packages clang libclang-rt-dev
    mkdir -p "$wine_cache" "$project/build"
    (
        flock 9
        cd "$project" || exit 1
        if made_in=$(made_elsewhere "$flavour"); then
            say "build/$flavour belongs to $made_in: it is made anew"
            rm "build/$flavour/build.ninja"
        fi
        if [ ! -e "build/$flavour/build.ninja" ]; then
            say "configuring $flavour"
            cmake --fresh --preset "$flavour" >"build/$flavour.log" 2>&1 || { cat "build/$flavour.log" >&2; exit 1; }
        fi
        say "building $flavour"
        cmake --build --preset "$flavour" ${1:+--target "$@"}
    ) 9>"$wine_cache/build.lock" || die "the $flavour flavour does not build"
}

command_build() {
    build_flavour product "$@"
}

test_flavour() {
    local flavour=$1
    shift
    say "testing $flavour"
    # Not UTC, which most machines that run tests have: there no test would notice a mix-up with local time.
    (
        export TARNHD_TIME_ZONE=AHEAD-5:30
        cd "$project/build/$flavour" && ctest --output-on-failure -j "$(nproc)" --no-tests=error "$@"
    )
}

command_test() {
    local selected=("${flavours[@]}") failed=() flavour
    local -a arguments=()
    while [ $# -gt 0 ]; do
        case $1 in
            --flavour) selected=("$2"); shift 2 ;;
            --fresh-prefix) wine_setup; wine_stop; rm -rf "$wine_prefix"; shift ;;
            *) arguments+=("$1"); shift ;;
        esac
    done
    for flavour in "${selected[@]}"; do build_flavour "$flavour"; done
    # The product flavour comes last: its summary closes the output.
    for flavour in fuzz asan tsan product; do
        [[ " ${selected[*]} " == *" $flavour "* ]] || continue
        if [ "$flavour" = product ]; then
            install_packages "${package_packages[@]}" osslsigncode "$browser_package"
            trap 'servers_stop; wine_stop' EXIT
            servers_start
            wine_start
        fi
        test_flavour "$flavour" "${arguments[@]}" || failed+=("$flavour")
    done
    [ ${#failed[@]} -eq 0 ] || die "tests failed in: ${failed[*]}"
}

command_host() {
    [ "${1:-}" = -- ] && shift
    build_flavour product tarnhost tarnhd tarnag wuservice restartprompt host-libraries systemobjects >&2
    wine_start
    wine_command wine "$project/build/product/bin/tarnhost.exe" "$@"
}

# Used as ctest's emulator: no build, no messages. TARNHD_* variables reach the program.
#
# Wine's own process dies now and then with a Unix segmentation fault (139) while a program that is done is
# torn down. A fault of the program itself never ends so: Wine turns it into a Windows exception with an exit
# code of its own. That one case is run once more, and said.
command_wine() {
    wine_setup
    local name result
    for name in "${!TARNHD_@}" "${!GTEST_@}"; do wine_extra_env+=("$name=${!name}"); done
    [ -z "${TARNHD_TIME_ZONE:-}" ] || wine_extra_env+=("TZ=$TARNHD_TIME_ZONE")
    wine_command wine "$@"
    result=$?
    if [ "$result" -eq 139 ]; then
        say "Wine itself crashed; running it once more: ${1##*/}"
        wine_command wine "$@"
        result=$?
    fi
    return "$result"
}

# The debugger is this machine's, as the sources are here; in Wine there is only what it talks to. Both know one
# process. Commands for gdb may come as its input.
command_gdb() {
    local port=$((20000 + RANDOM % 10000)) name
    install_packages gdb
    [ $# -gt 0 ] || die "gdb takes a program, or the number of a process"
    wine_start
    for name in "${!TARNHD_@}"; do wine_extra_env+=("$name=${!name}"); done
    # Wine's own debugger is off elsewhere, or each crash would wait for it.
    wine_extra_env+=("WINEDLLOVERRIDES=mscoree=d;mshtml=d")
    wine_command wine winedbg --gdb --no-start --port "$port" "$@" </dev/null >"$project/build/winedbg.log" 2>&1 &
    # Wine's own libraries stand in its root.
    gdb -q -ex "set architecture i386" -ex "set tcp connect-timeout 30" \
        -ex "set solib-search-path $wine_root/usr/lib/i386-linux-gnu/wine/i386-windows" \
        -ex "target remote localhost:$port"
}

# Client, server and program share one core, or the figures swing with the scheduler's mood.
command_bench() {
    local name
    install_packages python3 "$browser_package"
    build_flavour product all
    (
        taskset -cp "$(($(nproc) - 1))" "$BASHPID" >/dev/null
        # What else runs on that core would stand in the tails, of the floor's as of ours.
        renice -n -20 -p "$BASHPID" >/dev/null 2>&1 || say "not root: other programs may get in between"
        wine_setup
        wine_stop
        wine_start
        trap wine_stop EXIT
        cd "$project/build/product/bin" || exit 1
        for name in bench-*.exe; do
            [ $# -eq 0 ] || [[ " $* " == *" ${name%.exe} "* ]] || continue
            say "${name%.exe}"
            sync # what the one before has written is not to be written under this one
            command_wine "./$name" || failed=1
            case $name in
                bench-plugin.exe) python3 "$project/scripts/unitsizes.py" tarnhd.dll.map ;;
                bench-logreading.exe)
                    python3 "$project/bench/logreading/pageopening.py" tarnctl.exe "$project/run" wine || failed=1
                    ;;
            esac
        done
        exit "${failed:-0}"
    ) || die "a figure is out of reach; see NO above"
}

# Each part without recovery and with it, but for the minutes. What is lost without is a figure, with it a failure.
command_soak() {
    local only='*' part mode failed=0 results=$project/build/soak.log
    declare -A times=([KILLS]=400 [STARTS]=60 [CHANGES]=120 [REQUESTS]=40 [MINUTES]=0 [SEED]=1)
    while [ $# -gt 1 ]; do
        part=${1#--}
        case $part in
            only) only=$2 ;;
            kills | starts | changes | requests | minutes | seed)
                [[ $2 =~ ^[0-9]+$ ]] || die "$1 takes a number"
                times[${part^^}]=$2
                ;;
            *) die "unknown part: $1" ;;
        esac
        shift 2
    done
    [ $# -eq 0 ] || die "soak: $1 needs a number"
    build_flavour product soak-tests
    wine_setup
    wine_stop
    wine_start
    trap wine_stop EXIT
    for part in "${!times[@]}"; do export "TARNHD_SOAK_$part=${times[$part]}"; done
    cd "$project/build/product/bin" || exit 1
    : >"$results"
    for part in killsOfTheStore:KILLS killsDuringTheStart:STARTS pairsOfChanges:CHANGES pairsOfRequests:REQUESTS \
        growsByNothing:MINUTES; do
        [ "${times[${part#*:}]}" -gt 0 ] || continue
        say "soak: ${part%:*}"
        # A process for each: they would share the log's file.
        for mode in off on; do
            [[ $mode == $only ]] || continue
            command_wine ./soak-tests.exe "--gtest_filter=*${part%:*}/$mode" >"$results.part" 2>&1 || failed=1
            cat "$results.part" >>"$results"
            grep -E '^soak \||Failure' "$results.part"
        done
    done
    say "the log of all: build/soak.log"
    printf '%s\n' "part, recovery, times, requests, left open, served twice, stale lists, deaf starts, longest ms to the acknowledgement and to the published list"
    grep -h '^soak |' "$results"
    [ "$failed" -eq 0 ] || die "soak: something was lost; see build/soak.log"
}

# One fuzz target: progress while it runs, then its line of the summary. What it finds that is new is kept in the
# build folder and is a start for the next run.
fuzz_target() {
    local target=$1 seconds=$2 found=$fuzz_folder/found/$1 log=$fuzz_folder/$1.log result new
    say "fuzz-$target for $seconds s"
    mkdir -p "$found"
    "$project/build/fuzz/tests/fuzz/fuzz-$target" -max_total_time="$seconds" -max_len=320 -timeout=5 \
        -rss_limit_mb=1024 -dict="$project/tests/fuzz/dictionary" -artifact_prefix="$fuzz_folder/finding-$target-" \
        -print_final_stats=1 "$found" "$project/tests/fuzz/corpus/$target" 2>&1 |
        tee "$log" | grep --line-buffered -E 'pulse|^violated|ERROR:|runtime error:|Test unit written'
    result=${PIPESTATUS[0]}
    new=$(sed -n 's/^stat::new_units_added: *//p' "$log")
    printf '%-12s %10s inputs %7s new in the corpus   %s\n' "$target" \
        "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" "${new:-?}" \
        "$([ "$result" -eq 0 ] && echo ok || sed -n 's/.*Test unit written to /FINDING: /p' "$log")" \
        >>"$fuzz_folder/summary"
    return "$result"
}

command_fuzz() {
    local seconds=${1:-60} failed=0 inputs
    [[ $seconds =~ ^[1-9][0-9]*$ ]] || die "fuzz takes a number of seconds"
    fuzz_folder=$project/build/fuzz/fuzzing
    build_flavour fuzz
    mkdir -p "$fuzz_folder"
    : >"$fuzz_folder/summary"
    for inputs in "$project"/tests/fuzz/corpus/*/; do
        fuzz_target "$(basename "$inputs")" "$seconds" || failed=1
    done
    cat "$fuzz_folder/summary"
    [ "$failed" -eq 0 ] || die "fuzzing found something; run the target with the input's path to see it again"
}

# The cross compiler's time_t ends in 2038, and the standard library's clocks and timed waits end with it; its locks
# and threads leave handles behind in the host. vxtl/clock.h, vxtl/lock.h and JoinedThread stand in.
lint_standard_library() {
    local clocks='std::(time|tm)\b|\btime_t\b|<(ctime|time\.h)>|\b(localtime|gmtime|mktime|strftime|wcsftime)\('
    clocks+='|chrono::(system|steady|high_resolution|utc|tai|gps|file)_clock|\b(wait|sleep)_(for|until)\b'
    local locks='std::((recursive_|shared_)?(timed_)?mutex|condition_variable(_any)?|call_once|once_flag|j?thread|this_thread'
    locks+='|async|packaged_task|promise|(shared_)?future|latch|barrier|(counting|binary)_semaphore|stop_(token|source|callback))\b'
    locks+='|<(condition_variable|thread|future|latch|barrier|semaphore|stop_token)>'
    local shared_state='std::s?rand\b'
    # Programs of the development host end with their threads, so these may use the standard ones.
    ! git grep -nE "$clocks|$locks|$shared_state" -- sdk src && ! git grep -nE "$clocks" -- devhost
}

command_lint() {
    local failed=0
    install_packages clang-format cppcheck nlohmann-json3-dev python3
    cd "$project" || exit 1
    say "checking the format"
    git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format --dry-run -Werror || failed=1
    say "checking what is used of the standard library"
    lint_standard_library || failed=1
    say "checking the includes"
    python3 scripts/includes.py || failed=1
    say "checking the pages"
    python3 scripts/pages.py || failed=1
    say "running cppcheck"
    # On: warning, performance, portability, that is what is likely wrong. Style is clang-format's and the
    # reviewer's. Off: what this version can't see through - members that braces initialise (uninitMemberVar),
    # macros of libraries (unknownMacro), lambdas that run inside a catch-all (throwInNoexceptFunction),
    # views of temporaries that outlive the call (danglingTemporaryLifetime), constants that a more special kind
    # gives another value (duplInheritedMember) - and
    # passedByValue, because small value types are passed by value here.
    cppcheck --enable=warning,performance,portability --std=c++20 --language=c++ --platform=win32W --quiet \
        --error-exitcode=1 --inline-suppr --library=windows --library=googletest -j "$(nproc)" \
        --suppress=missingInclude --suppress=missingIncludeSystem --suppress=uninitMemberVar \
        --suppress=unknownMacro --suppress=throwInNoexceptFunction --suppress=passedByValue --suppress=danglingTemporaryLifetime \
        --suppress=duplInheritedMember \
        -Isrc -Idevhost -Itools $(printf -- '-I%s ' sdk/*/include sdk/*/src) \
        sdk src devhost tools docs bench || failed=1
    [ "$failed" -eq 0 ] || die "lint found something"
}

command_docs() {
    build_flavour product referencepages
    wine_start
    cd "$project" || exit 1
    wine_command wine build/product/bin/referencepages.exe || die "the pages can't be written"
}

command_clean() {
    if [ -d "$wine_prefix" ]; then wine_setup; wine_stop; fi
    rm -rf "$project/build"
}
