"""A headless desk on which the real program runs, is looked at and listened to."""

from .desk import FULL_SCREEN, Desk
from .program import Program
from .waiting import DeskError, wait_until

__all__ = ["FULL_SCREEN", "Desk", "DeskError", "Program", "wait_until"]
