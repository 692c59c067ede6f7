// A program outside the Tarn tree: it sees only the installed headers and library.
#include <tarn/tarn.h>

#include <cstdio>

int main() {
    TarnVector<TarnString> words;
    TarnString("installed,package,works").split(",", words);
    std::printf("Tarn %s: %u words, first \"%s\", getInt() = %d\n", TARN_VERSION_STRING,
                static_cast<unsigned>(words.size()), words[0].c_str(), getInt());
    return words.size() == 3 && getInt() == 3 ? 0 : 1;
}
