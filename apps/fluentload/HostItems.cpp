#include "apps/fluentload/HostItems.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <mutex>

#include "host/ZorData.h"

namespace fluentload {

namespace {

std::atomic<bool> serialized{false};
std::mutex requestMutex;

// Holds the request lock while requests are serialized.
class RequestGuard {
  public:
    RequestGuard() : lock_(requestMutex, std::defer_lock) {
        if (serialized.load())
            lock_.lock();
    }

  private:
    std::unique_lock<std::mutex> lock_;
};

size_t bytesOf(int32_t type) {
    switch (type) {
        case ZorFieldDataType_Double:
            return 8;
        case ZorFieldDataType_Float:
        case ZorFieldDataType_Int32:
            return 4;
        case ZorFieldDataType_Int16:
            return 2;
        case ZorFieldDataType_Byte:
        case ZorFieldDataType_Bit:
            return 1;
        default:
            return 0;
    }
}

}  // namespace

void setRequestsSerialized(bool on) {
    serialized.store(on);
}

double Values::at(int64_t i) const {
    const unsigned char* p = bytes.data() + static_cast<size_t>(i) * bytesOf(type);
    switch (type) {
        case ZorFieldDataType_Double: {
            double v;
            std::memcpy(&v, p, 8);
            return v;
        }
        case ZorFieldDataType_Float: {
            float v;
            std::memcpy(&v, p, 4);
            return v;
        }
        case ZorFieldDataType_Int32: {
            int32_t v;
            std::memcpy(&v, p, 4);
            return v;
        }
        case ZorFieldDataType_Int16: {
            int16_t v;
            std::memcpy(&v, p, 2);
            return v;
        }
        default:
            return *p;
    }
}

// Copies the values of a loaded item.
static bool copyValues(ZorFieldData data, Values* out) {
    out->type = ZorUtilDataValueGetRefType(data);
    out->location = ZorUtilDataValueGetLocationByRef(data);
    out->count = ZorUtilDataValueGetCountByRef(data);
    size_t size = bytesOf(out->type);
    if (size == 0)
        return false;
    out->bytes.assign(static_cast<size_t>(out->count) * size, 0);
    if (out->count == 0)
        return true;
    if (out->type == ZorFieldDataType_Bit) {
        // No raw layout is promised for bits: one byte per value, read one by one.
        for (ZorIndex p = 1; p <= out->count; ++p)
            out->bytes[static_cast<size_t>(p - 1)] = ZorUtilDataValueGetByRef(data, p) != 0.0 ? 1 : 0;
        return true;
    }
    if (const void* raw = ZorUtilDataValueGetReadableRawPtr(data)) {
        std::memcpy(out->bytes.data(), raw, out->bytes.size());
    } else {
        ZorUtilDataValueArrayGetByRef(data, 1, out->count, out->bytes.data());
    }
    return true;
}

bool fetchValues(ZorIndex zone, ZorIndex var, Values* out) {
    RequestGuard guard;
    ZorFieldData data = ZorUtilDataValueGetReadableDerivedRef(zone, var);
    if (data == nullptr)
        return false;
    return copyValues(data, out);
}

namespace {

// The first zero of n values, of either sign; the caller knows there is one.
template <typename T>
double firstZero(const T* values, int64_t n) {
    for (int64_t i = 0; i < n; ++i) {
        if (static_cast<double>(values[i]) == 0.0)
            return static_cast<double>(values[i]);
    }
    return 0.0;
}

// Smallest, largest and sum of n values, as doubles, in four interleaved
// lanes (value i goes to lane i mod 4), which the processor runs side by
// side: one running sum waits for each addition before the next. The loop is
// a function of its own: inside the caller the running values went to memory
// and back for every value, which took twice the time.
//
// The smallest and largest are those of the loop value by value from the
// first value on (lo = v < lo ? v : lo): NaN is passed over, and of zeros of
// both signs the first one met is kept, which is looked up where the lanes
// end on a zero. The sum is the lanes' sums added (0 + 2) + (1 + 3), then the
// values of an incomplete last group, in order.
template <typename T>
[[gnu::noinline]] void accumulate(const T* values, int64_t n, ValueStats* s) {
    const double infinity = std::numeric_limits<double>::infinity();
    double lo[4] = {infinity, infinity, infinity, infinity};
    double hi[4] = {-infinity, -infinity, -infinity, -infinity};
    double sum[4] = {0.0, 0.0, 0.0, 0.0};
    int64_t i = 0;
    for (; i + 4 <= n; i += 4) {
        for (int k = 0; k < 4; ++k) {
            const double v = static_cast<double>(values[i + k]);
            lo[k] = v < lo[k] ? v : lo[k];
            hi[k] = hi[k] < v ? v : hi[k];
            sum[k] += v;
        }
    }
    double low = infinity, high = -infinity, total = (sum[0] + sum[2]) + (sum[1] + sum[3]);
    for (int k = 0; k < 4; ++k) {
        low = lo[k] < low ? lo[k] : low;
        high = high < hi[k] ? hi[k] : high;
    }
    for (; i < n; ++i) {
        const double v = static_cast<double>(values[i]);
        low = v < low ? v : low;
        high = high < v ? v : high;
        total += v;
    }
    s->min = low == 0.0 ? firstZero(values, n) : low;
    s->max = high == 0.0 ? firstZero(values, n) : high;
    s->sum = total;
}

}  // namespace

// The statistics of `count` values of `type` at `raw`; false for a type
// without a raw layout (bits, for which a copy holds one byte per value).
static bool accumulateRaw(int32_t type, const void* raw, int64_t count, ValueStats* s) {
    switch (type) {
        case ZorFieldDataType_Double:
            accumulate(static_cast<const double*>(raw), count, s);
            return true;
        case ZorFieldDataType_Float:
            accumulate(static_cast<const float*>(raw), count, s);
            return true;
        case ZorFieldDataType_Int32:
            accumulate(static_cast<const int32_t*>(raw), count, s);
            return true;
        case ZorFieldDataType_Int16:
            accumulate(static_cast<const int16_t*>(raw), count, s);
            return true;
        case ZorFieldDataType_Byte:
            accumulate(static_cast<const unsigned char*>(raw), count, s);
            return true;
        default:
            return false;
    }
}

bool fetchValueStats(ZorIndex zone, ZorIndex var, Values* scratch, ValueStats* stats) {
    RequestGuard guard;
    ZorFieldData data = ZorUtilDataValueGetReadableDerivedRef(zone, var);
    if (data == nullptr)
        return false;
    const int32_t type = ZorUtilDataValueGetRefType(data);
    const int64_t count = ZorUtilDataValueGetCountByRef(data);
    if (bytesOf(type) == 0)
        return false;
    ValueStats s;
    s.pulled = true;
    s.count = count;
    const void* raw =
        count == 0 || type == ZorFieldDataType_Bit ? nullptr : ZorUtilDataValueGetReadableRawPtr(data);
    // Read where the host keeps the values: a copy of every array would cost
    // more than the statistics. Without a raw array (or without values), a
    // copy, taken the same way, so that both give the same figures.
    if (raw == nullptr || !accumulateRaw(type, raw, count, &s)) {
        if (!copyValues(data, scratch))
            return false;
        s.count = scratch->count;
        if (scratch->count > 0) {
            // Bits are copied as one byte each.
            const int32_t copied =
                scratch->type == ZorFieldDataType_Bit ? ZorFieldDataType_Byte : scratch->type;
            if (!accumulateRaw(copied, scratch->bytes.data(), scratch->count, &s))
                return false;
        }
    }
    *stats = s;
    return true;
}

int64_t countOutside(const int32_t* numbers, size_t n, int64_t points) {
    // One unsigned comparison a number: a negative one wraps above any limit,
    // and no 32-bit number reaches a limit of 2^31. Four lanes at a time, each
    // counting down by the comparison's -1, in rounds short enough that no
    // lane can wrap: a large map is read at the speed of memory.
    typedef uint32_t Lanes __attribute__((vector_size(16)));
    const uint32_t limit =
        static_cast<uint32_t>(std::min<int64_t>(std::max<int64_t>(points, 0), INT64_C(1) << 31));
    const Lanes limits = {limit, limit, limit, limit};
    constexpr size_t kRound = size_t(1) << 30;  // numbers per round
    int64_t count = 0;
    size_t i = 0;
    while (n - i >= 4) {
        const size_t end = i + std::min(kRound, (n - i) / 4 * 4);
        Lanes lanes = {0, 0, 0, 0};
        for (; i < end; i += 4) {
            Lanes v;
            std::memcpy(&v, numbers + i, sizeof v);
            lanes -= reinterpret_cast<Lanes>(v >= limits);
        }
        count += int64_t{lanes[0]} + lanes[1] + lanes[2] + lanes[3];
    }
    for (; i < n; ++i)
        count += static_cast<uint32_t>(numbers[i]) >= limit;
    return count;
}

bool countNodeMapOutside(ZorIndex zone, int64_t points, int64_t* outside) {
    RequestGuard guard;
    ZorNodeMap map = ZorUtilDataNodeGetReadableRef(zone);
    if (map == nullptr)
        return false;
    const size_t slots =
        static_cast<size_t>(ZorUtilDataNodeGetNodesPerElem(map) * ZorUtilDataNodeGetNumElems(map));
    int64_t count = 0;
    if (slots == 0) {
        *outside = 0;
        return true;
    }
    if (const void* raw = ZorUtilDataNodeGetRawPtrByRef(map)) {
        // Read where the host keeps the map: a copy of a large map costs as
        // much memory as the map, and on a fresh machine as much time as its
        // assembly.
        if (ZorUtilDataNodeGetRawItemType(map) == ZorRawItemType_Int64) {
            const int64_t* wide = static_cast<const int64_t*>(raw);
            for (size_t i = 0; i < slots; ++i)
                count += wide[i] < 0 || wide[i] >= points;
        } else {
            count = countOutside(static_cast<const int32_t*>(raw), slots, points);
        }
        *outside = count;
        return true;
    }
    // Without a raw pointer: one-based numbers through the copying getter, in chunks.
    std::vector<int32_t> chunk(1u << 16);
    for (size_t from = 0; from < slots; from += chunk.size()) {
        size_t n = std::min(chunk.size(), slots - from);
        ZorUtilDataNodeArrayGetByRef(map, static_cast<ZorIndex>(from + 1), static_cast<ZorIndex>(n),
                                     chunk.data());
        for (size_t i = 0; i < n; ++i) {
            const int64_t p = static_cast<int64_t>(chunk[i]) - 1;
            count += p < 0 || p >= points;
        }
    }
    *outside = count;
    return true;
}

bool fetchNodeMap(ZorIndex zone, int64_t* nodesPerElement, std::vector<int64_t>* nodes) {
    RequestGuard guard;
    ZorNodeMap map = ZorUtilDataNodeGetReadableRef(zone);
    if (map == nullptr)
        return false;
    const int64_t corners = ZorUtilDataNodeGetNodesPerElem(map);
    const int64_t elements = ZorUtilDataNodeGetNumElems(map);
    const size_t slots = static_cast<size_t>(corners * elements);
    *nodesPerElement = corners;
    nodes->resize(slots);
    if (slots == 0)
        return true;
    if (const void* raw = ZorUtilDataNodeGetRawPtrByRef(map)) {
        if (ZorUtilDataNodeGetRawItemType(map) == ZorRawItemType_Int64) {
            std::memcpy(nodes->data(), raw, slots * 8);
        } else {
            const int32_t* narrow = static_cast<const int32_t*>(raw);
            for (size_t i = 0; i < slots; ++i)
                (*nodes)[i] = narrow[i];
        }
        return true;
    }
    // Without a raw pointer: one-based numbers through the copying getter, in chunks.
    std::vector<int32_t> chunk(1u << 16);
    for (size_t from = 0; from < slots; from += chunk.size()) {
        size_t n = std::min(chunk.size(), slots - from);
        ZorUtilDataNodeArrayGetByRef(map, static_cast<ZorIndex>(from + 1), static_cast<ZorIndex>(n),
                                     chunk.data());
        for (size_t i = 0; i < n; ++i)
            (*nodes)[from + i] = static_cast<int64_t>(chunk[i]) - 1;
    }
    return true;
}

bool fetchFaceMap(ZorIndex zone, PolyFaces* faces) {
    RequestGuard guard;
    ZorFaceMap map = ZorUtilDataFaceMapGetReadableRef(zone);
    if (map == nullptr)
        return false;
    const ZorIndex numFaces = ZorUtilDataFaceMapGetNFaces(map);
    faces->start.assign(1, 0);
    faces->nodes.clear();
    faces->left.resize(static_cast<size_t>(numFaces));
    faces->right.resize(static_cast<size_t>(numFaces));
    for (ZorIndex f = 1; f <= numFaces; ++f) {
        ZorIndex n = ZorUtilDataFaceMapGetNFaceNodes(map, f);
        for (ZorIndex k = 1; k <= n; ++k)
            faces->nodes.push_back(ZorUtilDataFaceMapGetFaceNode(map, f, k) - 1);
        faces->start.push_back(static_cast<int64_t>(faces->nodes.size()));
        faces->left[static_cast<size_t>(f - 1)] = ZorUtilDataFaceMapGetLeftElem(map, f);
        faces->right[static_cast<size_t>(f - 1)] = ZorUtilDataFaceMapGetRightElem(map, f);
    }
    return true;
}

bool loadFaceNeighbors(ZorIndex zone) {
    RequestGuard guard;
    return ZorUtilDataFaceNbrGetReadableRef(zone) != nullptr;
}

}  // namespace fluentload
