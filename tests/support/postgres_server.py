#!/usr/bin/env python3
"""A PostgreSQL server for tests, without a port: whoever may read its folder, which is its user's alone, is let in.

  postgres_server.py run BIN [PROCESS]  runs it until SIGTERM or until the process ends, by default the parent;
                                        prints the folder of its socket when it takes connections; on SIGUSR1 kills it
                                        with all its processes and prints "killed", on SIGUSR2 starts it again and prints
                                        "started"
  postgres_server.py durable BIN [PROCESS]  the same, but what is committed survives a loss of power: for measurements
  postgres_server.py primary BIN SETTINGS  the same, with the settings that the file SETTINGS has, for the parent
  postgres_server.py standby BIN FOLDER    the same, of the one whose socket is in the folder; it calls itself "standby"
  postgres_server.py start BIN FILE     runs it in the background until the parent ends; FILE names the folder
  postgres_server.py stop FILE          ends that one, and returns when nothing of it is left

BIN: the folder with initdb and postgres.

Its data go with it, so nothing waits for a disk, but for the durable one. Where settings and the order of texts matter,
they are not those that tests would get anyway: what is tested must not depend on them.
"""

import os
import pathlib
import pwd
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ACCOUNT = "postgres"  # the server refuses to run as root
PATIENCE = 60  # seconds
SETTINGS = {
    "listen_addresses": "",
    "max_connections": "300",
    "shared_buffers": "64MB",
    "max_wal_size": "64MB",
    "fsync": "off",
    "full_page_writes": "off",
    "timezone": "Pacific/Chatham",
    "datestyle": "SQL, DMY",
    "intervalstyle": "sql_standard",
    "bytea_output": "escape",
}
# Of a server that is alone.
ALONE = {
    # A database that asks for "on" waits for this standby, which there is not.
    "synchronous_standby_names": "none",
    "synchronous_commit": "local",
}


# Of one that keeps what it commits, with the memory of a server on a small machine.
DURABLE = {
    **ALONE,
    "fsync": "on",
    "full_page_writes": "on",
    "shared_buffers": "256MB",
    "max_wal_size": "1GB",
    "autovacuum_naptime": "1s",  # not the first minute of a database is measured, without statistics yet
}


def as_account():
    """What a command of the server begins with: it ends with this process, and is not root."""
    command = ["setpriv", "--pdeathsig", "INT"]
    if os.geteuid() == 0:
        command += [f"--reuid={ACCOUNT}", f"--regid={ACCOUNT}", "--init-groups"]
    return command


def make_folder():
    # Paths of sockets have at most 107 bytes.
    folder = pathlib.Path(tempfile.mkdtemp(prefix="postgres-"))
    if os.geteuid() == 0:
        account = pwd.getpwnam(ACCOUNT)
        os.chown(folder, account.pw_uid, account.pw_gid)
    return folder


def make_data(folder, program, *arguments):
    made = subprocess.run(
        [*as_account(), program, "--pgdata", folder / "data", "--no-sync", *arguments],
        cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    if made.returncode != 0:
        raise RuntimeError(f"{program}: {made.stdout}")


def make_cluster(binaries, folder):
    make_data(folder, binaries / "initdb", "--username", "postgres", "--auth", "trust", "--encoding", "UTF8",
              "--locale", "C.UTF-8", "--locale-provider", "icu", "--icu-locale", "tr", "--no-instructions")


def make_primary(binaries, folder, settings):
    make_cluster(binaries, folder)
    with open(folder / "data" / "postgresql.conf", "a", encoding="utf-8") as configuration:
        configuration.write(settings.read_text(encoding="utf-8"))


def make_standby(binaries, folder, primary):
    make_data(folder, binaries / "pg_basebackup", "--checkpoint", "fast", "--write-recovery-conf", "--create-slot",
              "--slot", "standby", "--dbname", f"host={primary} user=postgres application_name=standby")


def start_server(binaries, folder, settings):
    settings = {**SETTINGS, **settings, "unix_socket_directories": folder}
    with open(folder / "log", "wb") as log:
        server = subprocess.Popen(
            [*as_account(), binaries / "postgres", "-D", folder / "data",
             *(f"--{name}={value}" for name, value in settings.items())],
            cwd=folder, stdin=subprocess.DEVNULL, stdout=log, stderr=log)
    end = time.monotonic() + PATIENCE
    while not is_ready(folder, server):
        if server.poll() is not None or time.monotonic() > end:
            raise RuntimeError((folder / "log").read_text(encoding="utf-8"))
        time.sleep(0.01)
    return server


def is_ready(folder, server):
    """The last line of this file is what the server says of itself, the first one its process."""
    try:
        lines = (folder / "data" / "postmaster.pid").read_text(encoding="utf-8").split()
        return lines[0] == str(server.pid) and lines[-1] == "ready"
    except (FileNotFoundError, IndexError):
        return False


def stop_server(server):
    server.send_signal(signal.SIGINT)  # does not wait for clients
    try:
        server.wait(PATIENCE)
    except subprocess.TimeoutExpired:
        server.kill()
        server.wait()


def status_of(process):
    """The state of a process and its parent, as proc(5) has them; nothing when it is gone."""
    try:
        state, parent = pathlib.Path(f"/proc/{process}/stat").read_text(encoding="utf-8").rsplit(")", 1)[1].split()[:2]
        return state, int(parent)
    except (FileNotFoundError, ProcessLookupError):
        return None


def children_of(process):
    processes = [int(one.name) for one in pathlib.Path("/proc").iterdir() if one.name.isdigit()]
    return [one for one in processes if (status_of(one) or ("", 0))[1] == process]


def kill_server(server):
    """All of it at once, as when its machine goes."""
    server.send_signal(signal.SIGSTOP)  # starts none any more
    children = children_of(server.pid)
    for child in children:
        os.kill(child, signal.SIGKILL)
    server.kill()
    server.wait()
    # Those that are gone for good; while one is left, the server does not start again.
    while any((status_of(child) or "Z")[0] != "Z" for child in children):
        time.sleep(0.001)


def run(binaries, process, settings, make):
    """With what make(binaries, folder) has made."""
    watched = os.pidfd_open(process)
    # A signal may come just before select() begins to wait, so it is one of the things that are waited for.
    signalled, signals = os.pipe2(os.O_CLOEXEC | os.O_NONBLOCK)
    signal.set_wakeup_fd(signals)
    for handled in (signal.SIGTERM, signal.SIGUSR1, signal.SIGUSR2):
        signal.signal(handled, lambda *_: None)
    signal.signal(signal.SIGINT, signal.SIG_IGN)  # from a terminal it is for the process that is watched
    folder = make_folder()
    server = None
    try:
        make(binaries, folder)
        server = start_server(binaries, folder, settings)
        print(folder, flush=True)
        while True:
            ends = [os.pidfd_open(server.pid)] if server else []
            ready, *_ = select.select([watched, signalled, *ends], [], [])
            for end in ends:
                os.close(end)
            asked = os.read(signalled, 1)[0] if signalled in ready else signal.SIGTERM
            if asked == signal.SIGUSR1:
                kill_server(server)
                server = None
                print("killed", flush=True)
            elif asked == signal.SIGUSR2:
                server = start_server(binaries, folder, settings)
                print("started", flush=True)
            else:
                break
    finally:
        if server is not None:
            stop_server(server)
        shutil.rmtree(folder)


def start(binaries, file):
    file.unlink(missing_ok=True)
    # In a session of its own, and with none of the parent's pipes: who runs the parent does not wait for it.
    with subprocess.Popen([sys.executable, __file__, "run", binaries, str(os.getppid())], start_new_session=True,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True) as runs:
        folder = runs.stdout.readline().strip()
        if not folder:
            sys.exit(runs.stderr.read())
        file.write_text(folder, encoding="utf-8")
        os._exit(0)  # without waiting for it


def stop(file):
    folder = pathlib.Path(file.read_text(encoding="utf-8"))
    server, *_ = (folder / "data" / "postmaster.pid").read_text(encoding="utf-8").split()
    os.kill(int(server), signal.SIGINT)  # who runs it clears up
    end = time.monotonic() + PATIENCE
    while folder.exists():
        if time.monotonic() > end:
            sys.exit(f"the server in {folder} does not end")
        time.sleep(0.01)
    file.unlink()


def main():
    match sys.argv[1:]:
        case ["run", binaries, *process]:
            run(pathlib.Path(binaries), int(process[0]) if process else os.getppid(), ALONE, make_cluster)
        case ["durable", binaries, *process]:
            run(pathlib.Path(binaries), int(process[0]) if process else os.getppid(), DURABLE, make_cluster)
        case ["primary", binaries, settings]:
            run(pathlib.Path(binaries), os.getppid(), {},
                lambda *where: make_primary(*where, pathlib.Path(settings)))
        case ["standby", binaries, primary]:
            run(pathlib.Path(binaries), os.getppid(), {}, lambda *where: make_standby(*where, primary))
        case ["start", binaries, file]:
            start(pathlib.Path(binaries), pathlib.Path(file))
        case ["stop", file]:
            stop(pathlib.Path(file))
        case _:
            sys.exit(__doc__)


main()
