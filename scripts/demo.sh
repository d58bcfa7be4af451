# Sourced by ./run demo: shows a remote scan request, installation requests, what the plug-in does with Windows and what
# the agent does with others on their whole way, with real processes under Wine.

demo_folder=$project/build/demo

demo_host() {
    local output=$demo_folder/output.$BASHPID result
    command_wine "$project/build/product/bin/tarnhost.exe" "$@" >"$output" 2>&1 </dev/null
    result=$?
    tr -d '\r' <"$output"
    rm -f "$output"
    return $result
}

# Says what comes, shows the command, runs it with its output set off.
demo_step() {
    printf '\n--- %s\n    $ ./run host --' "$1"
    shift
    printf ' %s' "$@"
    printf '\n'
    demo_host "$@" | sed 's/^/    /'
    [ "${PIPESTATUS[0]}" -eq 0 ]
}

demo_prepare() {
    rm -rf "$demo_folder" "$wine_prefix/drive_c/ProgramData/Vantorix/Log/tarn"
    mkdir -p "$demo_folder/agent"
    cp "$project"/build/product/bin/{tarnag.exe,vx_{qrl_meridia,flyer_api,alert_api}_32.dll,QRLIPC.dll} \
        "$demo_folder/agent/"
    # Ten minutes between two looks at what is due would be long for a demo.
    cat >"$demo_folder/store.json" <<'END'
{"format": "tarnhd store", "version": 1, "revision": 1, "values": {
    "windows.tarnpatch.scanning.automatic.polling_interval": {"revision": 1, "type": "int32", "value": 1}}}
END
    # What the stand-in agent does at each start: an ordinary scan when the plug-in comes up, a scan that finds three
    # updates, and then another agent is busy four times before it gets its turn. From then on it installs what the
    # queue asks for.
    cat >"$demo_folder/agent/tarnag.script.json" <<'END'
{"runs": [
    {},
    {"durationMs": 300, "missingUpdates": [
        {"update_name": "KB5001", "bulletin_id": "B-1", "product_name": "Editor", "severity": 1},
        {"update_name": "KB5002", "bulletin_id": "B-2", "product_name": "Browser", "severity": 2},
        {"update_name": "KB5003", "bulletin_id": "B-3", "product_name": "Viewer", "severity": 3}]},
    {"exitCode": 8},
    {"exitCode": 8},
    {"exitCode": 8},
    {"exitCode": 8},
    {"deploy": {"stepMs": 300}}
]}
END
}

# From now on an installation leaves for a reboot; the agent's starts are counted on.
demo_let_deployments_need_a_reboot() {
    sed -i 's/"deploy": {"stepMs": 300}/"deploy": {"stepMs": 300, "reboot": true}/' "$demo_folder/agent/tarnag.script.json"
}

# Runs a host's command again and again, for at most two minutes, until it prints the text that many times.
demo_wait_for_count() {
    local count=$1 text=$2 end=$((SECONDS + 120))
    shift 2
    while [ "$(demo_host "$@" 2>/dev/null | grep -c "$text")" -lt "$count" ]; do
        [ $SECONDS -lt $end ] || return 1
    done
}

demo_wait_until() { demo_wait_for_count 1 "$@"; }

demo_scan_road() {
    printf '\nA host is started; it serves the store, loads tarnhd.dll and runs it.\n'
    demo_host run --store "$demo_folder/store.json" --agent-dir "$demo_folder/agent" --reboots play >"$demo_folder/host.txt" 2>&1 &
    demo_step "wait until the host is up" status --wait 30 &&
        # The plug-in writes its status once it has subscribed to its keys; what is requested before is not seen.
        demo_wait_until true get status.windows.tarnpatch.enabled &&
        demo_step "request a scan and wait for the acknowledgement" scan --wait 30 &&
        demo_step "what the agent found" get status.windows.tarnpatch.scanning.last_scanning.missing_updates &&
        demo_step "request another one; the agent is busy four times and tried again each second" scan --wait 30 &&
        demo_step "wait until a try has succeeded" watch status.windows.tarnpatch.scanning.last_scanning.timestamp \
            --count 1 &&
        demo_step "an overview" status
}

demo_deployments() {
    demo_step "request the installation of the critical update" install CRITICAL --wait 30 &&
        demo_step "nothing is left of it, neither in the queue" queue &&
        demo_step "nor among the published patches" patches || return
    demo_let_deployments_need_a_reboot
    demo_step "request an installation that needs a reboot" install "PRODUCT=Browser;PATCH=KB5003" --wait 30 &&
        demo_step "its patches wait for the reboot" patches &&
        demo_step "reboot; the plug-in finds the deployment finished and starts the agent once more" reboot &&
        demo_wait_until 'no patches' patches &&
        demo_step "the agent has completed it, and nothing is left" patches
}

demo_scheduled_task() {
    local automatic=windows.tarnpatch.installation.automatic
    demo_step "let critical and important updates be installed by themselves" \
        set $automatic.mode install_critical_and_important &&
        demo_step "on Sundays" set $automatic.frequency every_sunday &&
        demo_wait_until important tasks &&
        demo_step "the scheduled task" tasks &&
        demo_step "its hour has come: what it starts puts its word into the queue" \
            tasks run "Vantorix Tarnpatch Automatic Installation" --wait 30 &&
        demo_wait_until 'queue is empty' queue &&
        demo_step "the agent has worked on that" queue
}

demo_scan_after_windows_update() {
    local starts
    starts=$(demo_host log | grep -c 'start event signaled')
    demo_step "Windows installs updates" windows-update || return
    printf '\nThe plug-in asks Windows each minute here, ten by default.\n'
    demo_wait_for_count $((starts + 1)) 'start event signaled' log &&
        demo_wait_until 'Waiting for event' log --lines 1 &&
        demo_step "it has found the new date, and the agent scans" log --lines 12
}

demo_forced_reboot() {
    local boots
    boots=$(demo_host log | grep -c "It's a first run after reboot.")
    demo_step "the Windows Update service runs" service start &&
        demo_step "somebody asks for its stop" wus-trigger &&
        demo_wait_until stopped service &&
        demo_step "it is stopped" service &&
        demo_step "somebody starts it again" service start &&
        demo_wait_until stopped service &&
        demo_step "it is stopped again, in the next round after at most 20 seconds" service &&
        demo_step "no user is asked" set windows.tarnpatch.installation.reboot.ask_user false &&
        demo_step "and no time left" set windows.tarnpatch.installation.reboot.force_in_seconds 0 || return
    printf '\nThe next round asks Windows for a reboot; the host catches that and plays one.\n'
    demo_wait_for_count $((boots + 1)) "It's a first run after reboot." log &&
        demo_step "the plug-in is back" status
}

# From now on each start finds one more update, fetches its patch with these headers and goes on once that is there.
demo_let_the_agent_fetch() {
    cat >"$demo_folder/agent/new.json" <<END
{"runs": [{
    "missingUpdates": [{"update_name": "KB5004", "bulletin_id": "B-4", "product_name": "Archiver", "severity": 1}],
    "steps": [
        {"download": {"url": "$demo_patch", "target": "patch.bin", "headers": $1, "attempts": 1}},
        {"flyer": {"heading": "An update", "message": "KB5004 is being installed", "buttons": [{"text": "Later"}]}},
        "deploy",
        {"alert": {"type": "update_installed", "data": {"update_name": "KB5004"}}},
        {"ipc": {"channel": "tarnag", "type": 1, "body": {"installed": "KB5004"}}}],
    "deploy": {"stepMs": 300}}]}
END
    mv "$demo_folder/agent/new.json" "$demo_folder/agent/tarnag.script.json"
}

# Requests an installation, whose agent ends with that code, and shows what it has logged of the download.
demo_fetch() {
    local text=$1 code=$2 ends
    ends=$(demo_host log | grep -c "Process finished with return code: $code\$")
    demo_step "$text" install CRITICAL --wait 30 &&
        demo_wait_for_count $((ends + 1)) "Process finished with return code: $code\$" log || return
    printf '    of the agent%ss log:\n' "'"
    demo_host log --file 'C:\ProgramData\Vantorix\Log\tarn\tarnag.log' --lines 40 |
        awk '/Proxy: / { found = "" }
            /Proxy: |Using proxy|Downloading started|Answer HTTP|ready for|Failed to download/ { found = found "    " $0 "\n" }
            END { printf "%s", found }'
}

demo_listen() {
    command_wine "$project/build/product/bin/tarnhost.exe" ipc serve tarnag --count 1 \
        >"$demo_folder/ipc.txt" 2>&1 </dev/null &
    demo_listener=$!
    until grep -q serving "$demo_folder/ipc.txt"; do
        kill -0 "$demo_listener" 2>/dev/null || return
        sleep 0.1
    done
}

demo_network() {
    local communication=windows.tarnpatch.communication demo_patch=$TARNHD_SERVER/when-ready/patch.bin demo_listener
    demo_wait_until 'no patches' patches && demo_let_the_agent_fetch '{}' &&
        demo_step "let downloads go through the user's proxy" set $communication.use_http_proxy user_defined || return
    printf '\nThat one wants a password, which is written beside its address.\n'
    demo_host set $communication.user_defined_proxy "$TARNHD_PASSWORD_PROXY" &&
        demo_step "the way of a patch" proxy "$demo_patch" &&
        demo_fetch "request one more update; Wine keeps the password to itself, and the agent says so" 5 || return
    demo_let_the_agent_fetch "{\"Proxy-Authorization\": \"Basic $(printf %s "$servers_credentials" | base64)\"}" &&
        demo_fetch "once more; the agent gives the password itself, but the server is not ready" 18 || return
    touch "$servers_folder/files/ready"
    demo_listen && demo_fetch "once more; the server is ready, and somebody listens by IPC" 0 && wait "$demo_listener" &&
        cmp "$servers_folder/files/patch.bin" "$demo_folder/agent/patch.bin" || return
    printf '\n--- the listener heard\n'
    tr -d '\r' <"$demo_folder/ipc.txt" | sed 's/^/    /'
    demo_step "the user saw" flyers &&
        demo_step "whoever looks after the computer was sent" alerts &&
        demo_step "nothing is left in the queue" queue
}

demo_play() {
    local result
    demo_scan_road && demo_deployments && demo_scheduled_task && demo_scan_after_windows_update && demo_forced_reboot &&
        demo_network && demo_step "an overview" status
    result=$?
    demo_step "stop the host" stop || result=1
    demo_host service restore >/dev/null
    wait
    printf '\n--- what the host showed\n'
    sed 's/^/    /' "$demo_folder/host.txt"
    printf '\n--- the log of the plug-in\n'
    demo_host log | grep -v 'not found - fallback to default value$\|NotFoundException' | sed 's/^/    /'
    return $result
}

command_demo() {
    build_flavour product tarnhost tarnhd tarnag wuservice host-libraries systemobjects
    trap 'servers_stop; wine_stop' EXIT
    servers_start
    wine_start
    export TARNHD_INSTANCE=demo
    demo_prepare
    rm -f "$wine_prefix"/drive_c/ProgramData/Vantorix/Development/demo.{flyers,alerts}.jsonl
    demo_host forget-boot >/dev/null
    demo_host service stop >/dev/null
    demo_host wus-trigger none >/dev/null
    demo_play || die "the demo did not go as it should; see above"
    say "the requests went the whole way: see 'Update a scanning remote operation status', 'Update a deployment remote" \
        "operation status' and '-c complete' in the log above"
}
