"""A HiSLIP client (IVI-6.1) with every message in the caller's hands, so that a test can break each rule."""

import socket
import struct

HEADER = struct.Struct(">2sBBIQ")
FIRST_ID = 0xFFFFFF00
BEFORE_FIRST_ID = FIRST_ID - 2
TIME_LIMIT = 60.0

TYPES = [
    "Initialize", "InitializeResponse", "FatalError", "Error", "AsyncLock", "AsyncLockResponse", "Data", "DataEND",
    "DeviceClearComplete", "DeviceClearAcknowledge", "AsyncRemoteLocalControl", "AsyncRemoteLocalResponse", "Trigger",
    "Interrupted", "AsyncInterrupted", "AsyncMaximumMessageSize", "AsyncMaximumMessageSizeResponse", "AsyncInitialize",
    "AsyncInitializeResponse", "AsyncDeviceClear", "AsyncServiceRequest", "AsyncStatusQuery", "AsyncStatusResponse",
    "AsyncDeviceClearAcknowledge", "AsyncLockInfo", "AsyncLockInfoResponse", "GetDescriptors",
    "GetDescriptorsResponse", "StartTLS", "AsyncStartTLS", "AsyncStartTLSResponse", "EndTLS", "AsyncEndTLS",
    "AsyncEndTLSResponse", "GetSaslMechanismList", "GetSaslMechanismListResponse", "AuthenticationStart",
    "AuthenticationExchange", "AuthenticationResult",
]  # fmt: skip
NUMBERS = {name: number for number, name in enumerate(TYPES)}


def number_of(kind):
    return NUMBERS[kind] if isinstance(kind, str) else kind


def encode(kind, control=0, parameter=0, payload=b"", length=None, prologue=b"HS"):
    size = len(payload) if length is None else length
    return HEADER.pack(prologue, number_of(kind), control, parameter, size) + payload


class Message(tuple):
    """Type, control code, parameter, payload."""

    def __new__(cls, kind, control=0, parameter=0, payload=b""):
        return super().__new__(cls, (kind, control, parameter, payload))


class Channel:
    """One of the two connections."""

    def __init__(self, port):
        self.socket = socket.create_connection(("127.0.0.1", port), TIME_LIMIT)
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)

    def send(self, kind, control=0, parameter=0, payload=b"", **header):
        self.socket.sendall(encode(kind, control, parameter, payload, **header))

    def _exactly(self, count):
        parts = []
        while count:
            part = self.socket.recv(min(count, 65536))
            if not part:
                raise EOFError("the instrument has ended the connection")
            parts.append(part)
            count -= len(part)
        return b"".join(parts)

    def receive(self):
        prologue, number, control, parameter, length = HEADER.unpack(self._exactly(HEADER.size))
        assert prologue == b"HS", prologue
        kind = TYPES[number] if number < len(TYPES) else number
        return Message(kind, control, parameter, self._exactly(length))

    def ask(self, kind, control=0, parameter=0, payload=b"", **header):
        self.send(kind, control, parameter, payload, **header)
        return self.receive()

    def at_end(self):
        """Whether the instrument has ended the connection; waits for that."""
        return self.socket.recv(1) == b""

    def close(self):
        self.socket.close()


class Client:
    """Both channels behind the initialization."""

    def __init__(self, port, version=0x0200, sub_address=b"hislip0"):
        self.sync = Channel(port)
        self.greeting = self.sync.ask("Initialize", 0, version << 16 | 0x5858, sub_address)
        kind, self.features, parameter, _ = self.greeting
        assert kind == "InitializeResponse", self.greeting
        self.version, self.session = parameter >> 16, parameter & 0xFFFF
        self.channel = Channel(port)
        self.welcome = self.channel.ask("AsyncInitialize", 0, self.session)
        assert self.welcome[0] == "AsyncInitializeResponse", self.welcome
        self.next_id = FIRST_ID
        self.delivered = False

    def last_id(self):
        return (self.next_id - 2) & 0xFFFFFFFF

    def _take_id(self):
        taken = self.next_id
        self.next_id = (self.next_id + 2) & 0xFFFFFFFF
        return taken

    def _take_delivered(self):
        taken, self.delivered = self.delivered, False
        return int(taken)

    def write(self, payload, end=True):
        """Returns the id of the message."""
        taken = self._take_id()
        self.sync.send("DataEND" if end else "Data", self._take_delivered(), taken, payload)
        return taken

    def trigger(self):
        taken = self._take_id()
        self.sync.send("Trigger", self._take_delivered(), taken)
        return taken

    def read(self):
        """A whole reply; all its messages have the id of the message that asked."""
        parts = []
        while True:
            kind, control, parameter, payload = self.sync.receive()
            assert kind in ("Data", "DataEND") and control == 0, (kind, control, payload)
            assert parameter == self.last_id(), hex(parameter)
            parts.append(payload)
            if kind == "DataEND":
                self.delivered = True
                return b"".join(parts)

    def query(self, payload):
        self.write(payload)
        return self.read()

    def status(self, last_id=None):
        """A poll. Service requests that come before its answer are returned with it."""
        self.channel.send("AsyncStatusQuery", self._take_delivered(), self.last_id() if last_id is None else last_id)
        requests = []
        while True:
            kind, control, _, _ = self.channel.receive()
            if kind == "AsyncStatusResponse":
                return (control, requests) if requests else control
            assert kind == "AsyncServiceRequest", kind
            requests.append(control)

    def lock(self, key=b"", timeout=0):
        return self.channel.ask("AsyncLock", 1, timeout, key)[1]

    def unlock(self):
        return self.channel.ask("AsyncLock", 0, self.last_id())[1]

    def lock_info(self):
        return self.channel.ask("AsyncLockInfo")[1:3]

    def remote_local(self, request):
        return self.channel.ask("AsyncRemoteLocalControl", request, self.last_id())

    def maximum_size(self, size):
        _, _, _, payload = self.channel.ask("AsyncMaximumMessageSize", 0, 0, struct.pack(">Q", size))
        return struct.unpack(">Q", payload)[0]

    def begin_clear(self):
        return self.channel.ask("AsyncDeviceClear")

    def end_clear(self, features=0):
        self.sync.send("DeviceClearComplete", features)
        while True:
            message = self.sync.receive()
            if message[0] == "DeviceClearAcknowledge":
                self.next_id = FIRST_ID
                self.delivered = False
                return message

    def clear(self, features=0):
        self.begin_clear()
        return self.end_clear(features)

    def close(self):
        self.channel.close()
        self.sync.close()
