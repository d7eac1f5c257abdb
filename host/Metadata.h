// The host's metadata library, as far as the add-on uses it.
//
// A metadata file keeps what a scan found, beside the data, so that the next
// load of the same file need not scan it again. Its format belongs to the host.
#pragma once

#include <atomic>
#include <cstdint>

#include "host/ZorTypes.h"

namespace zorvane {
namespace dataio {

// Receives the range of one variable once it is known (when the values are
// loaded), so that the range can be written into the metadata file later.
// Reference counted: the factory that made a writer holds one reference; a
// holder that keeps a writer longer than the factory calls retain and release.
class ZOR_HOST_API DeferredMinMaxWriter {
public:
    DeferredMinMaxWriter() = default;
    DeferredMinMaxWriter(const DeferredMinMaxWriter&) = delete;
    DeferredMinMaxWriter& operator=(const DeferredMinMaxWriter&) = delete;
    virtual ~DeferredMinMaxWriter();
    // Records the range; the last call wins.
    virtual void setMinMax(double minimum, double maximum) = 0;
    void retain() { refCount_.fetch_add(1, std::memory_order_relaxed); }
    // Drops one reference; the last one deletes the writer.
    void release() {
        if (refCount_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }

private:
    std::atomic<int32_t> refCount_{1};
};

// Hands out deferred writers during a scan whose result will be stored.
class ZOR_HOST_API DeferredMinMaxWriterFactory {
public:
    virtual ~DeferredMinMaxWriterFactory();
    // A new writer; the factory keeps a reference to it. Never null.
    virtual DeferredMinMaxWriter* createDeferredMinMaxWriter() = 0;
};

}  // namespace dataio
}  // namespace zorvane
