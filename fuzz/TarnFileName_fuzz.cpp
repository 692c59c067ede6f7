// Fuzz target: TarnFileName's getters, setters and increment on arbitrary path texts.
#include <tarn/tarn.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    // The input is up to four NUL-separated texts: a full name, then a path, a name and an extension.
    std::string parts[4];
    std::size_t part = 0;
    for (std::size_t i = 0; i < size && part < 4; ++i) {
        if (data[i] == 0) {
            ++part;
        } else {
            parts[part] += static_cast<char>(data[i]);
        }
    }
    TarnFileName name;
    name.setFullFileName(parts[0].c_str());
    static_cast<void>(name.getPath());
    static_cast<void>(name.getFileName());
    static_cast<void>(name.getFileExt());
    static_cast<void>(name.getFullFileName());
    for (int step = 0; step < 3; ++step) {
        name.increment();
    }
    if (part >= 1) {
        name.setPath(parts[1].c_str());
    }
    if (part >= 2) {
        name.setFileName(parts[2].c_str());
    }
    if (part >= 3) {
        name.setFileExt(parts[3].c_str());
    }
    static_cast<void>(name.getPath());
    static_cast<void>(name.getFileName());
    static_cast<void>(name.getFileExt());
    name.increment();
    return 0;
}
