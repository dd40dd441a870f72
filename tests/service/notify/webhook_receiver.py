#!/usr/bin/python3
"""A receiver of signed posts on a loopback port that keeps each body it believes as a file.

  webhook_receiver.py --port P --folder F --secret S --now SECONDS [--status N]

Prints "ready" when it listens. A post whose signature is wrong, or whose time is more than five minutes from --now, is
answered 401. --status: what every other one is answered, 204 when absent; it is kept all the same.
"""

import argparse
import hashlib
import hmac
import http.server
import pathlib
import socket
import uuid


def is_signed(headers, body, secret, now):
    timestamp = headers.get("X-Monitor-Timestamp", "")
    expected = "sha256=" + hmac.new(secret.encode(), timestamp.encode() + b"." + body, hashlib.sha256).hexdigest()
    return (hmac.compare_digest(expected, headers.get("X-Monitor-Signature", ""))
            and abs(int(timestamp) - now) <= 300)


class Server(http.server.ThreadingHTTPServer):
    def server_bind(self):
        # The port is kept by whoever starts this, so that it is the same after a restart.
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEPORT, 1)
        super().server_bind()


def handler_of(options):
    class Handler(http.server.BaseHTTPRequestHandler):
        def do_POST(self):
            body = self.rfile.read(int(self.headers["Content-Length"]))
            status = 401
            if is_signed(self.headers, body, options.secret, options.now):
                status = options.status
                whole = pathlib.Path(options.folder) / f".{uuid.uuid4()}"
                whole.write_bytes(f"{self.path} {self.headers['Content-Type']}\n".encode() + body)
                whole.rename(whole.with_name(f"{uuid.uuid4()}.post"))
            self.send_response(status)
            if 300 <= status < 400:
                self.send_header("Location", "/elsewhere")
            self.end_headers()

        def log_message(self, *arguments):
            pass

    return Handler


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--port", type=int, required=True)
    parser.add_argument("--folder", required=True)
    parser.add_argument("--secret", required=True)
    parser.add_argument("--now", type=int, required=True)
    parser.add_argument("--status", type=int, default=204)
    options = parser.parse_args()
    server = Server(("127.0.0.1", options.port), handler_of(options))
    print("ready", flush=True)
    server.serve_forever()


main()
