"""A DNS server on the loopback address that knows no name: the hosts file holds all that exist."""

import socket

QUESTION_ONLY = b"\x00\x01\x00\x00\x00\x00\x00\x00"
HEADER = 12


def answer(query):
    """The query's identifier and question, with "response, recursion available, name error"."""
    end = HEADER
    while end < len(query) and query[end] != 0:
        end += query[end] + 1
    question = query[HEADER:end + 5]
    return query[:2] + b"\x81\x83" + QUESTION_ONLY + question


def main():
    server = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    server.bind(("127.0.0.1", 53))
    print("ready", flush=True)
    while True:
        query, client = server.recvfrom(512)
        if len(query) > HEADER:
            server.sendto(answer(query), client)


if __name__ == "__main__":
    main()
