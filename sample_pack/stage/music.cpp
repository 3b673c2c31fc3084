#include "music.h"

#include <cmath>

const Tune& Music_Tune() {
    static Tune tune;
    if (tune.length == 0)
        Tune_Parse(tune, Intro_Tune);
    return tune;
}

float Music_LoopTimeAt(float time) { return std::fmod(time, Tune_LoopSeconds(Music_Tune())); }
