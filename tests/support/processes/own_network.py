"""A network of a test's own, in which ports below 1024 are free and nothing reaches other machines."""
import fcntl
import os
import shutil
import socket
import struct
import subprocess
import sys

SKIPPED = 77
NETWORK_MADE = "KVX_OWN_NETWORK"


def skip(reason):
    print("skipped: " + reason)
    sys.exit(SKIPPED)


def start_loopback():
    get_flags, set_flags, up = 0x8913, 0x8914, 1
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:
        request = fcntl.ioctl(any_socket, get_flags, struct.pack("16sH14x", b"lo", 0))
        flags = struct.unpack("16sH14x", request)[1]
        fcntl.ioctl(any_socket, set_flags, struct.pack("16sH14x", b"lo", flags | up))


def enter():
    """Starts the script again in a namespace, with the loopback interface; skips where the host gives none."""
    if os.environ.get(NETWORK_MADE):
        return start_loopback()
    if shutil.which("unshare") is None or subprocess.run(["unshare", "-rn", "true"], capture_output=True).returncode:
        skip("no network namespace of the user's own")
    sys.exit(subprocess.run(["unshare", "-rn", sys.executable, *sys.argv], env={**os.environ, NETWORK_MADE: "1"}).returncode)
