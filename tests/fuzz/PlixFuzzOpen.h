#pragma once

// While an object of this class lives, the loader's files are opened in the
// working directory whatever their path (see PlixFuzzOpen.cpp).
class PlixFuzzOpenConfined
{
public:
    PlixFuzzOpenConfined();
    ~PlixFuzzOpenConfined();
    PlixFuzzOpenConfined(const PlixFuzzOpenConfined&) = delete;
    PlixFuzzOpenConfined& operator=(const PlixFuzzOpenConfined&) = delete;
};
