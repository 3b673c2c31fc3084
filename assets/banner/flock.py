"""The flock behind the lettering: the tiles cut as stones, lit, and set free at both ends."""

from dataclasses import dataclass

import numpy as np

from birds import tessellation
from geometry import signed_distance
from light import dimmed, facet_light, gradient, over, ramp
from sheet import CENTRE_X, CENTRE_Y, slopes

LEFTWARD = [(0.0, (0.00, 0.06, 0.12)), (0.35, (0.00, 0.26, 0.38)), (0.7, (0.05, 0.62, 0.72)),
            (1.0, (0.65, 1.00, 0.95))]
RIGHTWARD = [(0.0, (0.08, 0.01, 0.14)), (0.35, (0.34, 0.05, 0.38)), (0.7, (0.85, 0.20, 0.52)),
             (1.0, (1.00, 0.75, 0.70))]
LAMP = (-0.55, -0.75, 0.65)
SEED = 2009


def bend_at(x):
    """How much of a bird a tile is."""
    return ramp(10, 165, np.abs(x - CENTRE_X))


def freedom_at(x):
    """How far a bird has come loose."""
    return ramp(185, 300, np.abs(x - CENTRE_X))


@dataclass
class Flight:
    """How one bird has left its place, as far as it is free."""

    scale: float
    angle: float
    drift: np.ndarray
    centre: np.ndarray

    def moved(self, points):
        x, y = (points - self.centre).T
        cos, sin = self.scale * np.cos(self.angle), self.scale * np.sin(self.angle)
        return np.column_stack([x * cos + y * sin, y * cos - x * sin]) + self.centre + self.drift


def flight(tile, outwards, chance):
    """Loose birds shrink, turn a little, keep together in height and drift outwards."""
    free = freedom_at(tile.centre[0])
    sideways = outwards * 6 + 5 * chance[4]
    gather = (CENTRE_Y - tile.centre[1]) * 0.25 + 6 * chance[1]
    return Flight(1 - 0.22 * free, 0.35 * chance[3] * free,
                  np.array([sideways, gather]) * free, tile.centre)


def presence(tile, outwards):
    """1 for a tile that is there: those that would fly back inwards fade where birds come loose,
    and so do the outermost rows, which the picture's border would cut in two."""
    free = freedom_at(tile.centre[0])
    if tile.rightward != (outwards > 0):
        return 1 - ramp(0.0, 0.22, free)
    return 0.0 if free > 0.3 and abs(tile.centre[1] - CENTRE_Y) > 62 else 1.0


def stone(x, outline, distance, tile, chance):
    """The colour of a tile, cut with a round edge and lit from the upper left."""
    edge = np.minimum(distance, 2.8)
    slope_x, slope_y = slopes(edge * (1 - edge / 7.5))
    glow = facet_light(slope_x * 1.1 + 0.14 * chance[0], slope_y * 1.1 + 0.14 * chance[2], LAMP)
    forwards = (x - outline[:, 0].min()) / np.ptp(outline[:, 0])
    if not tile.rightward:
        forwards = 1 - forwards
    tone = 0.92 * glow**1.3 * (0.55 + 0.45 * forwards)
    tone += 0.02 + 0.07 * chance[1] + 0.22 * freedom_at(tile.centre[0])
    return gradient(RIGHTWARD if tile.rightward else LEFTWARD, tone)


def with_eye(colour, ring, awake):
    """An eye on the colour, ring being the distance to its middle."""
    colour = over(colour, np.zeros(3), awake * ramp(1.9, 1.5, ring))
    return over(colour, np.array([1.0, 0.95, 0.8]), awake * ramp(1.1, 0.7, ring))


def paint_tile(sheet, tile, chance):
    outwards = np.sign(tile.centre[0] - CENTRE_X)
    cover = presence(tile, outwards)
    way = flight(tile, outwards, chance)
    outline = way.moved(tile.outline)
    part = sheet.around(outline, 2)
    x, y = sheet.x[part], sheet.y[part]
    if cover == 0 or x.size == 0:
        return
    distance = signed_distance(x, y, [outline])
    eye_x, eye_y = way.moved(tile.eye[None])[0]
    colour = with_eye(stone(x, outline, distance, tile, chance),
                      np.hypot(x - eye_x, y - eye_y) / way.scale,
                      ramp(0.75, 1.0, bend_at(tile.centre[0])))
    sheet.light[part] = over(sheet.light[part], colour, ramp(0.15, 0.55, distance) * cover)


def paint_flock(sheet):
    chances = np.random.RandomState(SEED)
    for tile in tessellation((CENTRE_X, CENTRE_Y), range(-4, 4), range(-9, 9), bend_at):
        paint_tile(sheet, tile, chances.uniform(-1, 1, 5))
    across, down = np.abs(sheet.x - CENTRE_X) / 322, np.abs(sheet.y - CENTRE_Y) / 70
    sheet.light = dimmed(sheet.light, np.clip(across**14 + down**4, 0, 1))
