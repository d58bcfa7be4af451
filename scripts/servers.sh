# Sourced by ./run: a real web server and two real proxies for tests and demo, on free loopback ports of this machine,
# outside of Wine. Their addresses are handed over in TARNHD_SERVER, TARNHD_SERVER_TLS, TARNHD_PROXY and
# TARNHD_PASSWORD_PROXY; what the server offers is in servers/nginx.conf.

servers_folder=$project/build/servers
servers_programs=$wine_cache/servers
servers_pids=()
servers_credentials=tarnpatch:open-sesame

# Taken from the packages without installing these: an installed one would become a service of this machine.
servers_fetch() {
    local package=$1 program=$2 folder
    command -v "${program##*/}" && return
    if [ ! -x "$servers_programs/$package/$program" ]; then
        say "fetching $package"
        mkdir -p "$servers_programs"
        folder=$(mktemp -d "$servers_programs/new.XXXXXX")
        (
            cd "$folder" || exit 1
            apt-get download "$package" || { apt-get update && apt-get download "$package"; } || exit 1
            dpkg -x "$package"_*.deb .
        ) >"$servers_programs/$package.log" 2>&1 </dev/null ||
            die "$package can't be fetched, see $servers_programs/$package.log"
        rm -rf "${servers_programs:?}/$package"
        mv "$folder" "$servers_programs/$package"
    fi
    echo "$servers_programs/$package/$program"
}

servers_answers() { (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null; }

# Outside the range that the system hands out to clients.
servers_free_port() {
    local port
    while port=$((20000 + RANDOM % 12000)); do
        servers_answers "$port" || break
    done
    echo "$port"
}

# Starts a program that ends with this shell, however that ends, and waits until it answers at the port.
servers_run() {
    local port=$1 log=$2 pid
    shift 2
    setpriv --pdeathsig KILL "$@" >"$log" 2>&1 </dev/null 9>&- &
    pid=$!
    disown "$pid"
    until servers_answers "$port"; do
        kill -0 "$pid" 2>/dev/null || return 1
        sleep 0.05
    done
    kill -0 "$pid" 2>/dev/null || return 1
    servers_pids+=("$pid")
}

# A port may be taken between the look and the start: then another one is tried.
servers_try() {
    local attempt
    for attempt in 1 2 3 4 5; do
        "$@" && return
    done
    die "a server does not start: see $servers_folder"
}

servers_web() {
    local plain secure
    plain=$(servers_free_port)
    secure=$(servers_free_port)
    sed -e "s/@plain@/$plain/" -e "s/@secure@/$secure/" "$project/scripts/servers/nginx.conf" \
        >"$servers_folder/nginx.conf"
    [ "$(id -u)" -ne 0 ] || sed -i '1i user root;' "$servers_folder/nginx.conf"
    servers_run "$secure" "$servers_folder/nginx.log" "$servers_nginx" -p "$servers_folder" \
        -c "$servers_folder/nginx.conf" -e stderr || return
    export TARNHD_SERVER=http://127.0.0.1:$plain TARNHD_SERVER_TLS=https://127.0.0.1:$secure
}

# One whose configuration is the rest of the arguments; its name stands in the Via header of what goes through it.
servers_proxy() {
    local variable=$1 credentials=$2 name=$3 port line
    shift 3
    port=$(servers_free_port)
    printf '%s\n' "Port $port" "Listen 127.0.0.1" "Timeout 60" "ViaProxyName \"$name\"" "$@" \
        >"$servers_folder/$name.conf"
    servers_run "$port" "$servers_folder/$name.log" "$servers_tinyproxy" -d -c "$servers_folder/$name.conf" || return
    export "$variable=http://${credentials}127.0.0.1:$port"
}

servers_files() {
    mkdir -p "$servers_folder"/{files,temporary}
    [ -e "$servers_folder/server.crt" ] ||
        openssl req -x509 -newkey rsa:2048 -nodes -days 3650 -subj /CN=localhost \
            -addext "subjectAltName=DNS:localhost,IP:127.0.0.1" -keyout "$servers_folder/server.key" \
            -out "$servers_folder/server.crt" >"$servers_folder/openssl.log" 2>&1 ||
        die "no certificate: see $servers_folder/openssl.log"
    openssl x509 -in "$servers_folder/server.crt" -outform DER -out "$servers_folder/files/server.der"
    head -c 1048576 /dev/urandom >"$servers_folder/files/patch.bin"
    truncate -s 1G "$servers_folder/files/large.bin"
    rm -f "$servers_folder/files/ready"
}

servers_start() {
    install_packages openssl
    servers_nginx=$(servers_fetch nginx usr/sbin/nginx) || exit
    servers_tinyproxy=$(servers_fetch tinyproxy-bin usr/bin/tinyproxy) || exit
    servers_files
    servers_try servers_web
    servers_try servers_proxy TARNHD_PROXY "" open-proxy
    servers_try servers_proxy TARNHD_PASSWORD_PROXY "$servers_credentials@" password-proxy \
        "BasicAuth ${servers_credentials/:/ }"
}

servers_stop() {
    [ ${#servers_pids[@]} -eq 0 ] || kill -KILL "${servers_pids[@]}" 2>/dev/null
    servers_pids=()
}
