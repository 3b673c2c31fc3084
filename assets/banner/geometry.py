"""Plane geometry for the banner: outlines, curves and distances, all in screen pixels."""

import numpy as np


def smooth(points, steps=8):
    """A curve through all points (Catmull-Rom), without its last point."""
    p = np.asarray(points, float)
    padded = np.concatenate([p[:1], p, p[-1:]])
    t = (np.arange(steps) / steps)[:, None]
    parts = []
    for a, b, c, d in zip(padded, padded[1:], padded[2:], padded[3:]):
        parts.append(
            0.5 * (2 * b + (c - a) * t + (2 * a - 5 * b + 4 * c - d) * t**2
                   + (3 * b - a - 3 * c + d) * t**3))
    return np.concatenate(parts)


def joined(curves):
    """Smooth curves laid end to end, with a corner wherever two of them meet."""
    return np.concatenate([smooth(c) for c in curves] + [np.asarray(curves[-1][-1:], float)])


def mirrored(curve):
    """The curve seen in a mirror, run through from left to right again; it spans 0 to 1."""
    flipped = curve[::-1].copy()
    flipped[:, 0] = 1 - flipped[:, 0]
    return flipped


def signed_distance(x, y, rings):
    """Distance to the nearest edge of a shape, above 0 inside it.

    A shape is a list of closed rings; a point is inside when a ray from it crosses an odd
    number of edges, so that a second ring cuts a hole.
    """
    nearest = np.full(np.broadcast(x, y).shape, np.inf)
    inside = np.zeros(nearest.shape, bool)
    for ring in rings:
        ring = np.asarray(ring, float)
        for (ax, ay), (bx, by) in zip(ring, np.roll(ring, -1, axis=0)):
            ex, ey = bx - ax, by - ay
            length = ex * ex + ey * ey
            if length == 0:
                continue
            along = np.clip(((x - ax) * ex + (y - ay) * ey) / length, 0, 1)
            np.minimum(nearest, (x - ax - along * ex)**2 + (y - ay - along * ey)**2, out=nearest)
            if ey != 0:
                crosses = (y > ay) != (y > by)
                inside ^= crosses & (x < ax + (y - ay) * (ex / ey))
    return np.where(inside, 1, -1) * np.sqrt(nearest)
