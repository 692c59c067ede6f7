// Fuzz target: any bytes loaded by TarnINIFile::read, saved, and loaded again into an equal model.
#include <tarn/tarn.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

// One scratch folder per fuzzing process; memory-backed where the system has one.
std::string scratchPath(const char *leaf) {
    static const std::string folder = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    return folder + "/tarn-ini-fuzz-" + std::to_string(getpid()) + "-" + leaf;
}

bool writeBytes(const std::string &path, const std::uint8_t *data, std::size_t size) {
    std::FILE *file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    const bool complete = std::fwrite(data, 1, size, file) == size;
    return std::fclose(file) == 0 && complete;
}

// Two models are equal when they hold the same section names, key names and value texts.
bool sameModel(TarnINIFile &first, TarnINIFile &second) {
    if (first.size() != second.size()) {
        return false;
    }
    auto other = second.begin();
    for (auto &section : first) {
        if (section.first.compare(other->first) != 0 || section.second.size() != other->second.size()) {
            return false;
        }
        auto otherKey = other->second.begin();
        for (auto &key : section.second) {
            if (key.first.compare(otherKey->first) != 0 ||
                key.second.getStringValue() != otherKey->second.getStringValue()) {
                return false;
            }
            ++otherKey;
        }
        ++other;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string input = scratchPath("input.ini");
    const std::string saved = scratchPath("saved.ini");
    if (!writeBytes(input, data, size)) {
        return 0;
    }
    TarnINIFile *loaded = newTarnINIFile(input.c_str());
    TarnINIFile *reloaded = newTarnINIFile(saved.c_str());
    if (!loaded->read(input.c_str()) || !loaded->write(saved.c_str()) || !reloaded->read(saved.c_str())) {
        __builtin_trap();
    }
    // Names and keys are saved byte for byte, line feeds inside them too, so the second model
    // equals the first on every platform.
    if (!sameModel(*loaded, *reloaded)) {
        __builtin_trap();
    }
    int number = 0;
    double real = 0.0;
    loaded->getPrivateProfileInt("a", "b", 7, number);
    loaded->getPrivateProfileHex("a", "c", 7, number);
    loaded->getPrivateProfileDouble("a", "d", 1.5, real);
    loaded->dispose();
    reloaded->dispose();
    std::remove(input.c_str());
    std::remove(saved.c_str());
    return 0;
}
