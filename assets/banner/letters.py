"""The lettering: six outlines of straight edges, drawn for this banner.

An outline is a list of rings on a grid on which a letter is 100 high, y downwards; the second
ring of a letter is its hole. Corners are cut from top left to bottom right, and ends are slanted
like the stroke of a broad pen.
"""

import numpy as np

OUTLINES = {
    "O": [[(22, 0), (84, 0), (92, 8), (92, 78), (70, 100), (8, 100), (0, 92), (0, 22)],
          [(32, 25), (66, 25), (66, 67), (58, 75), (26, 75), (26, 31)]],
    "S": [[(20, 0), (90, 0), (78, 25), (31, 25), (26, 30), (26, 38), (70, 38), (88, 56),
           (88, 80), (68, 100), (-2, 100), (10, 75), (57, 75), (62, 70), (62, 62), (18, 62),
           (0, 44), (0, 20)]],
    "T": [[(12, 0), (98, 0), (86, 25), (62, 25), (62, 87), (56, 100), (36, 100), (36, 25),
           (0, 25)]],
    "R": [[(0, 0), (70, 0), (90, 20), (90, 44), (75, 62), (95, 100), (65, 100), (47, 65),
           (26, 65), (26, 87), (20, 100), (0, 100)],
          [(26, 25), (58, 25), (64, 31), (64, 36), (59, 41), (26, 41)]],
    "I": [[(0, 0), (26, 0), (26, 87), (20, 100), (0, 100)]],
    "K": [[(0, 0), (26, 0), (26, 36), (35, 36), (57, 0), (89, 0), (61, 46), (94, 100),
           (62, 100), (37, 61), (26, 61), (26, 87), (20, 100), (0, 100)]],
}
WIDTHS = {"O": 92, "S": 88, "T": 98, "R": 94, "I": 26, "K": 94}
GAPS = {"OS": 10, "ST": 8, "TR": 4, "RI": 10, "IK": 10}


def laid_out(word, centre_x, top, height):
    """The word's letters as shapes on the screen, side by side about centre_x."""
    scale = height / 100
    gaps = [GAPS[word[i:i + 2]] for i in range(len(word) - 1)] + [0]
    width = sum(WIDTHS[letter] for letter in word) + sum(gaps)
    left = centre_x - scale * width / 2
    shapes = []
    for letter, gap in zip(word, gaps):
        shapes.append([np.array(ring, float) * scale + (left, top) for ring in OUTLINES[letter]])
        left += scale * (WIDTHS[letter] + gap)
    return shapes
