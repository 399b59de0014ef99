"""What a program holds in a display server, as the server's own extension X-Resource counts it.

The few requests are written out here: no library that Debian 12 has for Python speaks the extension.
"""

import collections
import socket
import struct

QUERY_EXTENSION, GET_ATOM_NAME = 98, 17
QUERY_VERSION, QUERY_RESOURCES, QUERY_PIXMAP_BYTES, QUERY_IDS = 0, 2, 3, 4
BY_PROCESS = 2  # a client is told by the process at its end of the socket


class Resources:
    """A connection of its own to a display of this machine that asks for no cookie."""

    def __init__(self, display):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect("/tmp/.X11-unix/X" + display.lstrip(":").split(".")[0])
        self.socket.sendall(struct.pack("<BxHHHHxx", ord("l"), 11, 0, 0, 0))
        accepted, _, _, _, more = struct.unpack("<BBHHH", self._read(8))
        self._read(4 * more)
        if accepted != 1:
            raise OSError("the display refuses")
        name = b"X-Resource"
        told = self._ask(struct.pack("<BxHHxx", QUERY_EXTENSION, 0, len(name)) + name)
        if not told[8]:
            raise OSError("the display has no X-Resource")
        self.major = told[9]
        self.names = {}
        self._request(QUERY_VERSION, struct.pack("<BBxx", 1, 2))

    def close(self):
        self.socket.close()

    def _read(self, size):
        data = b""
        while len(data) < size:
            piece = self.socket.recv(size - len(data))
            if not piece:
                raise OSError("the display is gone")
            data += piece
        return data

    def _ask(self, request):
        request += bytes(-len(request) % 4)
        self.socket.sendall(request[:2] + struct.pack("<H", len(request) // 4) + request[4:])
        while True:
            head = self._read(32)
            if head[0] == 1:
                return head + self._read(4 * struct.unpack("<I", head[4:8])[0])
            if head[0] == 0:
                raise KeyError("the client is gone")  # an error; anything else is an event

    def _request(self, minor, data):
        return self._ask(struct.pack("<BBxx", self.major, minor) + data)

    def _name(self, atom):
        if atom not in self.names:
            told = self._ask(struct.pack("<BxHI", GET_ATOM_NAME, 0, atom))
            self.names[atom] = told[32:32 + struct.unpack("<H", told[8:10])[0]].decode()
        return self.names[atom]

    def clients(self, process):
        """The resource bases of a process's connections."""
        told = self._request(QUERY_IDS, struct.pack("<III", 1, 0, BY_PROCESS))
        found, at = [], 32
        for _ in range(struct.unpack("<I", told[8:12])[0]):
            client, _, size = struct.unpack("<III", told[at:at + 12])
            if size >= 4 and struct.unpack("<I", told[at + 12:at + 16])[0] == process:
                found.append(client)
            at += 12 + size
        return found

    def of(self, process):
        """How many of each kind, beside "connections" and "pixmap bytes"."""
        counts = collections.Counter()
        for client in self.clients(process):
            try:
                told = self._request(QUERY_RESOURCES, struct.pack("<I", client))
                for at in range(32, 32 + 8 * struct.unpack("<I", told[8:12])[0], 8):
                    atom, count = struct.unpack("<II", told[at:at + 8])
                    counts[self._name(atom)] += count
                told = self._request(QUERY_PIXMAP_BYTES, struct.pack("<I", client))
                low, high = struct.unpack("<II", told[8:16])
                counts["pixmap bytes"] += low + (high << 32)
                counts["connections"] += 1
            except KeyError:
                pass  # one that closed in between
        return counts
