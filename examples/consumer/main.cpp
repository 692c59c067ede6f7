// A program outside the Tarn tree: it sees only the installed headers and library, and touches a
// class of every subsystem. It is also built with strict warnings as errors, so a public header
// that makes a warning in user code fails the consumer check.
#include <tarn/tarn.h>

#include <cstdint>
#include <cstdio>
#include <string>

namespace {

// A serializable point: stores and restores one integer token.
class Point : public TarnSerializable {
public:
    int x = 0;

    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Point"; }
    std::string getClassName() const override { return "Point"; }
    bool isModified() override { return false; }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        archive.addIntToken("x", x);
    }
    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        x = archive.getTokenInt("x");
    }
};

bool foundation() {
    TarnVector<TarnString> words;
    TarnString("installed,package,works").split(",", words);
    return words.size() == 3 && words[0].compare("installed") == 0 && getInt() == 3;
}

bool serialization() {
    Point stored;
    stored.x = 42;
    TarnStringArchive out;
    Point restored;
    TarnStringArchive in;
    return out.serializeStore(stored) && in.serializeRestore(restored, out.getText()) && restored.x == 42;
}

bool linalg() {
    const double values[] = {2, 1, 1, 3};
    TarnMatrix a(values, 2, 2);
    TarnMatrix inverse;
    if (!a.invert(inverse)) {
        return false;
    }
    double expected = 0.6; // the inverse is [3 -1; -1 2] / 5
    return TarnMath::equals(inverse[0][0], expected);
}

bool config() {
    TarnINIFile *settings = newTarnINIFile("consumer.ini");
    settings->writePrivateProfileInt("section", "key", 7);
    int value = 0;
    settings->getPrivateProfileInt("section", "key", 0, value);
    settings->dispose();
    return value == 7;
}

bool system() {
    const TarnFileName name("dir\\file.txt");
    return name.getFileName().compare("file") == 0 && name.getFileExt().compare("txt") == 0 &&
           TarnSystem::getNumberOfSystemProcessors() > 0;
}

bool concurrency() {
    TarnSemaphore semaphore(1);
    semaphore.acquire(1);
    semaphore.release(1);
    return semaphore.tryAcquire(1);
}

bool crypt() {
    const std::uint32_t key[4] = {1, 2, 3, 4};
    unsigned char block[8] = {'c', 'o', 'n', 's', 'u', 'm', 'e', 'r'};
    const bool enciphered = TarnCrypt::xteaBlock(32, block, sizeof block, block, key, true);
    const bool deciphered = TarnCrypt::xteaBlock(32, block, sizeof block, block, key, false);
    return enciphered && deciphered && block[0] == 'c' && block[7] == 'r';
}

} // namespace

int main() {
    const bool results[] = {foundation(), serialization(), linalg(), config(),
                            system(),     concurrency(),   crypt()};
    const char *const names[] = {"foundation", "serialization", "linalg", "config",
                                 "system",     "concurrency",   "crypt"};
    bool ok = true;
    for (unsigned int i = 0; i < sizeof results / sizeof results[0]; ++i) {
        if (!results[i]) {
            std::printf("consumer: %s FAILED\n", names[i]);
            ok = false;
        }
    }
    std::printf("Tarn %s: every subsystem %s\n", TARN_VERSION_STRING, ok ? "works" : "FAILED");
    return ok ? 0 : 1;
}
