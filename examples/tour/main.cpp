// The tour: what the Tarn library does, one subsystem after another.
#include "Tour.h"

#include <cstdio>

int main() {
    std::printf("Tarn tour\n");
    tourFoundation();
    tourSerialization();
    tourLinalg();
    tourConfig();
    tourSystem();
    tourConcurrency();
    tourCrypt();
    return 0;
}
