"""What the HiSLIP server of kvx2800t-virtual does, seen by a client of its own. Argument: the program."""

import socket
import struct
import subprocess
import sys
import unittest

from hislip_client import BEFORE_FIRST_ID, FIRST_ID, TYPES, Channel, Client, Message, encode

IDENTITY = b"Tessaro Instruments,KVX2833T,VIRT0000001,V1.00\n"
NO_ERROR = b'0,"No error"\n'
INTERRUPTED = b'-410,"Query INTERRUPTED"\n'
VENDOR = 0x4B56
A_DAY = 86_400_000
FATAL = [
    b"Unidentified error",
    b"Poorly formed message header",
    b"Attempt to use connection without both channels established",
    b"Invalid initialization sequence",
    b"Server refused connection due to maximum number of clients exceeded",
    b"Secure connection failed",
]
ERROR = [
    b"Unidentified error",
    b"Unrecognized message type",
    b"Unrecognized control code",
    b"Unrecognized vendor defined message",
    b"Message too large",
    b"Authentication failed",
]


def fatal(code):
    return Message("FatalError", code, 0, FATAL[code])


def error(code):
    return Message("Error", code, 0, ERROR[code])


class Program:
    """The virtual instrument with its test control."""

    def __init__(self, path):
        self.process = subprocess.Popen(
            [path, "--port", "0", "--hislip", "0", "--control-port", "0", "--until-stdin-closes"],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
        )  # fmt: skip
        self.raw_port, self.port, control = (
            int(self.process.stdout.readline().rsplit(b":", 1)[1]) for _ in range(3)
        )
        self.control_socket = socket.create_connection(("127.0.0.1", control), 60)
        self.answers = self.control_socket.makefile("rb")

    def control(self, command):
        self.control_socket.sendall(command.encode() + b"\n")
        return self.answers.readline().decode().rstrip("\n")

    def log(self):
        count = int(self.control("log").split()[1])
        return [self.answers.readline().decode().rstrip("\n") for _ in range(count)]

    def end(self):
        self.answers.close()
        self.control_socket.close()
        complaints = self.process.communicate(timeout=60)[1]
        return self.process.returncode, complaints


class HislipTest(unittest.TestCase):
    def setUp(self):
        self.program = Program(sys.argv[1])
        self.opened = []
        self.addCleanup(self.end)

    def end(self):
        for opened in self.opened:
            opened.close()
        exit_code, complaints = self.program.end()
        self.assertEqual(exit_code, 0, complaints)

    def client(self, **options):
        self.opened.append(Client(self.program.port, **options))
        return self.opened[-1]

    def channel(self):
        self.opened.append(Channel(self.program.port))
        return self.opened[-1]

    def raw(self, message):
        with socket.create_connection(("127.0.0.1", self.program.raw_port), 60) as raw:
            raw.sendall(message + b"\n*OPC?\n")
            with raw.makefile("rb") as lines:
                return lines.readline()

    def assert_alive(self, client):
        self.assertEqual(client.query(b"*IDN?"), IDENTITY)

    def assert_fatal(self, code, *channels):
        for channel in channels:
            self.assertEqual(channel.receive(), fatal(code))
            self.assertTrue(channel.at_end())


class Initialization(HislipTest):
    def test_answers_with_the_lower_of_both_versions(self):
        for asked, agreed in [(0x0100, 0x0100), (0x0200, 0x0200), (0x0300, 0x0200), (0x0105, 0x0105)]:
            client = self.client(version=asked)
            self.assertEqual(client.version, agreed)
            self.assertEqual(client.features, 0)
            self.assertEqual(client.greeting[3], b"")
            self.assertEqual(client.welcome, Message("AsyncInitializeResponse", 0, VENDOR))
            self.assert_alive(client)

    def test_gives_every_client_a_session_of_its_own(self):
        one, other = self.client(), self.client()
        self.assertNotEqual(one.session, other.session)
        one.write(b"SOUR3:VO", end=False)
        self.assertEqual(other.query(b"SOUR3:VOLT?"), b"0.000000\n")
        one.write(b"LT 7")
        self.assertEqual(one.query(b"*OPC?"), b"1\n")
        self.assertEqual(other.query(b"SOUR3:VOLT?"), b"7.000000\n")

    def test_takes_hislip0_in_any_case_and_no_sub_address(self):
        for sub_address in (b"hislip0", b"HiSLIP0", b""):
            self.assert_alive(self.client(sub_address=sub_address))

    def test_refuses_other_sub_addresses(self):
        for sub_address in (b"hislip1", b"inst0", b"hislip0 ", b"h" * 256):
            channel = self.channel()
            answer = channel.ask("Initialize", 0, 0x02000000, sub_address)
            self.assertEqual(answer, Message("FatalError", 3, 0, b"The sub-address of this instrument is hislip0"))
            self.assertTrue(channel.at_end())

    def test_refuses_a_sub_address_that_is_too_long(self):
        channel = self.channel()
        channel.send("Initialize", 0, 0x02000000, b"h" * 257)
        self.assert_fatal(3, channel)

    def test_refuses_versions_before_the_first(self):
        channel = self.channel()
        answer = channel.ask("Initialize", 0, 0x00FF0000, b"hislip0")
        self.assertEqual(answer, Message("FatalError", 3, 0, b"HiSLIP 1.0 is the oldest version here"))

    def test_refuses_any_other_first_message(self):
        for kind in list(range(len(TYPES))) + [39, 127, 128, 255]:
            if kind not in (0, 17):
                channel = self.channel()
                channel.send(kind)
                self.assert_fatal(3, channel)

    def test_refuses_a_second_channel_without_a_first(self):
        client = self.client()
        for session in (client.session, client.session + 1, 0x10000 | client.session, 0xFFFFFFFF):
            channel = self.channel()
            channel.send("AsyncInitialize", 0, session)
            self.assert_fatal(3, channel)
        self.assert_alive(client)

    def test_refuses_messages_before_the_second_channel(self):
        for kind in ("Data", "DataEND", "Trigger", "Initialize", "DeviceClearComplete", 128):
            channel = self.channel()
            self.assertEqual(channel.ask("Initialize", 0, 0x02000000)[0], "InitializeResponse")
            channel.send(kind)
            self.assert_fatal(2, channel)

    def test_refuses_a_second_initialization(self):
        client = self.client()
        client.sync.send("Initialize", 0, 0x02000000)
        self.assert_fatal(3, client.sync, client.channel)
        client = self.client()
        client.channel.send("AsyncInitialize", 0, client.session)
        self.assert_fatal(3, client.sync, client.channel)

    def test_refuses_more_clients_than_it_can_have(self):
        clients = [self.client() for _ in range(32)]
        channel = self.channel()
        channel.send("Initialize", 0, 0x02000000)
        self.assert_fatal(4, channel)
        clients[0].close()
        while self.channel().ask("Initialize", 0, 0x02000000)[0] == "FatalError":
            pass
        self.assert_alive(clients[1])

    def test_refuses_more_connections_than_it_can_have(self):
        good = self.client()
        silent = [self.channel() for _ in range(94)]
        self.assert_fatal(4, self.channel())
        self.assert_alive(good)
        silent[0].close()

    def test_cuts_off_what_is_not_hislip(self):
        for bytes_ in (b"GET / HTTP/1.1\r\nHost: x\r\n\r\n", b"*IDN?\n" + b"\n" * 10, encode("Initialize", prologue=b"HT")):
            channel = self.channel()
            channel.socket.sendall(bytes_)
            self.assert_fatal(1, channel)


class Data(HislipTest):
    def test_executes_messages_and_answers_with_their_ids(self):
        client = self.client()
        self.assertEqual(client.write(b"SOUR3:VOLT 4.5"), FIRST_ID)
        self.assertEqual(client.write(b"SOUR3:VOLT?"), FIRST_ID + 2)
        self.assertEqual(client.sync.receive(), Message("DataEND", 0, FIRST_ID + 2, b"4.500000\n"))
        self.assertEqual(self.program.log(), ["SOUR3:VOLT 4.5", "SOUR3:VOLT?"])

    def test_ids_go_on_around_the_end(self):
        client = self.client()
        for _ in range(200):
            self.assertEqual(client.query(b"*OPC?"), b"1\n")
        self.assertEqual(client.next_id, 400 - 0x100)
        self.assertEqual(client.query(b"SYST:ERR?"), NO_ERROR)

    def test_joins_data_and_ends_a_message_at_line_feed_end_or_both(self):
        client = self.client()
        for part in (b"*", b"ID", b"", b"N"):
            client.write(part, end=False)
        self.assertEqual(client.query(b"?"), IDENTITY)
        client.write(b"*IDN?\n", end=False)
        self.assertEqual(client.read(), IDENTITY)
        self.assertEqual(client.query(b"*IDN?\n"), IDENTITY)
        self.assertEqual(client.query(b"*IDN?\r\n"), IDENTITY)
        self.assertEqual(client.query(b"SYST:ERR?"), NO_ERROR)

    def test_takes_headers_and_payloads_byte_by_byte(self):
        client = self.client()
        for byte in encode("DataEND", 0, client.next_id, b"*IDN?"):
            client.sync.socket.sendall(bytes([byte]))
        client.next_id += 2
        self.assertEqual(client.read(), IDENTITY)

    def test_splits_replies_as_the_client_asks(self):
        client = self.client()
        self.assertEqual(client.maximum_size(16 + 10), 1 << 20)
        client.write(b"*IDN?")
        for begin in range(0, 40, 10):
            self.assertEqual(client.sync.receive(), Message("Data", 0, FIRST_ID, IDENTITY[begin : begin + 10]))
        self.assertEqual(client.sync.receive(), Message("DataEND", 0, FIRST_ID, IDENTITY[40:]))
        client.delivered = True
        self.assertEqual(client.maximum_size(0), 1 << 20)
        client.write(b"*OPC?")
        self.assertEqual(client.sync.receive(), Message("Data", 0, FIRST_ID + 2, b"1"))
        self.assertEqual(client.sync.receive(), Message("DataEND", 0, FIRST_ID + 2, b"\n"))
        client.delivered = True
        client.maximum_size((1 << 64) - 1)
        self.assertEqual(client.query(b"*IDN?"), IDENTITY)

    def test_takes_messages_of_the_size_that_it_names_and_no_larger_ones(self):
        client = self.client()
        largest = client.maximum_size(1 << 20)
        client.write((b" " * 4000 + b"\n").ljust(1 << 12) * (largest >> 12), end=False)
        client.write(b" " * (largest + 1), end=False)
        self.assertEqual(client.sync.receive(), error(4))
        self.assert_alive(client)

    def test_reports_input_overruns(self):
        client = self.client()
        client.write(b"x" * 5000)
        self.assertEqual(client.query(b"SYST:ERR?"), b'-363,"Input buffer overrun"\n')

    def test_triggers(self):
        client = self.client()
        client.write(b"LIST:GROUP:PARA 1,10,1,100;:LIST:STAT ON;:TRIG:IN:ENAB CH1,ON;:OUTP:STAT CH1,ON")
        self.assertTrue(client.query(b"LIST:STATUS?").startswith(b"READY"))
        client.trigger()
        self.assertTrue(client.query(b"LIST:STATUS?").startswith(b"RUNNING"))
        self.assertEqual(client.query(b"SYST:ERR?"), NO_ERROR)

    def test_delays_replies_and_serves_others_meanwhile(self):
        client, other = self.client(), self.client()
        self.program.control("delay 50")
        client.write(b"*IDN?")
        self.assertEqual(self.program.control("delay 0"), "ok")
        self.assertEqual(other.query(b"*OPC?"), b"1\n")
        self.assertEqual(client.read(), IDENTITY)

    def test_the_control_cuts_clients_off(self):
        client = self.client()
        self.assertEqual(self.program.control("disconnect"), "ok")
        self.assertTrue(client.sync.at_end())
        self.assertTrue(client.channel.at_end())
        self.assert_alive(self.client())

    def test_the_control_acts_after_what_clients_have_sent(self):
        client = self.client()
        for volts in range(1, 20):
            client.write(b"SOUR3:VOLT %d" % volts)
            self.assertEqual(self.program.log()[-1], "SOUR3:VOLT %d" % volts)


class Interruptions(HislipTest):
    def test_a_message_behind_a_query_interrupts_its_reply(self):
        client = self.client()
        first = encode("DataEND", 0, FIRST_ID, b"*IDN?")
        client.sync.socket.sendall(first + encode("DataEND", 0, FIRST_ID + 2, b"*OPC?"))
        self.assertEqual(client.sync.receive(), Message("Interrupted", 0, FIRST_ID + 2))
        self.assertEqual(client.channel.receive(), Message("AsyncInterrupted", 0, FIRST_ID + 2))
        self.assertEqual(client.sync.receive(), Message("DataEND", 0, FIRST_ID + 2, b"1\n"))
        client.next_id, client.delivered = FIRST_ID + 4, True
        self.assertEqual(client.query(b"SYST:ERR?"), INTERRUPTED)
        self.assertEqual(client.query(b"SYST:ERR?"), NO_ERROR)

    def test_a_message_interrupts_a_delayed_reply(self):
        client = self.client()
        self.program.control("delay %d" % A_DAY)
        client.write(b"*IDN?")
        self.program.control("delay 0")
        second = client.write(b"*OPC?")
        self.assertEqual(client.channel.receive(), Message("AsyncInterrupted", 0, second))
        self.assertEqual(client.sync.receive(), Message("Interrupted", 0, second))
        self.assertEqual(client.read(), b"1\n")

    def test_a_trigger_interrupts_a_delayed_reply(self):
        client = self.client()
        self.program.control("delay %d" % A_DAY)
        client.write(b"*IDN?")
        second = client.trigger()
        self.assertEqual(client.channel.receive(), Message("AsyncInterrupted", 0, second))
        self.assertEqual(client.sync.receive(), Message("Interrupted", 0, second))

    def test_two_queries_in_one_message_interrupt_each_other(self):
        client = self.client()
        message = client.write(b"*IDN?\n*OPC?\n")
        self.assertEqual(client.sync.receive(), Message("Interrupted", 0, message))
        self.assertEqual(client.channel.receive(), Message("AsyncInterrupted", 0, message))
        self.assertEqual(client.read(), b"1\n")

    def test_a_reply_that_was_not_delivered_is_an_error_of_which_the_client_is_not_told(self):
        for send in (lambda client: client.write(b"*CLS;*SRE 0", end=False), Client.trigger, lambda client: client.write(b"")):
            client = self.client()
            client.write(b"*IDN?")
            self.assertEqual(client.sync.receive()[0], "DataEND")
            send(client)  # says that nothing was delivered
            client.clear()
            self.assertEqual(client.query(b"SYST:ERR?"), INTERRUPTED)
            self.assertEqual(client.query(b"SYST:ERR?"), NO_ERROR)

    def test_a_delivery_without_a_reply_is_an_error_too(self):
        client = self.client()
        client.delivered = True
        client.write(b"SOUR3:VOLT 1")
        self.assertEqual(client.query(b"SYST:ERR?"), INTERRUPTED)

    def test_a_delivery_may_be_told_by_a_poll(self):
        client = self.client()
        self.assertEqual(client.query(b"*IDN?"), IDENTITY)
        self.assertEqual(client.status(), 0)
        self.assertEqual(client.query(b"SYST:ERR?"), NO_ERROR)


class Overlapped(HislipTest):
    def overlapped(self):
        client = self.client()
        self.assertEqual(client.begin_clear(), Message("AsyncDeviceClearAcknowledge"))
        self.assertEqual(client.end_clear(1), Message("DeviceClearAcknowledge", 1))
        return client

    def test_keeps_all_replies_and_numbers_them(self):
        client = self.overlapped()
        for message in (b"*IDN?", b"*OPC?", b"*TST?\n*OPC?"):
            client.write(message)
        for index, reply in enumerate((IDENTITY, b"1\n", b"0\n", b"1\n")):
            self.assertEqual(client.sync.receive(), Message("DataEND", 0, FIRST_ID + 2 * index, reply))
        client.write(b"SYST:ERR?")
        self.assertEqual(client.sync.receive()[3], NO_ERROR)

    def test_numbers_the_parts_of_a_reply(self):
        client = self.overlapped()
        client.maximum_size(16 + 40)
        client.write(b"*IDN?")
        self.assertEqual(client.sync.receive(), Message("Data", 0, FIRST_ID, IDENTITY[:40]))
        self.assertEqual(client.sync.receive(), Message("DataEND", 0, FIRST_ID + 2, IDENTITY[40:]))

    def test_a_message_is_available_while_the_client_has_not_had_the_last(self):
        client = self.overlapped()
        self.assertEqual(client.status(BEFORE_FIRST_ID), 0)
        client.write(b"*IDN?")
        client.write(b"*OPC?")
        client.sync.receive()
        client.sync.receive()
        self.assertEqual(client.status(BEFORE_FIRST_ID), 16)
        self.assertEqual(client.status(FIRST_ID), 16)
        self.assertEqual(client.status(FIRST_ID + 2), 0)

    def test_goes_back_to_synchronized_and_counts_from_the_beginning(self):
        client = self.overlapped()
        client.write(b"*IDN?")
        client.sync.receive()
        self.assertEqual(client.clear(6), Message("DeviceClearAcknowledge", 0))
        self.assert_alive(client)

    def test_a_client_that_takes_no_replies_holds_up_nobody_and_loses_none(self):
        client, other = self.overlapped(), self.client()
        client.sync.socket.setblocking(False)
        # Six bytes of a message make 48 of a reply.
        message = (b"*IDN?;" * 600 + b"\n") * 8
        reply = IDENTITY[:-1] + (b";" + IDENTITY[:-1]) * 599 + b"\n"
        sent = 0
        try:
            while True:
                part = encode("DataEND", 0, client.next_id, message)
                if client.sync.socket.send(part) < len(part):
                    break
                sent += 1
        except BlockingIOError:
            pass
        self.assertGreater(sent, 3)
        self.assert_alive(other)
        client.sync.socket.settimeout(60)
        for index in range(8 * sent):
            self.assertEqual(client.sync.receive(), Message("DataEND", 0, FIRST_ID + 2 * index & 0xFFFFFFFF, reply))


class Status(HislipTest):
    def test_a_message_is_available_from_its_reply_to_its_delivery(self):
        client, other = self.client(), self.client()
        self.assertEqual(client.status(), 0)
        client.write(b"*IDN?")
        self.assertEqual(client.read(), IDENTITY)
        client.delivered = False
        self.assertEqual(client.status(), 16)
        self.assertEqual(other.status(), 0)
        client.delivered = True
        self.assertEqual(client.status(), 0)
        self.assertEqual(client.status(), 0)

    def test_no_message_is_available_while_one_of_the_clients_is_under_way(self):
        client = self.client()
        client.write(b"*IDN?")
        client.sync.receive()
        self.assertEqual(client.status(client.next_id), 0)
        self.assertEqual(client.status(client.last_id()), 16)

    def test_delivery_told_with_data_ends_it_as_well(self):
        client = self.client()
        client.query(b"*IDN?")
        client.write(b"*CLS")
        self.program.control("sync")
        self.assertEqual(client.status(), 0)

    def test_sums_up_errors_questionable_events_standard_events_and_programs(self):
        client = self.client()
        client.write(b"*CLS;*ESE 32;:NONSENSE")
        self.program.control("sync")
        self.assertEqual(client.status(), 4 | 32)
        client.write(b"*CLS;:OUTP:STAT CH1,ON;:LIST:GROUP:PARA 1,1,1,100;:LIST:STAT ON")
        self.program.control("sync")
        self.assertEqual(client.status(), 8 | 128)
        self.program.control("power-cycle")

    def test_requests_service_once_until_polled(self):
        client = self.client()
        client.write(b"*CLS;*SRE 4")
        self.program.control('inject -300 "one"')
        self.assertEqual(client.channel.receive(), Message("AsyncServiceRequest", 68))
        self.program.control('inject -300 "two"')
        self.assertEqual(self.raw(b"*CLS"), b"1\n")
        self.program.control('inject -300 "three"')
        self.assertEqual(client.status(), 68)
        self.assertEqual(client.status(), 4)
        self.assertEqual(self.raw(b"*CLS"), b"1\n")
        self.program.control('inject -300 "four"')
        self.assertEqual(client.channel.receive(), Message("AsyncServiceRequest", 68))

    def test_requests_service_when_a_message_is_available(self):
        client = self.client()
        client.write(b"*SRE 16")
        self.assertEqual(client.query(b"*IDN?"), IDENTITY)
        self.assertEqual(client.channel.receive(), Message("AsyncServiceRequest", 80))
        client.delivered = False
        self.assertEqual(client.status(), 80)

    def test_device_clear_leaves_the_status(self):
        client = self.client()
        client.write(b"*CLS;:NONSENSE")
        self.program.control("sync")
        client.clear()
        self.assertEqual(client.status(), 4)


class DeviceClear(HislipTest):
    def test_forgets_what_was_sent_and_what_was_to_come(self):
        client = self.client()
        self.program.control("delay %d" % A_DAY)
        client.write(b"*IDN?")
        client.write(b"SOUR3:VO", end=False)
        self.assertEqual(client.channel.receive()[0], "AsyncInterrupted")
        self.assertEqual(client.clear(), Message("DeviceClearAcknowledge", 0))
        self.program.control("delay 0")
        self.assertEqual(client.query(b"SYST:ERR?"), INTERRUPTED)
        self.assertEqual(client.query(b"SYST:ERR?"), NO_ERROR)

    def test_in_the_middle_of_a_message_from_the_client(self):
        client = self.client()
        whole = encode("DataEND", 0, FIRST_ID, b"SOUR3:VOLT 5")
        client.sync.socket.sendall(whole[:20])
        self.assertEqual(client.begin_clear(), Message("AsyncDeviceClearAcknowledge"))
        client.sync.socket.sendall(whole[20:])
        self.assertEqual(client.end_clear(), Message("DeviceClearAcknowledge"))
        self.assertEqual(client.query(b"SOUR3:VOLT?"), b"0.000000\n")

    def test_in_the_middle_of_a_reply_that_nobody_takes(self):
        client = self.client()
        client.maximum_size(16 + 1000)
        # Together more than two sockets hold.
        for _ in range(2000):
            self.program.control("answer " + "x" * 4000)
        client.clear(1)
        for _ in range(2000):
            client.write(b"*IDN?")
        self.assertEqual(client.begin_clear(), Message("AsyncDeviceClearAcknowledge"))
        self.assertEqual(client.end_clear(), Message("DeviceClearAcknowledge"))
        self.program.control("clear-faults")
        self.assert_alive(client)

    def test_ignores_messages_until_it_is_complete(self):
        client = self.client()
        client.begin_clear()
        for kind in ("Data", "DataEND", "Trigger", "Initialize", "Error", 200, 50):
            client.sync.send(kind)
        client.sync.send("DataEND", 0, FIRST_ID, b"SOUR3:VOLT 5")
        client.sync.send("DeviceClearComplete")
        self.assertEqual(client.sync.receive(), Message("DeviceClearAcknowledge"))
        self.assertEqual(client.query(b"SOUR3:VOLT?"), b"0.000000\n")

    def test_still_requires_well_formed_messages(self):
        client = self.client()
        client.begin_clear()
        client.sync.send("Data", prologue=b"hs")
        self.assert_fatal(1, client.sync, client.channel)

    def test_completion_without_a_clear_is_an_error(self):
        client = self.client()
        client.sync.send("DeviceClearComplete")
        self.assertEqual(client.sync.receive(), error(0))
        self.assert_alive(client)

    def test_touches_no_other_client(self):
        client, other = self.client(), self.client()
        other.write(b"SOUR3:VOL", end=False)
        client.clear()
        other.write(b"T 3")
        self.assertEqual(other.query(b"SOUR3:VOLT?"), b"3.000000\n")


class Locks(HislipTest):
    def test_exclusive_lock_keeps_the_messages_of_others_waiting(self):
        one, other = self.client(), self.client()
        self.assertEqual(one.lock_info(), (0, 0))
        self.assertEqual(one.lock(), 1)
        self.assertEqual(one.lock(), 3)
        self.assertEqual(other.lock(), 0)
        self.assertEqual(other.lock_info(), (1, 1))
        other.write(b"SOUR3:VOLT 5")
        other.write(b"SOUR3:VOLT?")
        self.assertEqual(one.query(b"SOUR3:VOLT?"), b"0.000000\n")
        self.assertEqual(one.unlock(), 1)
        self.assertEqual(one.unlock(), 3)
        self.assertEqual(other.read(), b"5.000000\n")

    def test_locked_out_clients_still_use_the_asynchronous_channel(self):
        one, other = self.client(), self.client()
        one.lock()
        self.assertEqual(other.status(), 0)
        self.assertEqual(other.maximum_size(1000), 1 << 20)
        self.assertEqual(other.remote_local(1), Message("AsyncRemoteLocalResponse"))
        other.write(b"*IDN?")
        other.sync.send(200)
        self.assertEqual(other.clear(), Message("DeviceClearAcknowledge"))

    def test_raw_sockets_are_not_kept_out(self):
        self.client().lock()
        self.assertEqual(self.raw(b"SOUR3:VOLT 2"), b"1\n")
        self.assertEqual(self.program.log(), ["SOUR3:VOLT 2", "*OPC?"])

    def test_shared_lock_takes_those_who_know_its_key(self):
        one, two, three = self.client(), self.client(), self.client()
        self.assertEqual(one.lock(b"key"), 1)
        self.assertEqual(one.lock(b"key"), 3)
        self.assertEqual(two.lock(b"other"), 0)
        self.assertEqual(two.lock(b"key"), 1)
        self.assertEqual(three.lock_info(), (0, 2))
        self.assertEqual(two.query(b"*OPC?"), b"1\n")
        self.assertEqual(three.lock(), 0)
        self.assertEqual(two.lock(), 1)
        self.assertEqual(three.lock_info(), (1, 2))
        self.assertEqual(two.unlock(), 1)
        self.assertEqual(two.unlock(), 2)
        self.assertEqual(one.unlock(), 2)
        self.assertEqual(three.lock_info(), (0, 0))

    def test_waits_for_a_lock(self):
        one, other = self.client(), self.client()
        one.lock()
        other.channel.send("AsyncLock", 1, A_DAY)
        self.assertEqual(one.lock_info(), (1, 1))
        self.assertEqual(one.unlock(), 1)
        self.assertEqual(other.channel.receive(), Message("AsyncLockResponse", 1))

    def test_waits_for_a_lock_no_longer_than_asked(self):
        one, other = self.client(), self.client()
        one.lock()
        self.assertEqual(other.lock(timeout=20), 0)
        self.assertEqual(other.lock(b"key", timeout=20), 0)

    def test_the_end_of_a_client_releases_its_locks(self):
        one, other, third = self.client(), self.client(), self.client()
        one.lock(b"key")
        one.lock()
        other.channel.send("AsyncLock", 1, A_DAY)
        self.assertEqual(third.lock_info(), (1, 1))
        one.close()
        self.assertEqual(other.channel.receive(), Message("AsyncLockResponse", 1))
        other.channel.send("FatalError")
        self.assertTrue(other.sync.at_end())
        self.assertEqual(third.lock(timeout=A_DAY), 1)

    def test_releases_when_the_last_message_has_been_executed(self):
        one, other = self.client(), self.client()
        one.lock()
        one.channel.send("AsyncLock", 0, FIRST_ID)
        self.assertEqual(other.lock_info(), (1, 1))
        one.write(b"SOUR3:VOLT 5")
        self.assertEqual(one.channel.receive(), Message("AsyncLockResponse", 1))
        self.assertEqual(other.query(b"SOUR3:VOLT?"), b"5.000000\n")

    def test_another_request_while_one_waits_is_an_error(self):
        one = self.client()
        one.lock()
        one.channel.send("AsyncLock", 0, FIRST_ID)
        self.assertEqual(one.channel.ask("AsyncLock", 1), error(0))

    def test_device_clear_ends_a_wait_for_a_lock(self):
        one, other = self.client(), self.client()
        one.lock()
        other.channel.send("AsyncLock", 1, A_DAY)
        self.assertEqual(other.begin_clear(), Message("AsyncLockResponse", 0))
        self.assertEqual(other.channel.receive(), Message("AsyncDeviceClearAcknowledge"))
        other.end_clear()

    def test_device_clear_releases_at_once_without_confirmation(self):
        one, other = self.client(), self.client()
        one.lock()
        one.channel.send("AsyncLock", 0, FIRST_ID)
        self.assertEqual(one.begin_clear(), Message("AsyncDeviceClearAcknowledge"))
        self.assertEqual(other.lock(), 1)


class RemoteLocal(HislipTest):
    def test_every_request_acts_on_the_panel(self):
        client = self.client()
        self.assertEqual(self.program.control("panel"), "ok local")
        for request, panel in [
            (0, "local disabled"), (1, "local"), (3, "remote"), (4, "remote locked-out"), (6, "local locked-out"),
            (5, "remote locked-out"), (2, "local disabled"),
        ]:  # fmt: skip
            self.assertEqual(client.remote_local(request), Message("AsyncRemoteLocalResponse"))
            self.assertEqual(self.program.control("panel"), "ok " + panel)

    def test_every_message_of_the_client_makes_it_remote(self):
        client = self.client()
        for act in (
            lambda: client.write(b"", end=False), lambda: client.write(b"*CLS"), client.trigger, client.status,
            client.clear, client.lock, client.unlock,
        ):  # fmt: skip
            client.remote_local(6)
            self.assertEqual(self.program.control("panel"), "ok local")
            act()
            self.assertEqual(self.program.control("panel"), "ok remote")

    def test_acts_when_the_message_before_has_been_executed(self):
        client = self.client()
        client.channel.send("AsyncRemoteLocalControl", 6, FIRST_ID)
        self.assertEqual(client.channel.ask("AsyncRemoteLocalControl", 6, FIRST_ID), error(0))
        client.write(b"*CLS")
        self.assertEqual(client.channel.receive(), Message("AsyncRemoteLocalResponse"))
        self.assertEqual(self.program.control("panel"), "ok local")

    def test_acts_when_the_lock_of_another_is_gone_and_answers_at_once(self):
        one, other = self.client(), self.client()
        one.lock()
        self.assertEqual(other.remote_local(5), Message("AsyncRemoteLocalResponse"))
        self.assertEqual(self.program.control("panel"), "ok remote")
        one.unlock()
        self.assertEqual(self.program.control("panel"), "ok remote locked-out")


class Errors(HislipTest):
    def test_unknown_types_are_dropped_with_their_payload(self):
        client = self.client()
        for kind in (39, 100, 127):
            for channel in (client.sync, client.channel):
                self.assertEqual(channel.ask(kind, 7, 7, b"HS" * 3000), error(1))
        self.assert_alive(client)

    def test_vendor_messages_are_dropped_with_their_payload(self):
        client = self.client()
        for kind in (128, 255):
            for channel in (client.sync, client.channel):
                self.assertEqual(channel.ask(kind, 255, 0xFFFFFFFF, b"x" * 5000), error(3))
        self.assert_alive(client)

    def test_messages_that_only_servers_send_are_not_known(self):
        client = self.client()
        for kind in TYPES:
            if kind.endswith(("Response", "Acknowledge", "Interrupted", "Result")) or kind == "AsyncServiceRequest":
                for channel in (client.sync, client.channel):
                    self.assertEqual(channel.ask(kind), error(1), kind)
        self.assert_alive(client)

    def test_messages_on_the_wrong_channel_are_not_known(self):
        client = self.client()
        for kind in ("Initialize", "Data", "DataEND", "DeviceClearComplete", "Trigger"):
            self.assertEqual(client.channel.ask(kind), error(1), kind)
        for kind in (
            "AsyncInitialize", "AsyncLock", "AsyncRemoteLocalControl", "AsyncMaximumMessageSize", "AsyncDeviceClear",
            "AsyncStatusQuery", "AsyncLockInfo",
        ):  # fmt: skip
            self.assertEqual(client.sync.ask(kind), error(1), kind)
        self.assert_alive(client)

    def test_control_codes_that_mean_nothing_are_refused(self):
        client = self.client()
        for kind, control in [("Data", 2), ("DataEND", 128), ("Trigger", 3), ("GetDescriptors", 1)]:
            self.assertEqual(client.sync.ask(kind, control), error(2), kind)
        for kind, control in [
            ("AsyncLock", 2), ("AsyncRemoteLocalControl", 7), ("AsyncDeviceClear", 1), ("AsyncStatusQuery", 2),
            ("AsyncLockInfo", 1), ("AsyncMaximumMessageSize", 1), ("GetDescriptors", 255),
        ]:  # fmt: skip
            self.assertEqual(client.channel.ask(kind, control), error(2), kind)
        self.assert_alive(client)

    def test_texts_that_are_too_long_are_dropped(self):
        client = self.client()
        self.assertEqual(client.lock(b"k" * 256), 1)
        self.assertEqual(client.channel.ask("AsyncLock", 1, 0, b"k" * 257), error(4))
        self.assertEqual(client.channel.ask("Error", 0, 0, b"k" * 100_000), error(4))
        self.assert_alive(client)

    def test_errors_of_the_client_are_taken_without_an_answer(self):
        client = self.client()
        client.sync.send("Error", 9, 0, b"a client's own")
        client.channel.send("Error", 1)
        self.assert_alive(client)
        self.assertEqual(client.status(), 0)

    def test_a_fatal_error_of_the_client_ends_both_channels(self):
        for send in (lambda client: client.sync, lambda client: client.channel):
            client = self.client()
            send(client).send("FatalError", 1, 0, b"out of step")
            self.assertTrue(client.sync.at_end())
            self.assertTrue(client.channel.at_end())

    def test_lengths_of_messages_without_payload_are_fatal(self):
        for on_sync, kind in [
            (True, "Trigger"), (False, "AsyncStatusQuery"), (False, "AsyncDeviceClear"), (False, "AsyncLockInfo"),
            (False, "AsyncRemoteLocalControl"), (True, "GetDescriptors"),
        ]:  # fmt: skip
            client = self.client()
            (client.sync if on_sync else client.channel).send(kind, 0, FIRST_ID, length=1)
            self.assert_fatal(1, client.sync, client.channel)

    def test_sizes_that_are_not_eight_bytes_are_fatal(self):
        for payload in (b"", b"1234567", b"123456789"):
            client = self.client()
            client.channel.send("AsyncMaximumMessageSize", 0, 0, payload)
            self.assert_fatal(1, client.sync, client.channel)

    def test_lengths_beyond_belief_are_fatal(self):
        for kind in ("Data", "DataEND", "Trigger", "Error", "FatalError", 60, 200):
            for length in ((1 << 32) + 1, 1 << 63, (1 << 64) - 1):
                client = self.client()
                client.sync.send(kind, 0, FIRST_ID, length=length)
                self.assert_fatal(1, client.sync, client.channel)
        channel = self.channel()
        channel.send("Initialize", 0, 0x02000000, length=(1 << 64) - 1)
        self.assert_fatal(1, channel)

    def test_what_is_out_of_step_is_fatal_on_both_channels(self):
        for index in (0, 1):
            client = self.client()
            (client.sync, client.channel)[index].socket.sendall(b"X" * 16)
            self.assert_fatal(1, client.sync, client.channel)

    def test_half_a_header_holds_up_nobody(self):
        for count in (1, 2, 15):
            self.channel().socket.sendall(encode("Initialize", 0, 0x02000000)[:count])
        client = self.client()
        client.sync.socket.sendall(encode("DataEND", 0, FIRST_ID, b"*IDN?")[:9])
        client.channel.socket.sendall(encode("AsyncStatusQuery")[:15])
        self.assert_alive(self.client())
        self.assertEqual(self.raw(b"*CLS"), b"1\n")

    def test_half_a_payload_holds_up_nobody(self):
        client = self.client()
        client.sync.send("DataEND", 0, FIRST_ID, b"SOUR3:VOLT 5", length=1000)
        client.channel.send("AsyncLock", 1, 0, b"ke", length=3)
        self.assert_alive(self.client())
        self.assertEqual(self.program.log()[-1], "*IDN?")

    def test_a_client_that_goes_at_any_byte_leaves_the_others_alone(self):
        whole = encode("DataEND", 0, FIRST_ID, b"SOUR3:VOLT 5")
        other = self.client()
        for count in range(len(whole)):
            client = self.client()
            client.sync.socket.sendall(whole[:count])
            client.close()
        self.assertEqual(other.query(b"SOUR3:VOLT?"), b"0.000000\n")


class SecureConnections(HislipTest):
    SYNCHRONOUS = ("StartTLS", "EndTLS", "GetSaslMechanismList", "AuthenticationStart", "AuthenticationExchange")
    ASYNCHRONOUS = ("AsyncStartTLS", "AsyncEndTLS")

    def test_are_not_known_in_either_version(self):
        for version in (0x0100, 0x0200):
            client = self.client(version=version)
            for kind in self.SYNCHRONOUS:
                self.assertEqual(client.sync.ask(kind, 0, 0, b"PLAIN"), error(1), kind)
            for kind in self.ASYNCHRONOUS:
                self.assertEqual(client.channel.ask(kind, 0, 0, struct.pack(">I", BEFORE_FIRST_ID)), error(1), kind)
            self.assert_alive(client)

    def test_descriptors_there_are_none_and_version_1_does_not_know_them(self):
        client = self.client()
        for channel in (client.sync, client.channel):
            self.assertEqual(channel.ask("GetDescriptors"), Message("GetDescriptorsResponse"))
        client = self.client(version=0x0100)
        for channel in (client.sync, client.channel):
            self.assertEqual(channel.ask("GetDescriptors"), error(1))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
