"""A mail server on loopback that knows what it has accepted, and how far each session came."""

import collections
import random
import socket
import threading
import time

PIPELINING = ("PIPELINING", "CHUNKING")


class Session:
    def __init__(self):
        self.accepted: list[str] = []
        # The accepted message after which no further command came: the program may not know yet
        # that it has been accepted, or not have written it down.
        self.in_flight: str | None = None


class CountingServer:
    """Takes `delay` seconds for a message, partly before accepting it and partly before saying so.
    `before_answer(event, number)` is called in the server's thread before the answer to an
    accepted message ("message" and its number in the session) and to QUIT ("quit")."""

    def __init__(self, delay: float = 0.0):
        self.extensions: tuple[str, ...] = ()
        self.delay = delay
        self.refusal = ""
        self.before_answer = lambda event, number: None
        self.counts: collections.Counter[str] = collections.Counter()
        self.sessions: list[Session] = []
        self.open_sessions = 0
        self.changed = threading.Condition()
        self.random = random.Random(7)

    def __enter__(self) -> "CountingServer":
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.thread = threading.Thread(target=self.listen, daemon=True)
        self.thread.start()
        return self

    def __exit__(self, *_) -> None:
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()
        self.thread.join()

    def listen(self) -> None:
        while True:
            try:
                connection = self.listener.accept()[0]
            except OSError:
                return
            with self.changed:
                self.open_sessions += 1
                session = Session()
                self.sessions.append(session)
            threading.Thread(target=self.serve, args=(connection, session), daemon=True).start()

    def wait_until(self, condition, seconds: float = 60.0) -> bool:
        with self.changed:
            return self.changed.wait_for(condition, timeout=seconds)

    def serve(self, connection: socket.socket, session: Session) -> None:
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        try:
            with connection, connection.makefile("rb") as stream:
                Conversation(self, connection, stream, session).hold()
        except OSError:
            pass  # the program has been killed
        with self.changed:
            self.open_sessions -= 1
            self.changed.notify_all()

    def accept(self, session: Session, recipients: list[str]) -> None:
        with self.changed:
            self.counts.update(recipients)
            session.accepted += recipients
            session.in_flight = recipients[-1]
            self.changed.notify_all()


class Conversation:
    def __init__(self, server: CountingServer, connection, stream, session: Session):
        self.server = server
        self.connection = connection
        self.stream = stream
        self.session = session
        self.recipients: list[str] = []

    def say(self, text: str) -> None:
        self.connection.sendall((text + "\r\n").encode("ascii"))

    def hold(self) -> None:
        self.say("220 counting server")
        while (line := self.stream.readline()).endswith(b"\n"):
            self.session.in_flight = None
            if not self.obey(line.decode("utf-8").rstrip("\r\n")):
                return

    def obey(self, line: str) -> bool:
        """False when the session is over."""
        verb, answer = line.split(" ")[0].upper(), "250 ok"
        if verb == "EHLO":
            names = ["counting server", *self.server.extensions]
            self.connection.sendall("".join(f"250-{name}\r\n" for name in names[:-1]).encode())
            answer = f"250 {names[-1]}"
        elif verb == "MAIL":
            self.recipients = []
        elif verb == "RCPT":
            self.recipients.append(line[line.index("<") + 1 : line.index(">")])
        elif verb == "DATA":
            self.say("354 go on")
            while (piece := self.stream.readline()) != b".\r\n":
                if not piece.endswith(b"\n"):
                    return False
            answer = self.end_message()
        elif verb == "BDAT":
            size = int(line.split(" ")[1])
            if len(self.stream.read(size)) < size:
                return False
            if line.upper().endswith(" LAST"):
                answer = self.end_message()
        elif verb == "QUIT":
            self.server.before_answer("quit", 0)
            answer = "221 bye"
        self.say(answer)
        return verb != "QUIT"

    def end_message(self) -> str:
        before = self.server.random.random()
        time.sleep(self.server.delay * before)
        if self.server.refusal:
            return self.server.refusal
        self.server.accept(self.session, self.recipients)
        self.server.before_answer("message", len(self.session.accepted))
        time.sleep(self.server.delay * (1 - before))
        return "250 accepted"
