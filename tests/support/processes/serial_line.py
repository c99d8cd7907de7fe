#!/usr/bin/python3
"""A serial line for a Windows program that runs under Wine.

    serial_line.py WINE-PREFIX          makes a pseudo terminal
    serial_line.py WINE-PREFIX DEVICE   names a device that there is, such as /dev/pts/3

Gives the device the name of a port of Windows that is free in Wine's prefix, and takes it back when it is terminated or
its standard input ends. The first line of the output is the port's number. For a pseudo terminal a TCP port of this machine
follows on the same line, by which the program acts as the other end of the line. It takes one connection, and answers
each request when it is done:

    send <count>      and as many bytes: "ok"
    receive <count>   as many bytes, without a line of their own
    hang-up           "ok"
"""

import fcntl
import os
import pty
import select
import signal
import socketserver
import sys
import threading
import tty

FIRST_PORT, LAST_PORT = 20, 255


class Port:
    """The name of a port. Wine looks for the file com<number> among its devices."""

    def __init__(self, prefix, device):
        folder = os.path.join(prefix, "dosdevices")
        with open(os.path.join(prefix, ".serial-ports"), "w", encoding="ascii") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            for self.number in range(FIRST_PORT, LAST_PORT + 1):
                self.link = os.path.join(folder, f"com{self.number}")
                # A process that was killed leaves a link to a terminal that has gone.
                if os.path.islink(self.link) and not os.path.exists(self.link):
                    os.unlink(self.link)
                if not os.path.lexists(self.link):
                    os.symlink(device, self.link)
                    return
        sys.exit("no port is free")

    def __enter__(self):
        return self.number

    def __exit__(self, *failure):
        os.unlink(self.link)


class PeerServer(socketserver.TCPServer):
    """Offers the master of a pseudo terminal."""

    def __init__(self, master):
        super().__init__(("127.0.0.1", 0), Peer)
        self.master = master


class Peer(socketserver.StreamRequestHandler):
    def handle(self):
        for request in self.rfile:
            name, *count = request.split()
            getattr(self, "do_" + name.decode().replace("-", "_"))(*map(int, count))

    def do_send(self, count):
        os.write(self.server.master, self.rfile.read(count))
        self.wfile.write(b"ok\n")

    def do_receive(self, count):
        while count > 0:
            received = os.read(self.server.master, count)
            self.wfile.write(received)
            count -= len(received)

    def do_hang_up(self):
        os.close(self.server.master)
        self.wfile.write(b"ok\n")


class End:
    """The end of the standard input, or SIGTERM, which could come just before a plain read that then waits for ever."""

    def __init__(self):
        self.woken, waker = os.pipe2(os.O_NONBLOCK | os.O_CLOEXEC)
        signal.set_wakeup_fd(waker)
        signal.signal(signal.SIGTERM, lambda *arguments: None)

    def wait(self):
        select.select([sys.stdin, self.woken], [], [])


def main():
    end = End()
    prefix, *devices = sys.argv[1:]
    if devices:
        with Port(prefix, devices[0]) as number:
            print(number, flush=True)
            end.wait()
        return
    master, slave = pty.openpty()
    tty.setraw(slave)
    device = os.ttyname(slave)
    os.close(slave)
    server = PeerServer(master)
    threading.Thread(target=server.handle_request, daemon=True).start()
    with Port(prefix, device) as number:
        print(number, server.server_address[1], flush=True)
        end.wait()


if __name__ == "__main__":
    main()
