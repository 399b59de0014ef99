"""A server on the loopback interface that has one of each thing that the player fetches."""

import http.server
import threading

import folders

SONG = folders.sound('fetched')
LYRIC = folders.lyric([b'fetched', b'from afar']) * 40
PROGRAM = b'the successor of the program. ' * 300
UPDATE = '/source/softwareDate/zkPlayerUpdate.php'


class Answers(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        address = 'http://%s:%d' % self.server.server_address
        pages = {
            '/song.mp3': ('audio/mpeg', SONG),
            '/lyric.lrc': ('text/plain', LYRIC),
            '/program': ('application/octet-stream', PROGRAM),
            UPDATE: ('text/plain', f'[check]\r\nvesion=9.0.0\r\ndownload={address}/program\r\n'
                                   '[Updates]\r\nUpdates_English=better\r\n'.encode()),
        }
        kind, body = pages.get(self.path, ('text/html', b'nothing'))
        self.send_response(200 if self.path in pages else 404)
        self.send_header('Content-Type', kind)
        self.send_header('Content-Length', str(len(body)))
        self.end_headers()
        try:
            self.wfile.write(body)
        except OSError:
            pass  # who asked was killed

    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self):
        super().__init__(('127.0.0.1', 0), Answers)
        self.address = 'http://127.0.0.1:%d' % self.server_address[1]
        threading.Thread(target=self.serve_forever, daemon=True).start()
