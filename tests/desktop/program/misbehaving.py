"""A server on the loopback interface that answers as it is told, in whatever broken way."""

import socket
import struct
import threading
import time

SOUND = b"RIFF" + bytes(range(256)) * 16
OK = b"HTTP/1.1 200 OK\r\n"
AUDIO = b"Content-Type: audio/x-wav\r\n"


def length(count):
    return b"Content-Length: %d\r\n" % count


def answer(body, kind=b"text/html"):
    return OK + b"Content-Type: " + kind + b"\r\n" + length(len(body)) + b"\r\n" + body


class Server:
    """`answers` holds for the beginning of a path, whatever its case, the bytes to send or what is
    to be done."""

    def __init__(self, context=None):
        """`context`: of encryption."""
        self.answers, self.asked, self.context = {}, [], context
        self.listener = socket.create_server(("127.0.0.1", 0), backlog=16)
        self.port = self.listener.getsockname()[1]
        self.at = f"http://127.0.0.1:{self.port}"
        threading.Thread(target=self.listen, daemon=True).start()

    def close(self):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()

    def listen(self):
        while True:
            try:
                talk, _ = self.listener.accept()
            except OSError:
                return
            threading.Thread(target=self.serve, args=(talk,), daemon=True).start()

    def serve(self, talk):
        if self.context is not None:
            try:
                talk = self.context.wrap_socket(talk, server_side=True)
            except OSError:
                talk.close()
                return
        with talk:
            try:
                head = b""
                while b"\r\n\r\n" not in head:
                    piece = talk.recv(4096)
                    if not piece:
                        return
                    head += piece
                path = head.split(b" ")[1].decode("latin-1")
                self.asked.append(path)
                found = max((known for known in self.answers if path.lower().startswith(
                    known.lower())), key=len, default=None)
                reply = self.answers.get(found, b"HTTP/1.1 404 Not Found\r\n\r\n")
                if callable(reply):
                    reply(talk)
                else:
                    talk.sendall(reply)
            except OSError:
                pass


def drip(talk):
    talk.sendall(OK + AUDIO + length(len(SOUND)) + b"\r\n")
    for at in range(0, len(SOUND), 300):
        talk.sendall(SOUND[at:at + 300])
        time.sleep(0.03)


def late(talk):
    time.sleep(0.8)
    talk.sendall(OK + AUDIO + length(len(SOUND)) + b"\r\n" + SOUND)


def reset(talk):
    """Cut at a byte: the rest never comes, and the end is no orderly one."""
    talk.sendall(OK + AUDIO + length(len(SOUND)) + b"\r\n" + SOUND[:500])
    time.sleep(0.3)  # until they are read: a reset throws away what is not
    talk.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))


def at_once(talk):
    """Closes without a word."""


def endless(talk):
    talk.sendall(OK + AUDIO + length(3_000_000_000) + b"\r\n")
    while True:
        talk.sendall(bytes(1 << 16))


def redirect(place):
    return (b"HTTP/1.1 302 Found\r\nLocation: " + place +
            b"\r\nContent-Length: 0\r\nConnection: close\r\n\r\n")
