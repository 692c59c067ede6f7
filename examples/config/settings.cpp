// Example: a configuration file written with typed values, read back with defaults, and walked
// section by section.
#include <tarn/tarn.h>

#include <cstdio>

int main() {
    const char *const fileName = "settings.ini";

    // The object comes from newTarnINIFile and goes back through dispose. Writes change the model
    // in memory; write saves it, sections and keys sorted.
    TarnINIFile *settings = newTarnINIFile(fileName);
    settings->writePrivateProfileString("server", "host", "db.example.org");
    settings->writePrivateProfileInt("server", "port", 5432);
    settings->writePrivateProfileDouble("limits", "timeout", 2.5);
    settings->writePrivateProfileBool("limits", "retry", true);
    const bool written = settings->write(nullptr); // null: the name given at creation
    settings->dispose();

    // Read it back. A key that is missing takes the default and is added to the model, so the
    // next write stores it.
    TarnINIFile *loaded = newTarnINIFile(fileName);
    const bool read = loaded->read(nullptr); // false only when the file cannot be loaded
    TarnString host;
    int port = 0;
    int workers = 0;
    double timeout = 0.0;
    bool retry = false;
    loaded->getPrivateProfileString("server", "host", "localhost", host);
    loaded->getPrivateProfileInt("server", "port", 80, port);
    loaded->getPrivateProfileInt("server", "workers", 4, workers); // missing: 4, and now stored
    loaded->getPrivateProfileDouble("limits", "timeout", 10.0, timeout);
    loaded->getPrivateProfileBool("limits", "retry", false, retry);

    // The object is also the map of its sections, each a map of keys, both in byte order.
    unsigned int keys = 0;
    for (const auto &section : *loaded) {
        std::printf("[%s]\n", section.first.c_str());
        for (const auto &key : section.second) {
            TarnINIToken value = key.second;
            std::printf("  %s = %s\n", key.first.c_str(), value.getStringValue().c_str());
            ++keys;
        }
    }
    loaded->dispose();

    const bool ok = written && read && host.compare("db.example.org") == 0 && port == 5432 && workers == 4 &&
                    timeout == 2.5 && retry && keys == 5;
    std::printf("%s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
