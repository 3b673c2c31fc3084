// Solid things: places in space, turned and projected. x to the right, y down, z away from the eye.
#pragma once

#include "canvas.h"

struct Vector {
    float x, y, z;
};

inline Vector operator+(Vector a, Vector b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vector operator-(Vector a, Vector b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vector operator*(Vector vector, float factor) {
    return {vector.x * factor, vector.y * factor, vector.z * factor};
}

inline float Space_Dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// The same direction, with length 1.
Vector Space_Unit(Vector vector);

// Which way a flat face of these corners looks, with length 1.
Vector Space_FaceNormal(Vector a, Vector b, Vector c);

// Turned about the x axis, then y, then z; in turns.
Vector Space_Rotate(Vector vector, Vector turns);

// `lens` is how large, in pixels, a thing of size 1 is at distance 1 from the eye.
Point Space_Project(Vector vector, float lens);

// A ball of twelve corners and twenty triangles, all corners at distance 1.
constexpr int Space_BallCorners = 12, Space_BallFaces = 20;
extern const Vector Space_BallCorner[Space_BallCorners];
extern const int Space_BallFace[Space_BallFaces][3];
