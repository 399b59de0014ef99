"""A session manager as desktops have one: what asks programs to save when somebody logs out, takes that back, and ends
them. It speaks the protocol by itself, so that a test says when."""

import os
import socket
import struct
import threading

REPLY, PROTOCOL_SETUP, PROTOCOL_REPLY, PING, PING_REPLY = 6, 7, 8, 9, 10
REGISTER, REGISTERED, SAVE, INTERACT_ASKED, INTERACT, INTERACT_DONE, DONE, DIE, CANCELLED, CLOSES = (
    1, 2, 3, 5, 6, 7, 8, 9, 10, 11)
PHASE_2_ASKED, PHASE_2, SAVED = 16, 17, 18
OURS = 1  # the number of our protocol on the connection


def counted(text):
    """A text as the connection's own messages have it."""
    data = struct.pack("=H", len(text)) + text
    return data + b"\0" * (-len(data) % 4)


def array(data):
    packed = struct.pack("=I", len(data)) + data
    return packed + b"\0" * (-len(packed) % 8)


class SessionManager:
    """One program at a time. `told` holds the numbers of what it said, in order."""

    def __init__(self, folder):
        self.path = folder + "/session"
        self.told = []
        self.client = None
        self.listening = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.listening.bind(self.path)
        self.listening.listen()
        self.thread = threading.Thread(target=self.serve, daemon=True)
        self.thread.start()

    def address(self):
        return f"local/{os.uname().nodename}:{self.path}"

    # --- what a person does -------------------------------------------------------------------------

    def asks_to_save(self, logging_out):
        """Both kinds of saving, and whoever is asked may ask back."""
        self.send(OURS, SAVE, data=struct.pack("=BBBB4x", 2, logging_out, 2, 0))

    def cancels(self):
        self.send(OURS, CANCELLED)

    def is_saved(self):
        self.send(OURS, SAVED)

    def ends_it(self):
        self.send(OURS, DIE)

    def answers(self):
        return self.told.count(DONE)

    # --- the wire -----------------------------------------------------------------------------------

    def send(self, major, minor, short=(0, 0), data=b""):
        data += b"\0" * (-len(data) % 8)
        self.client.sendall(struct.pack("=BBBBI", major, minor, *short, len(data) // 8) + data)

    def receive(self, count):
        data = b""
        while len(data) < count:
            piece = self.client.recv(count - len(data))
            if not piece:
                raise ConnectionError
            data += piece
        return data

    def serve(self):
        while True:
            try:
                self.client, _ = self.listening.accept()
                self.send(0, 1, short=(0, 0))  # the order of bytes: the small one first
                while True:
                    major, minor, first, _, length = struct.unpack("=BBBBI", self.receive(8))
                    self.receive(8 * length)
                    self.answer(major, minor, first)
            except ConnectionError:
                self.told.append(None)
            except OSError:
                return

    def answer(self, major, minor, first):
        if major == 0 and minor == 2:
            self.send(0, REPLY, data=counted(b"test") + counted(b"1"))
        elif major == 0 and minor == PROTOCOL_SETUP:
            self.theirs = first
            self.send(0, PROTOCOL_REPLY, short=(0, OURS), data=counted(b"test") + counted(b"1"))
        elif major == 0 and minor == PING:
            self.send(0, PING_REPLY)
        elif major != 0:
            self.told.append(minor)
            if minor == REGISTER:
                self.send(OURS, REGISTERED, data=array(b"1velmora"))
                # As each newcomer is asked once.
                self.send(OURS, SAVE, data=struct.pack("=BBBB4x", 1, 0, 0, 0))
            elif minor == INTERACT_ASKED:
                self.send(OURS, INTERACT)
            elif minor == PHASE_2_ASKED:
                self.send(OURS, PHASE_2)

    def close(self):
        self.listening.close()
        if self.client:
            self.client.close()
