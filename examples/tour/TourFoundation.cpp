// Tour of the foundation: class identity, text and the owning vector.
#include "Tour.h"

#include <tarn/tarn.h>

#include <cstdio>

void tourFoundation() {
    std::printf("\n== Foundation\n");
    TarnString text("  alpha, beta,,gamma  ");
    std::printf("class name: %s, isa(\"TarnString\"): %s\n", text.getClassName().c_str(),
                text.isa("TarnString") ? "true" : "false");

    TarnVector<TarnString> words;
    text.trim().split(", ", words);
    std::printf("split \"%s\" into %u words:", text.c_str(), static_cast<unsigned>(words.size()));
    for (unsigned i = 0; i < words.size(); ++i) {
        std::printf(" [%s]", words[i].c_str());
    }
    std::printf("\n");

    TarnString line;
    line.format("pi is about %.5f, 255 is 0x%X", 3.14159265, 255u);
    bool ok = false;
    std::printf("formatted: %s; mid(12, 7) = \"%s\"; \"ff\" as hex = %u\n", line.c_str(),
                line.mid(12, 7).c_str(), TarnString("ff").toUIntBase16(&ok));
}
