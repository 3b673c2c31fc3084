#include "stage.h"

namespace {

constexpr int mostAtOnce = 8;

int stepsTaken = 0;

} // namespace

int Stage_TakeSteps(float seconds, float stepsPerSecond) {
    const int target = int(seconds * stepsPerSecond);
    const int due = target - stepsTaken;
    stepsTaken = target;
    return due < mostAtOnce ? due : mostAtOnce;
}
