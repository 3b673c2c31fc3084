"""Light and colour: smooth steps, blurs, ramps of colour, facets, glints."""

import numpy as np


def ramp(low, high, x):
    """0 up to low, 1 from high on, a smooth step between; low may be the greater one."""
    t = np.clip((np.asarray(x, float) - low) / (high - low), 0, 1)
    return t * t * (3 - 2 * t)


def blurred(picture, radius):
    """Two-dimensional bell blur; nothing comes in from outside the picture."""
    reach = int(3 * radius) + 1
    bell = np.exp(-0.5 * (np.arange(-reach, reach + 1) / radius) ** 2)
    bell /= bell.sum()
    for axis in (0, 1):
        padding = [(0, 0)] * picture.ndim
        padding[axis] = (reach, reach)
        padded = np.pad(picture, padding)
        size = picture.shape[axis]
        picture = sum(weight * np.take(padded, range(i, i + size), axis)
                      for i, weight in enumerate(bell))
    return picture


def gradient(stops, x):
    """The colour at x of a ramp given as (place, (red, green, blue)), places rising."""
    places = [place for place, _ in stops]
    return np.stack([np.interp(x, places, [colour[channel] for _, colour in stops])
                     for channel in range(3)], axis=-1)


def facet_light(slope_x, slope_y, towards):
    """How much light, 0 to 1, a surface of these slopes takes from a lamp; y downwards."""
    x, y, z = np.asarray(towards, float) / np.linalg.norm(towards)
    return np.clip((z - slope_x * x - slope_y * y) / np.sqrt(1 + slope_x**2 + slope_y**2), 0, 1)


def over(below, colour, cover):
    """A colour laid over a picture where cover is 1, mixed where it is less."""
    return below + (colour - below) * np.asarray(cover)[..., None]


def dimmed(picture, shade):
    """The picture with a share of its light taken away."""
    return picture * (1 - shade)[..., None]


def glint(x, y, size):
    """A four-pointed star about the origin, its points two sizes long."""
    across, up = np.abs(x) / size, np.abs(y) / size
    rays = np.exp(-9 * up - 1.6 * across) + np.exp(-9 * across - 1.6 * up)
    return rays + 0.5 * np.exp(-6 * (across**2 + up**2))
