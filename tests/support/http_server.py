"""A web server on a free loopback port for tests of downloads. It prints its port, and ends when its standard
input does. Its pages misbehave as their names say; others are files of the folder given as argument."""
import http.server
import os
import sys
import threading
import time
import urllib.parse


class Pages(http.server.BaseHTTPRequestHandler):
    def log_message(self, *arguments):
        pass

    def answer(self, status, headers=(), body=b""):
        self.send_response(status)
        for name, value in headers:
            self.send_header(name, value)
        self.end_headers()
        self.wfile.write(body)

    def trickle(self, piece, pause):
        try:
            while True:
                self.wfile.write(piece)
                self.wfile.flush()
                time.sleep(pause)
        except OSError:
            pass

    def answer_file(self, path):
        try:
            with open(path, "rb") as file:
                self.answer(200, body=file.read())
        except OSError:
            self.answer(404)

    def do_GET(self):
        page = self.path.lstrip("/")
        redirect = {
            "loop": "/loop",
            "moved": "/bytes",
            "to-file": "file:///etc/hostname",
            "to-https": "https://127.0.0.1:1/",
            "to-ftp": "ftp://127.0.0.1:1/x",
        }
        if page == "bytes":
            self.answer(200, [("Content-Length", "1000")], bytes(range(250)) * 4)
        elif page.startswith("status-"):
            self.answer(int(page[7:]), [("Content-Length", "4")], b"text")
        elif page in redirect:
            self.answer(302, [("Location", redirect[page]), ("Content-Length", "0")])
        elif page == "endless":
            self.answer(200)
            self.trickle(b"x" * 65536, 0)
        elif page == "slow":
            self.answer(200, [("Content-Length", "1000000")])
            self.trickle(b"x", 0.1)
        elif page == "silent":
            time.sleep(20)
        elif page == "huge":
            self.answer(200, [("Content-Length", str(1 << 50))])
        elif page == "broken":
            self.answer(200, [("Content-Length", "1000")], b"half")
        elif page == "nonsense":
            self.wfile.write(b"\0\1\2 nothing like it\r\n\r\n")
        else:
            self.answer_file(os.path.join(sys.argv[1], urllib.parse.unquote(page)))


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Pages)
server.daemon_threads = True
threading.Thread(target=server.serve_forever, daemon=True).start()
print(server.server_address[1], flush=True)
sys.stdin.read()
