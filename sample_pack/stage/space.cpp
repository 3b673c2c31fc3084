#include "space.h"

namespace {
constexpr float shorter = 0.525731f, longer = 0.850651f; // sides of the golden rectangle

void rotatePair(float& first, float& second, float turns) {
    const float cosine = Num_Cos(turns), sine = Num_Sin(turns);
    const float turned = first * cosine - second * sine;
    second = first * sine + second * cosine;
    first = turned;
}

Vector cross(Vector a, Vector b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
} // namespace

const Vector Space_BallCorner[Space_BallCorners] = {
    {-shorter, 0, longer}, {shorter, 0, longer},  {-shorter, 0, -longer}, {shorter, 0, -longer},
    {0, longer, shorter},  {0, longer, -shorter}, {0, -longer, shorter},  {0, -longer, -shorter},
    {longer, shorter, 0},  {-longer, shorter, 0}, {longer, -shorter, 0},  {-longer, -shorter, 0}};

const int Space_BallFace[Space_BallFaces][3] = {
    {0, 4, 1}, {0, 9, 4},  {9, 5, 4},  {4, 5, 8},  {4, 8, 1},  {8, 10, 1}, {8, 3, 10},
    {5, 3, 8}, {5, 2, 3},  {2, 7, 3},  {7, 10, 3}, {7, 6, 10}, {7, 11, 6}, {11, 0, 6},
    {0, 1, 6}, {6, 1, 10}, {9, 0, 11}, {9, 11, 2}, {9, 2, 5},  {7, 2, 11}};

Vector Space_Unit(Vector vector) {
    return vector * (1.0f / std::sqrt(Space_Dot(vector, vector) + 1e-9f));
}

Vector Space_FaceNormal(Vector a, Vector b, Vector c) { return Space_Unit(cross(b - a, c - a)); }

Vector Space_Rotate(Vector vector, Vector turns) {
    rotatePair(vector.y, vector.z, turns.x);
    rotatePair(vector.z, vector.x, turns.y);
    rotatePair(vector.x, vector.y, turns.z);
    return vector;
}

Point Space_Project(Vector vector, float lens) {
    const float scale = lens / std::fmax(vector.z, 0.1f);
    return {Canvas_MidX + vector.x * scale, Canvas_MidY + vector.y * scale};
}
