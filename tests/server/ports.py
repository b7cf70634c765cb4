"""Ports of this machine that nobody listens to yet."""

import contextlib
import socket


def free_ports(count):
    with contextlib.ExitStack() as taken:
        return [taken.enter_context(socket.create_server(("127.0.0.1", 0))).getsockname()[1] for _ in range(count)]


def free_port():
    return free_ports(1)[0]
