"""One at a time: tests run side by side and share what they make."""

import fcntl
from contextlib import contextmanager
from pathlib import Path


@contextmanager
def locked(path):
    """Waits until nobody else holds the lock of `path`, and holds it to the end of the block."""
    lock = Path(f"{path}.lock")
    lock.parent.mkdir(parents=True, exist_ok=True)
    with open(lock, "w") as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        yield
