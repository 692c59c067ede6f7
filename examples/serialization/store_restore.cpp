// Example: an object graph stored as text and restored at new addresses with its pointers
// reconnected, through a string archive, a file archive and clone.
#include <tarn/tarn.h>

#include <cstdio>
#include <string>

namespace {

// A track of a playlist: a title and a length in seconds. Its parent link, kept by the base
// class, points at the playlist.
class Track : public TarnSerializable {
public:
    std::string title;
    int seconds = 0;

    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Track"; }
    std::string getClassName() const override { return "Track"; }
    bool isModified() override { return modified; }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive); // "this" and "parent"
        TarnToken token;
        token.setValue(title.c_str()); // text is stored as it is: no "{", "}" or ";" in it
        archive.addToken("title", token);
        archive.addIntToken("seconds", seconds);
    }

    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        title = archive.getTokenText("title");
        seconds = archive.getTokenInt("seconds");
    }
};

// A playlist owns its tracks and points at the one playing: a pointer into its own graph that
// a restore must reconnect.
class Playlist : public TarnSerializable {
public:
    TarnVector<Track> tracks;
    TarnSerializable *playing = nullptr; // a stored address between restore and reconnectPointers

    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Playlist"; }
    std::string getClassName() const override { return "Playlist"; }
    bool isModified() override { return modified; }

    Track &add(const char *title, int seconds) {
        Track &track = tracks.add();
        track.title = title;
        track.seconds = seconds;
        track.setParent(*this);
        return track;
    }

    // Each contained object stores itself into a child node of its own.
    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        TarnToken token;
        token.setPointerValue(playing);
        archive.addToken("playing", token);
        for (unsigned int i = 0; i < tracks.size(); ++i) {
            tracks[i].serializeStore(archive.addChild());
        }
    }

    // Restore makes the contained objects; the pointer holds the stored address until
    // reconnectPointers translates it.
    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        playing = archive.getTokenPointer("playing");
        TarnVector<TarnArchive> &children = archive.getChildren();
        for (unsigned int i = 0; i < children.size(); ++i) {
            tracks.add().serializeRestore(children[i]);
        }
    }

    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        playing = handleManager.getNewPointer(playing); // null when it led outside the graph
        for (unsigned int i = 0; i < tracks.size(); ++i) {
            tracks[i].reconnectPointers();
        }
    }

    void resetPointers() override {
        TarnSerializable::resetPointers();
        for (unsigned int i = 0; i < tracks.size(); ++i) {
            tracks[i].resetPointers();
        }
    }
};

// True when `copy` holds the same tracks as `original` and its links lead into its own graph.
bool sameGraph(Playlist &original, Playlist &copy) {
    if (copy.tracks.size() != original.tracks.size() || copy.playing != &copy.tracks[1]) {
        return false;
    }
    for (unsigned int i = 0; i < copy.tracks.size(); ++i) {
        Track &track = copy.tracks[i];
        if (track.title != original.tracks[i].title || track.seconds != original.tracks[i].seconds ||
            &track.getParent() != &copy) {
            return false;
        }
    }
    return true;
}

} // namespace

int main() {
    Playlist list;
    list.add("Morning", 245);
    list.playing = &list.add("Noon", 198);
    list.add("Evening", 312);

    // To a string and back. An archive serves one store or one restore.
    TarnStringArchive storeArchive;
    storeArchive.serializeStore(list);
    const TarnString text = storeArchive.getText();
    std::printf("stored as %u bytes of text, beginning %s\n", static_cast<unsigned>(text.size()),
                text.left(60).c_str());
    Playlist fromText;
    TarnStringArchive restoreArchive;
    restoreArchive.serializeRestore(fromText, text);

    // To a file and back: one line per section head, brace and token, indented by tabs.
    TarnFileArchive fileStore;
    fileStore.serializeStore("playlist.txt", list);
    Playlist fromFile;
    TarnFileArchive fileRestore;
    const bool loaded = fileRestore.serializeRestore(fromFile, "playlist.txt"); // false: no file
    const int restored = TarnSerializable::restoreCount; // objects made since the file was read
    std::printf("restored from the file: %s, %d objects\n", loaded ? "true" : "false", restored);

    // clone goes through an archive tree without text; both objects must be of one class.
    Playlist cloned;
    cloned.clone(list);

    const bool ok = sameGraph(list, fromText) && loaded && restored == 4 && sameGraph(list, fromFile) &&
                    sameGraph(list, cloned);
    std::printf("%s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
