"""A mail server for the tests. Usage: mailServer.py FOLDER MODE [CERTIFICATE KEY]

Each mail that it takes becomes a file in FOLDER: envelope lines, an empty line, the mail as it came. Prints its port
when it listens. MODE is a comma-separated list of
  refuse     550 to every recipient             busy     451 to the first recipient, then 250
  login      asks for the sign-in user/secret   tls      offers STARTTLS
  hang       answers nothing after the greeting  slow     takes a second for each byte of its greeting
"""
import asyncio
import itertools
import os
import ssl
import sys

from aiosmtpd.smtp import SMTP, AuthResult

folder, modes = sys.argv[1], sys.argv[2].split(",")
numbers = itertools.count(len(os.listdir(folder)) + 1)


class Handler:
    busy = "busy" in modes

    async def handle_RCPT(self, server, session, envelope, address, options):
        if "refuse" in modes:
            return "550 5.1.1 No such user here"
        if self.busy:
            self.busy = False
            return "451 4.3.0 Try again later"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        head = "from %s\nto %s\ntls %s\npeer %s\n\n" % (
            envelope.mail_from, ",".join(envelope.rcpt_tos), session.ssl is not None, session.peer[1])
        name = os.path.join(folder, "%03d" % next(numbers))
        with open(name + ".part", "wb") as file:
            file.write(head.encode() + envelope.original_content)
        os.rename(name + ".part", name + ".mail")
        return "250 2.0.0 Taken as " + os.path.basename(name)


def authenticate(server, session, envelope, mechanism, data):
    ok = (data.login, data.password) == (b"user", b"secret")
    return AuthResult(success=ok, handled=False, message=None if ok else "535 5.7.8 Wrong password")


def make():
    arguments = {"hostname": "test.example", "data_size_limit": 1 << 25}
    if "tls" in modes:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(sys.argv[3], sys.argv[4])
        arguments.update(tls_context=context)
    if "login" in modes:
        arguments.update(authenticator=authenticate, auth_require_tls=False, auth_required=True)
    return SMTP(handler, **arguments)


async def dull(reader, writer):
    if "slow" in modes:
        for byte in b"220 test.example ready\r\n":
            writer.write(bytes([byte]))
            await writer.drain()
            await asyncio.sleep(1)
    else:
        writer.write(b"220 test.example\r\n")
    await asyncio.sleep(3600)


async def main():
    loop = asyncio.get_running_loop()
    if "hang" in modes or "slow" in modes:
        server = await asyncio.start_server(dull, "127.0.0.1", 0)
    else:
        server = await loop.create_server(make, "127.0.0.1", 0)
    print(server.sockets[0].getsockname()[1], flush=True)
    await server.serve_forever()


handler = Handler()
asyncio.run(main())
