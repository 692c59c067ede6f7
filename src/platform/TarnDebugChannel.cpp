// The debug text channel: one replaceable handler in front of the platform's default channel.
#include "platform/TarnPlatform.h"

#include <mutex>

namespace tarn {
namespace platform {
namespace {

struct DebugSink {
    std::mutex mutex;
    DebugHandler handler = nullptr;
    void *context = nullptr;
};

// A function-local static so that writes from other static objects' constructors find it ready.
DebugSink &debugSink() {
    static DebugSink sink;
    return sink;
}

} // namespace

void setDebugHandler(DebugHandler handler, void *context) {
    DebugSink &sink = debugSink();
    const std::lock_guard<std::mutex> lock(sink.mutex);
    sink.handler = handler;
    sink.context = handler != nullptr ? context : nullptr;
}

void writeDebugText(const char *text) {
    DebugSink &sink = debugSink();
    DebugHandler handler = nullptr;
    void *context = nullptr;
    {
        const std::lock_guard<std::mutex> lock(sink.mutex);
        handler = sink.handler;
        context = sink.context;
    }
    // The handler runs outside the lock, so that it may itself install another handler.
    if (handler != nullptr) {
        handler(text, context);
    } else {
        writeDefaultDebugText(text);
    }
}

} // namespace platform
} // namespace tarn
