"""A sound card without a loudspeaker. It takes sound from its standard input, a pipe that does not
block, in the time in which a real card would play it, and writes what would be heard to its standard
output: silence, too, when nothing comes.

A real card, and PulseAudio's null sink, go on when the machine stands still for a moment, as a
virtual machine does whose processors are wanted elsewhere: what was not there in time is heard as
silence. This one makes up for its own waking only. All other time in which it could not run never
was, so that no sound is lost of a program that does its part."""

import os
import time

BYTES_A_SECOND = 44100 * 4
BYTES_AT_ONCE = BYTES_A_SECOND // 100
MADE_UP_SECONDS = 0.005


def take():
    try:
        return os.read(0, BYTES_AT_ONCE)
    except BlockingIOError:
        return bytes(BYTES_AT_ONCE)


def main():
    due = time.monotonic()
    while heard := take():
        os.write(1, heard)
        now = time.monotonic()
        due = max(due + len(heard) / BYTES_A_SECOND, now - MADE_UP_SECONDS)
        time.sleep(max(0.0, due - now))


if __name__ == "__main__":
    main()
