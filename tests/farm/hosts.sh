# shellcheck shell=bash disable=SC2154,SC2004
# SPDX-License-Identifier: MIT
# For farm_test.sh: hosts on the loopback address, each an sshd with keys and settings of its own below the folder $work, and
# an "ssh" that knows no others. Nothing of the user's settings is read or changed.

# Not in everybody's PATH.
sshd=$(command -v sshd || echo /usr/sbin/sshd)

# A port that nobody listens on now.
free_port() { python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'; }

# make_keys: one for the user, one for the hosts.
make_keys() {
    ssh-keygen -q -t ed25519 -N '' -f "$work/ssh/user_key"
    ssh-keygen -q -t ed25519 -N '' -f "$work/ssh/host_key"
    cp "$work/ssh/user_key.pub" "$work/ssh/authorized_keys"
    # The program that parallel and rsync find.
    printf '#!/bin/sh\nexec %q -F %q "$@"\n' "$(command -v ssh)" "$work/ssh/config" >"$work/bin/ssh"
    chmod 755 "$work/bin/ssh"
}

# add_host NAME: an alias for ssh. Programs in bin-NAME come first on it.
add_host() {
    local name=$1 port
    port=$(free_port)
    mkdir -p "$work/bin-$name" "$work/home-$name"
    cat >>"$work/ssh/config" <<END
Host $name
    HostName 127.0.0.1
    HostKeyAlias farm
    Port $port
    IdentityFile "$work/ssh/user_key"
    IdentitiesOnly yes
    IdentityAgent none
    UserKnownHostsFile "$work/ssh/known_hosts"
    GlobalKnownHostsFile none
END
    cat >"$work/ssh/sshd-$name" <<END
ListenAddress 127.0.0.1
Port $port
HostKey $work/ssh/host_key
AuthorizedKeysFile $work/ssh/authorized_keys
PidFile $work/ssh/pid-$name
StrictModes no
UsePAM no
PasswordAuthentication no
KbdInteractiveAuthentication no
PermitRootLogin prohibit-password
PermitUserRC no
SetEnv "PATH=$work/bin-$name:$work/bin:/usr/bin:/bin" "HOME=$work/home-$name"
END
    echo "farm $(cut -d' ' -f1,2 "$work/ssh/host_key.pub")" >"$work/ssh/known_hosts"
    start_host "$name"
}

# start_host NAME: returns when it answers.
start_host() {
    local name=$1
    "$sshd" -D -f "$work/ssh/sshd-$name" -E "$work/ssh/log-$name" &
    sshd_of[$name]=$!
    for _ in {1..100}; do
        timeout 20 "$work/bin/ssh" -o BatchMode=yes "$name" true 2>"$work/ssh/answer" && return
        kill -0 "${sshd_of[$name]}" 2>/dev/null || break
        sleep 0.1
    done
    cat "$work/ssh/answer" "$work/ssh/log-$name" >&2
    return 1
}

# descendants PID: it and all processes below it.
descendants() {
    local child
    echo "$1"
    for child in $(ps -o pid= --ppid "$1"); do descendants "$child"; done
}

# kill_tree PID: at once, as when the power fails.
kill_tree() {
    local pids
    # What is stopped starts no others.
    mapfile -t pids < <(descendants "$1")
    kill -STOP "${pids[@]}" 2>/dev/null || true
    mapfile -t pids < <(descendants "$1")
    kill -KILL "${pids[@]}" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

kill_host() {
    kill_tree "${sshd_of[$1]}"
    unset "sshd_of[$1]"
}
