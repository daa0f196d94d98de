"""A mail server with TLS on a free loopback port, until standard input ends.

Usage: tls_mail_server.py (starttls|implicit) CERTIFICATE KEY PORTFILE
The answer to a message is its number of bytes and whether it came secured.
"""

import asyncio
import os
import ssl
import sys
import threading

from aiosmtpd.smtp import SMTP


class Count:
    async def handle_DATA(self, server, session, envelope):
        secured = server.transport.get_extra_info("ssl_object") is not None
        return f"250 {len(envelope.content)} bytes, {'secured' if secured else 'clear'}"


async def main():
    mode, certificate, key, port_file = sys.argv[1:]
    tls = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    tls.load_cert_chain(certificate, key)
    loop = asyncio.get_running_loop()
    server = await loop.create_server(
        lambda: SMTP(Count(), tls_context=tls if mode == "starttls" else None),
        host="127.0.0.1",
        port=0,
        ssl=tls if mode == "implicit" else None,
    )
    port = server.sockets[0].getsockname()[1]
    with open(port_file + ".new", "w") as file:
        file.write(str(port))
    os.rename(port_file + ".new", port_file)
    ended = asyncio.Event()

    def wait_for_end():
        sys.stdin.read()
        loop.call_soon_threadsafe(ended.set)

    threading.Thread(target=wait_for_end, daemon=True).start()
    await ended.wait()
    server.close()


asyncio.run(main())
