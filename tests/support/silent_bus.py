#!/usr/bin/python3
"""silent_bus.py PATH: a message bus at this socket that lets everybody in and never says a word after it. Prints
"ready" when it is there, and "entered" when somebody has come in."""
import socket
import sys

listener = socket.socket(socket.AF_UNIX)
listener.bind(sys.argv[1])
listener.listen()
print("ready", flush=True)
guest, _ = listener.accept()
for line in guest.makefile("rb"):
    if line.startswith(b"NEGOTIATE_UNIX_FD"):
        guest.sendall(b"AGREE_UNIX_FD\r\n")
    elif line.startswith(b"BEGIN"):
        print("entered", flush=True)
    elif b"AUTH EXTERNAL" in line:
        guest.sendall(b"OK 0123456789abcdef0123456789abcdef\r\n")
    elif b"AUTH" in line:
        guest.sendall(b"REJECTED EXTERNAL\r\n")
