"""The tessellation: one bird and its mirror image, row upon row, without a gap between them.

Every second row flies to the right, the rows between to the left. A row's upper edge is the lower
edge of the row above, seen in a mirror, so any curve will do for it; the same holds for the edge
between a beak and the tail before it. In the middle of the picture the edges are drawn straight,
which leaves plain six-sided tiles, and outwards they bend more and more until the tiles are birds.
The outermost ones come loose and fly away.

Edges are given for a bird that flies to the right, in units of a tile, y upwards.
"""

from dataclasses import dataclass

import numpy as np

from geometry import joined, mirrored

TILE_WIDTH, TILE_HEIGHT = 44.0, 22.0

# The back, from the tail to the head: tail, rear and front of the raised wing, head. The corner
# within the wing's front is where the beak and the tail of the birds above meet.
BACK_TO_MEETING = [
    [(0, 0), (0.08, -0.06), (0.15, -0.20)],
    [(0.15, -0.20), (0.19, 0.25), (0.03, 0.90)],
    [(0.03, 0.90), (0.31, 0.74), (0.52, 0.49), (0.64, 0.27)],
]
BACK_FROM_MEETING = [
    [(0.64, 0.27), (0.74, 0.10)],
    [(0.74, 0.10), (0.83, 0.20), (0.92, 0.14), (1, 0)],
]
# How far the beak stands out before the straight line from the breast up to the forehead.
BEAK = [
    [(0, 0), (-0.025, 0.2), (-0.03, 0.42)],
    [(-0.03, 0.42), (0.105, 0.54)],
    [(0.105, 0.54), (0.085, 0.74), (0.05, 0.88), (0, 1)],
]
MEETING = np.array([0.64, 0.27])
LEAN = 0.02
EYE = np.array([(0.955, 0.90)])


@dataclass
class Tile:
    """One tile on the screen, in pixels: its corners, the middle of them, and where an eye is."""

    outline: np.ndarray
    centre: np.ndarray
    eye: np.ndarray
    rightward: bool


def edges():
    """The back of the bird and the same number of points on the straight edges of its tile."""
    before, after = joined(BACK_TO_MEETING), joined(BACK_FROM_MEETING)
    straight = [np.linspace((0, 0), MEETING, len(before)),
                np.linspace(MEETING, (1, 0), len(after))[1:]]
    return np.concatenate([before, after[1:]]), np.concatenate(straight), len(after) - 1


def belly(back, turn):
    """The lower edge: the back of the mirrored bird below, begun at its meeting point."""
    reflection = mirrored(back)
    rolled = np.concatenate([reflection[turn:-1], reflection[:turn + 1] + (1, 0)])
    return rolled + (LEAN - rolled[0][0], 0)


def closed(side, top, bottom):
    """The four edges of a tile as one ring."""
    right = (side + (1, 0))[::-1]
    return np.concatenate([side[:-1], (top + (0, 1))[:-1], right[:-1], bottom[::-1][:-1]])


def bird_and_tile():
    """The bird's outline and, point for point, that of the straight-edged tile it grows from."""
    back, flat, turn = edges()
    profile = joined(BEAK)
    low, high = belly(back, turn)[0], np.array([0.0, 1.0])
    head = low + (high - low) * profile[:, 1:] + profile * (1, 0)
    level = np.linspace(low, high, len(profile))
    return closed(head, back, belly(back, turn)), closed(level, flat, belly(flat, turn))


def row_offset(row):
    """How far a row stands to the right of row 0, in tiles: two rows make up for each other."""
    return 0.0 if row % 2 == 0 else MEETING[0] - 1 + LEAN


def tessellation(centre, rows, columns, bend_at):
    """The tiles of the given rows and columns; bend_at maps a screen x to 0 to 1.

    The bend is taken at the straight edges, which neighbours share, and so they still fit.
    """
    bird, tile = bird_and_tile()
    for row in rows:
        for column in columns:
            def placed(points):
                x = points[:, 0] if row % 2 == 0 else 1 - points[:, 0]
                return np.column_stack([
                    centre[0] + (x + column + row_offset(row)) * TILE_WIDTH,
                    centre[1] - (points[:, 1] + row) * TILE_HEIGHT])

            base = placed(tile)
            outline = base + (placed(bird) - base) * bend_at(base[:, :1])
            yield Tile(outline, base.mean(axis=0), placed(EYE)[0], row % 2 == 0)
