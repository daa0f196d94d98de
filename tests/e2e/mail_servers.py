"""Real mail servers on the loopback, with certificates of an authority made for the test."""

import logging
import pathlib
import socket
import ssl
import subprocess

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import AuthResult

# It does not see that a connection is secured from the start, and warns of passwords on it.
logging.getLogger("mail.log").setLevel(logging.CRITICAL)


def free_port(host: str, kind=socket.SOCK_STREAM) -> int:
    with socket.socket(socket.AF_INET, kind) as probe:
        probe.bind((host, 0))
        return probe.getsockname()[1]


def run_openssl(*arguments) -> None:
    subprocess.run(["openssl", *map(str, arguments)], check=True, capture_output=True)


# Kinds of keys, as openssl takes them.
CURVE = ("ec", "-pkeyopt", "ec_paramgen_curve:P-256")
RSA = ("rsa:2048",)


class Authority:
    """Makes certificates, in a folder of its own."""

    def __init__(self, folder: pathlib.Path):
        folder.mkdir()
        self.folder = folder
        self.certificate = folder / "authority.pem"
        self.make_key(self.certificate, "-x509", "-days", 2, "-subj", "/CN=authority")

    def make_key(self, path: pathlib.Path, *arguments, kind: tuple[str, ...] = CURVE) -> None:
        run_openssl("req", "-newkey", *kind, "-nodes", "-keyout", path.with_suffix(".key"),
                    "-out", path, *arguments)

    def server_files(self, names: str, kind: tuple[str, ...] = CURVE) -> pathlib.Path:
        """The certificate, with its key beside it, for a server with those names:
        "DNS:mail.test,IP:127.0.0.1"."""
        base = self.folder / f"server{len(list(self.folder.iterdir()))}"
        base.with_suffix(".ext").write_text(f"subjectAltName={names}\n", encoding="ascii")
        self.make_key(base.with_suffix(".csr"), "-subj", "/CN=x", kind=kind)
        run_openssl("x509", "-req", "-days", 2, "-CA", self.certificate,
                    "-CAkey", self.certificate.with_suffix(".key"), "-CAcreateserial",
                    "-extfile", base.with_suffix(".ext"), "-in", base.with_suffix(".csr"),
                    "-out", base.with_suffix(".pem"))
        return base.with_suffix(".pem")

    def server_tls(self, names: str) -> ssl.SSLContext:
        certificate = self.server_files(names)
        tls = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
        tls.load_cert_chain(certificate, certificate.with_suffix(".key"))
        return tls


class MailServer:
    """Remembers what it took: recipients, the text, and whether it came secured; and the passwords
    that it was told. `refuses` gives the answer to a recipient, or nothing."""

    def __init__(self, host: str = "127.0.0.1", port: int = 0, password: str = "", **options):
        self.taken: list[tuple[list[str], bytes, bool]] = []
        self.passwords: list[str] = []
        self.password = password
        self.refuses = lambda address: None
        if password:
            options.update(auth_required=True, authenticator=self.check)
        self.port = port or free_port(host)
        self.controller = Controller(self, hostname=host, port=self.port, **options)

    def __enter__(self) -> "MailServer":
        self.controller.start()
        return self

    def __exit__(self, *_) -> None:
        self.controller.stop()

    @property
    def recipients(self) -> list[str]:
        return [address for addresses, _, _ in self.taken for address in addresses]

    def check(self, server, session, envelope, mechanism, data) -> AuthResult:
        self.passwords.append(data.password.decode("utf-8"))
        return AuthResult(success=self.passwords[-1] == self.password, handled=False)

    async def handle_exception(self, error) -> str:
        return "451 This server has failed"  # what a test wants to see fails on the other side

    async def handle_RCPT(self, server, session, envelope, address, options):
        refusal = self.refuses(address)
        if not refusal:
            envelope.rcpt_tos.append(address)
        return refusal or "250 OK"

    async def handle_DATA(self, server, session, envelope):
        secured = server.transport.get_extra_info("ssl_object") is not None
        self.taken.append((envelope.rcpt_tos, envelope.content, secured))
        return "250 OK"
