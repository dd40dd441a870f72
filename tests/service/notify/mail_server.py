#!/usr/bin/python3
"""A mail server on a loopback port that keeps each mail it is given as a file.

  mail_server.py --port P --folder F [--login USER:PASSWORD] [--certificate FILE [--starttls]] [--stall | --die | --mute]

Prints "ready" when it listens. A file is a JSON object with what a reader of the mail sees, and the envelope.
--stall: answers nothing once it has a mail. --die: keeps the mail, and ends before it answers.
--mute: keeps the mail and says so, but answers nothing to QUIT.
"""

import argparse
import asyncio
import email.policy
import json
import os
import pathlib
import socket
import ssl
import uuid

from aiosmtpd.smtp import SMTP, AuthResult


class Keeper:
    def __init__(self, folder, stall, die):
        self.folder, self.stall, self.die = pathlib.Path(folder), stall, die

    async def handle_DATA(self, server, session, envelope):
        if self.stall:
            (self.folder / "stalled").touch()
            await asyncio.sleep(3600)
        # Under another name first: a file is there whole or not at all.
        whole = self.folder / f".{uuid.uuid4()}"
        whole.write_text(json.dumps(as_read(envelope)))
        whole.rename(self.folder / f"{uuid.uuid4()}.mail")
        if self.die:
            os._exit(1)
        return "250 kept"


class Mute(SMTP):
    async def smtp_QUIT(self, arg):
        await asyncio.sleep(3600)


def as_read(envelope):
    mail = email.message_from_bytes(envelope.original_content, policy=email.policy.default)
    return {"envelope": [envelope.mail_from, *envelope.rcpt_tos],
            "from": str(mail["From"]), "to": str(mail["To"]), "subject": str(mail["Subject"]),
            "id": str(mail["Message-ID"]), "time": int(mail["Date"].datetime.timestamp()),
            "body": mail.get_content().replace("\r\n", "\n"), "defects": [repr(defect) for defect in mail.defects],
            "isAscii": envelope.original_content.isascii()}


def is_login(login):
    def authenticate(server, session, envelope, mechanism, data):
        expected = login.encode().split(b":", 1)
        return AuthResult(success=[data.login, data.password] == expected, handled=False)
    return authenticate


def listening(port):
    # The port is kept by whoever starts this, so that it is the same after a restart.
    server = socket.socket()
    server.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    server.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEPORT, 1)
    server.bind(("127.0.0.1", port))
    return server


async def serve(options):
    context = None
    if options.certificate:
        context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
        context.load_cert_chain(options.certificate)
    settings = {"hostname": "mail.test"}
    if options.login:
        settings |= {"auth_required": True, "auth_require_tls": False, "authenticator": is_login(options.login)}
    if options.starttls:
        settings |= {"tls_context": context}
    handler = Keeper(options.folder, options.stall, options.die)
    server = await asyncio.get_running_loop().create_server(
        lambda: (Mute if options.mute else SMTP)(handler, **settings), sock=listening(options.port),
        ssl=None if options.starttls else context)
    print("ready", flush=True)
    await server.serve_forever()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--port", type=int, required=True)
    parser.add_argument("--folder", required=True)
    parser.add_argument("--login")
    parser.add_argument("--certificate")
    for flag in ("--starttls", "--stall", "--die", "--mute"):
        parser.add_argument(flag, action="store_true")
    asyncio.run(serve(parser.parse_args()))


main()
