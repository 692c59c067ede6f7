// Tour of serialization: an object graph goes to a file and comes back with its pointers.
#include "Tour.h"

#include <tarn/tarn.h>

#include <cstdio>
#include <string>

namespace {

// A station with a reading, measuring probes it contains, and a link to one "backup" probe.
class Station : public TarnSerializable {
public:
    std::string name;
    double reading = 0.0;
    TarnVector<Station> probes;
    TarnSerializable *backup = nullptr;

    using TarnObject::isa;
    bool isa(const std::string &className) const override { return className == "Station"; }
    std::string getClassName() const override { return "Station"; }
    bool isModified() override { return modified; }

    Station &addProbe(const char *probeName, double value) {
        Station &probe = probes.add();
        probe.name = probeName;
        probe.reading = value;
        probe.setParent(*this);
        return probe;
    }

    // The base step writes "this" and "parent"; the station adds its own tokens and one child
    // node per probe.
    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        TarnToken token;
        token.setValue(name.c_str());
        archive.addToken("name", token);
        token.setValue(reading);
        archive.addToken("reading", token);
        token.setPointerValue(backup);
        archive.addToken("backup", token);
        for (unsigned i = 0; i < probes.size(); ++i) {
            probes[i].serializeStore(archive.addChild());
        }
    }

    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        name = archive.getTokenText("name");
        TarnToken token;
        token.setValue(archive.getTokenText("reading"));
        reading = token.getDoubleValue();
        backup = archive.getTokenPointer("backup"); // a stored address until reconnectPointers
        for (unsigned i = 0; i < archive.getChildren().size(); ++i) {
            probes.add().serializeRestore(archive.getChildren()[i]);
        }
    }

    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        backup = handleManager.getNewPointer(backup);
        for (unsigned i = 0; i < probes.size(); ++i) {
            probes[i].reconnectPointers();
        }
    }

    void resetPointers() override {
        TarnSerializable::resetPointers();
        for (unsigned i = 0; i < probes.size(); ++i) {
            probes[i].resetPointers();
        }
    }
};

void showStation(Station &station) {
    std::printf("%s at %p reads %g, backup %p\n", station.name.c_str(), static_cast<void *>(&station),
                station.reading, static_cast<void *>(station.backup));
    for (unsigned i = 0; i < station.probes.size(); ++i) {
        Station &probe = station.probes[i];
        std::printf("  probe %s at %p reads %g, parent %p\n", probe.name.c_str(), static_cast<void *>(&probe),
                    probe.reading, static_cast<void *>(&probe.getParent()));
    }
}

} // namespace

void tourSerialization() {
    std::printf("\n== Serialization\n");
    Station station;
    station.name = "north";
    station.reading = 2.5;
    station.addProbe("wind", 11.25);
    station.backup = &station.addProbe("rain", 0.5);
    showStation(station);

    const char *fileName = "tour_station.txt";
    TarnFileArchive store;
    store.serializeStore(fileName, station);
    std::printf("stored to %s:\n", fileName);
    TarnTextFile file(fileName, TarnTextFile::READ);
    TarnString line;
    while (file.readLine(line)) {
        std::printf("  | %s\n", line.c_str());
    }

    Station copy;
    TarnFileArchive restore;
    const bool restored = restore.serializeRestore(copy, fileName);
    std::printf("restored: %s, %d objects; the copy lives at new addresses:\n", restored ? "true" : "false",
                TarnSerializable::restoreCount);
    showStation(copy);
    std::printf("backup reconnected to the copy's own rain probe: %s\n",
                copy.backup == &copy.probes[1] ? "true" : "false");

    TarnStringArchive inMemory;
    inMemory.serializeStore(copy.probes[0]);
    std::printf("one probe as a string: %s\n", inMemory.getText().c_str());
}
