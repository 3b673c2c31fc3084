"""Waiting for a condition: the desk never sleeps for a guessed time."""

import time


class DeskError(Exception):
    """Something on the desk did not happen, told in one sentence."""


def wait_until(condition, what, limit=120.0, pause=0.01):
    """Asks `condition` until its answer is true and gives that answer.

    `what` completes the sentence "waited in vain for ..." when `limit` seconds have passed.
    """
    end = time.monotonic() + limit
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise DeskError(f"waited {limit:g} s in vain for {what}")
        time.sleep(pause)
