"""The lettering in front of the flock: cast in metal, its edges chamfered, its sides in shadow."""

import numpy as np

from geometry import signed_distance
from letters import laid_out
from light import blurred, dimmed, facet_light, glint, gradient, over, ramp
from sheet import CENTRE_X, GRAIN, sampled, slopes

WORD = "OSTRIK"
TOP, TALL = 28.0, 72.0

# The face mirrors a sky above a horizon and the ground below it.
FACE = [
    (0.00, (1.00, 0.98, 0.86)), (0.22, (1.00, 0.86, 0.42)), (0.44, (0.98, 0.56, 0.12)),
    (0.505, (1.00, 0.78, 0.30)), (0.53, (1.00, 0.96, 0.80)), (0.545, (0.52, 0.14, 0.06)),
    (0.75, (0.88, 0.33, 0.08)), (1.00, (1.00, 0.80, 0.36)),
]
CHAMFER = [(0.0, (0.46, 0.10, 0.06)), (0.35, (0.78, 0.28, 0.06)), (0.7, (1.00, 0.75, 0.30)),
           (1.0, (1.00, 1.00, 0.92))]
CHAMFER_WIDTH = 3.3
CHAMFER_LAMP = (-0.45, -0.8, 0.35)

SIDE = [(0.0, (0.02, 0.00, 0.03)), (0.35, (0.17, 0.02, 0.06)), (0.7, (0.62, 0.14, 0.05)),
        (1.0, (1.00, 0.60, 0.20))]
VANISHING_X, VANISHING_Y = CENTRE_X, 420.0
DEPTH = 0.040
LAYERS = 30

# Corners of the lettering that catch the lamp: x, y, size.
GLINTS = [(135.0, 37.5, 7.0), (418.5, 29.0, 6.0), (275.5, 29.0, 4.5)]
GLINT_COLOUR = np.array([1.0, 0.95, 0.8])


def letter_distance(sheet):
    """For each sample the distance to the edge of the lettering, above 0 inside a letter."""
    distance = np.full(sheet.x.shape, -40.0)
    for rings in laid_out(WORD, CENTRE_X, TOP, TALL):
        part = sheet.around(rings[0], 40)
        near = signed_distance(sheet.x[part], sheet.y[part], rings)
        distance[part] = np.maximum(distance[part], near)
    return distance


def shade_the_flock(sheet, distance):
    """The letters keep the lamp from what is behind them and throw some warm light on it."""
    letters = (distance > -1.0).astype(float)
    warmth = blurred(letters, 8.0 * GRAIN)[..., None] * np.array([0.75, 0.32, 0.08])
    shadow = blurred(np.roll(letters, (8 * GRAIN, 3 * GRAIN), (0, 1)), 4.0 * GRAIN)
    lit = sheet.light + sheet.light.max(axis=-1, keepdims=True) * warmth
    lit = dimmed(lit, 0.88 * np.clip(shadow * 1.1, 0, 1))
    sheet.light = dimmed(lit, 0.45 * ramp(-6, -1, distance))


def towards_the_front(sheet, depth):
    """The points of the front that points at a depth, 0 to 1, stand behind."""
    scale = 1 / (1 - DEPTH * depth)
    return (VANISHING_X + (sheet.x - VANISHING_X) * scale,
            VANISHING_Y + (sheet.y - VANISHING_Y) * scale)


def paint_sides(sheet, distance):
    """What runs back from the edges of the letters to a vanishing point below the picture."""
    depth = np.full(distance.shape, 2.0)
    for layer in range(LAYERS, 0, -1):
        x, y = towards_the_front(sheet, layer / LAYERS)
        depth = np.where(sampled(distance, x, y) > 0, layer / LAYERS, depth)
    seen, depth = depth <= 1, np.minimum(depth, 1)
    x, y = towards_the_front(sheet, depth)
    right, down = (sampled(slope, x, y) for slope in slopes(distance))
    tone = 0.40 + 0.30 * np.clip(right, 0, 1) + 0.14 * np.clip(-down, 0, 1)
    sheet.light = over(sheet.light, gradient(SIDE, tone * (1 - 0.75 * depth)), seen)


def paint_faces(sheet, distance):
    height = (sheet.y - TOP) / TALL
    waves = 0.018 * np.sin(sheet.x / 23.0) + 0.010 * np.sin(sheet.x / 9.1 + 1.0)
    horizon = ramp(0.35, 0.5, height) * ramp(0.7, 0.55, height)
    face = gradient(FACE, height + waves * horizon)
    right, down = slopes(distance)
    chamfer = gradient(CHAMFER, facet_light(right * 1.2, down * 1.2, CHAMFER_LAMP))
    face = over(face, chamfer, ramp(CHAMFER_WIDTH, CHAMFER_WIDTH - 0.3, distance))
    crease = ramp(0.5, 0.0, np.abs(distance - CHAMFER_WIDTH)) + 0.8 * ramp(0.8, 0.2, distance)
    face = np.clip(face + 0.25 * crease[..., None] * np.array([1.0, 0.8, 0.5]), 0, 1)
    sheet.light = over(sheet.light, face, ramp(-0.15, 0.15, distance))


def paint_glints(sheet):
    for x, y, size in GLINTS:
        star = glint(sheet.x - x, sheet.y - y, size)
        sheet.light = sheet.light + star[..., None] * GLINT_COLOUR


def paint_lettering(sheet):
    distance = letter_distance(sheet)
    shade_the_flock(sheet, distance)
    paint_sides(sheet, distance)
    paint_faces(sheet, distance)
    paint_glints(sheet)
