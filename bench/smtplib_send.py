"""Sends messages with smtplib in one session; prints the seconds from the first to the last.

Usage: smtplib_send.py PORT MESSAGES BYTES
"""
import smtplib
import sys
import time

port, count, size = (int(word) for word in sys.argv[1:])
line = "A line of text as long as lines of mail usually are, no more.\r\n"
head = (
    "From: Sender <sender@example.com>\r\nTo: recipient@example.com\r\nSubject: Benchmark\r\n"
    "MIME-Version: 1.0\r\nContent-Type: text/plain; charset=us-ascii\r\n\r\n"
)
message = head + line * (size // len(line) + 1)
with smtplib.SMTP("127.0.0.1", port) as server:
    start = time.monotonic()
    for _ in range(count):
        server.sendmail("sender@example.com", ["recipient@example.com"], message)
    print(time.monotonic() - start)
