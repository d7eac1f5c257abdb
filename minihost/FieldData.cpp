// Field data: the values of one variable in one zone, their load-on-demand
// registration, their sharing between zone copies, and every way of reading
// and writing them.
#include <cmath>
#include <cstring>
#include <limits>

#include "host/ZorData.h"
#include "minihost/DataModel.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

using namespace minihost::data;

void ZorFieldDataImpl::makeStorage() {
    if (customGet == nullptr && bytes.empty()) {
        bytes = ZeroedVector<unsigned char>(static_cast<size_t>(count) * valueSize(type));
        arrayWrites.clear();
    }
}

void ZorFieldDataImpl::dropStorage() {
    bytes = ZeroedVector<unsigned char>();
    arrayWrites.clear();
}

namespace {

// The item of a variable in a zone, or null (takes dataMutex).
std::shared_ptr<ZorFieldDataImpl> itemOf(ZorIndex zone, ZorIndex var) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    if (z == nullptr || var < 1 || var > static_cast<ZorIndex>(z->values.size()))
        return nullptr;
    return z->values[static_cast<size_t>(var - 1)];
}

void checkPoint(const ZorFieldDataImpl* item, ZorIndex point, const char* call) {
    if (item == nullptr)
        minihost::fatal(std::string(call) + " called with a null field data handle");
    if (point < 1 || point > item->count) {
        minihost::fatal(std::string(call) + ": point " + std::to_string(point) + " is outside 1 to " +
                        std::to_string(item->count) + " of " + item->what);
    }
}

double readValue(const ZorFieldDataImpl* item, ZorIndex point) {
    const unsigned char* at = item->bytes.data() + static_cast<size_t>(point - 1) * valueSize(item->type);
    switch (item->type) {
        case ZorFieldDataType_Float: {
            float v;
            std::memcpy(&v, at, 4);
            return v;
        }
        case ZorFieldDataType_Double: {
            double v;
            std::memcpy(&v, at, 8);
            return v;
        }
        case ZorFieldDataType_Int32: {
            int32_t v;
            std::memcpy(&v, at, 4);
            return v;
        }
        case ZorFieldDataType_Int16: {
            int16_t v;
            std::memcpy(&v, at, 2);
            return v;
        }
        case ZorFieldDataType_Byte:
            return *at;
        default:
            return *at != 0 ? 1.0 : 0.0;
    }
}

void writeValue(ZorFieldDataImpl* item, ZorIndex point, double value) {
    unsigned char* at = item->bytes.data() + static_cast<size_t>(point - 1) * valueSize(item->type);
    switch (item->type) {
        case ZorFieldDataType_Float: {
            float v = static_cast<float>(value);
            std::memcpy(at, &v, 4);
            break;
        }
        case ZorFieldDataType_Double:
            std::memcpy(at, &value, 8);
            break;
        case ZorFieldDataType_Int32: {
            int32_t v = static_cast<int32_t>(std::lround(value));
            std::memcpy(at, &v, 4);
            break;
        }
        case ZorFieldDataType_Int16: {
            int16_t v = static_cast<int16_t>(std::lround(value));
            std::memcpy(at, &v, 2);
            break;
        }
        case ZorFieldDataType_Byte:
            *at = static_cast<unsigned char>(std::lround(value));
            break;
        default:
            *at = value != 0.0 ? 1 : 0;
            break;
    }
}

// The item's storage must exist for a plain read or write.
void checkStored(const ZorFieldDataImpl* item, const char* call) {
    if (item->customGet == nullptr && item->bytes.empty() && item->count > 0) {
        minihost::fatal(std::string(call) + ": " + item->what + " is not loaded");
    }
}

double getFunction(const ZorFieldData fieldData, ZorIndex point) {
    checkPoint(fieldData, point, "ZorUtilDataValueGetByRef");
    if (fieldData->customGet != nullptr)
        return fieldData->customGet(fieldData, point);
    checkStored(fieldData, "ZorUtilDataValueGetByRef");
    return readValue(fieldData, point);
}

void setFunction(ZorFieldData fieldData, ZorIndex point, double value) {
    checkPoint(fieldData, point, "ZorUtilDataValueSetByRef");
    if (fieldData->customSet != nullptr) {
        fieldData->customSet(fieldData, point, value);
        return;
    }
    checkStored(fieldData, "ZorUtilDataValueSetByRef");
    writeValue(fieldData, point, value);
    fieldData->hasMinMax = false;
}

}  // namespace

extern "C" {

int32_t ZorUtilDataValueGetType(ZorIndex zone, ZorIndex var) {
    auto item = itemOf(zone, var);
    return item == nullptr ? ZorFieldDataType_Invalid : item->type;
}

int32_t ZorUtilDataValueGetLocation(ZorIndex zone, ZorIndex var) {
    auto item = itemOf(zone, var);
    return item == nullptr ? ZorValueLocation_Invalid : item->location;
}

bool ZorUtilDataValueIsShared(ZorIndex zone, ZorIndex var) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    if (z == nullptr || var < 1 || var > static_cast<ZorIndex>(z->values.size()))
        return false;
    ZorFieldDataImpl* item = z->values[static_cast<size_t>(var - 1)].get();
    for (const Zone& other : dataSet->zones) {
        if (&other != z && other.values[static_cast<size_t>(var - 1)].get() == item)
            return true;
    }
    return false;
}

bool ZorUtilDataValueBranchShared(ZorIndex zone, ZorIndex var, bool copyValues) {
    auto source = itemOf(zone, var);
    if (source == nullptr)
        return false;
    if (!ZorUtilDataValueIsShared(zone, var))
        return true;  // already its own
    if (copyValues && !ensureLoaded(*source))
        return false;
    auto branch = std::make_shared<ZorFieldDataImpl>();
    branch->type = source->type;
    branch->location = source->location;
    branch->count = source->count;
    branch->what = source->what + " (branched)";
    if (copyValues) {
        branch->makeStorage();
        for (ZorIndex p = 1; p <= source->count; ++p)
            writeValue(branch.get(), p, getFunction(source.get(), p));
        branch->state = LodItem::Loaded;
    }
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    if (z == nullptr)
        return false;
    z->values[static_cast<size_t>(var - 1)] = branch;
    return true;
}

bool ZorUtilDataValueCustomLOD(ZorIndex zone, ZorIndex var, ZorLoadValueCallback load,
                               ZorUnloadValueCallback unload, ZorCleanupValueCallback cleanup,
                               ZorValueGetFunction getValue, ZorValueSetFunction setValue,
                               ZorArbParam clientData) {
    if (load == nullptr || unload == nullptr || cleanup == nullptr)
        return false;
    auto item = itemOf(zone, var);
    if (item == nullptr)
        return false;
    return registerLoader(*item, load, unload, cleanup, clientData, [&](ZorFieldDataImpl& values) {
        values.customGet = getValue;
        values.customSet = setValue;
    });
}

ZorArbParam ZorUtilDataValueGetClientData(ZorFieldData fieldData) {
    return fieldData == nullptr ? 0 : fieldData->clientData;
}

ZorFieldData ZorUtilDataValueGetReadableNativeRef(ZorIndex zone, ZorIndex var) {
    auto item = itemOf(zone, var);
    if (item == nullptr || item->customGet != nullptr || !ensureLoaded(*item))
        return nullptr;
    return item.get();
}

ZorFieldData ZorUtilDataValueGetReadableDerivedRef(ZorIndex zone, ZorIndex var) {
    auto item = itemOf(zone, var);
    if (item == nullptr || !ensureLoaded(*item))
        return nullptr;
    return item.get();
}

ZorFieldData ZorUtilDataValueGetWritableNativeRef(ZorIndex zone, ZorIndex var) {
    auto item = itemOf(zone, var);
    if (item == nullptr || item->customGet != nullptr || !ensureLoaded(*item))
        return nullptr;
    item->hasMinMax = false;
    return item.get();
}

const void* ZorUtilDataValueGetReadableRawPtr(ZorFieldData fieldData) {
    if (fieldData == nullptr || !rawPointersOffered() || fieldData->bytes.empty() ||
        fieldData->type == ZorFieldDataType_Bit) {
        return nullptr;
    }
    return fieldData->bytes.data();
}

void* ZorUtilDataValueGetWritableRawPtr(ZorFieldData fieldData) {
    if (fieldData == nullptr || !rawPointersOffered() || fieldData->bytes.empty() ||
        fieldData->type == ZorFieldDataType_Bit) {
        return nullptr;
    }
    fieldData->hasMinMax = false;
    return fieldData->bytes.data();
}

int32_t ZorUtilDataValueGetRefType(ZorFieldData fieldData) {
    return fieldData == nullptr ? ZorFieldDataType_Invalid : fieldData->type;
}

int32_t ZorUtilDataValueGetLocationByRef(ZorFieldData fieldData) {
    return fieldData == nullptr ? ZorValueLocation_Invalid : fieldData->location;
}

ZorIndex ZorUtilDataValueGetCountByRef(ZorFieldData fieldData) {
    return fieldData == nullptr ? 0 : fieldData->count;
}

double ZorUtilDataValueGetByRef(ZorFieldData fieldData, ZorIndex point) {
    return getFunction(fieldData, point);
}

void ZorUtilDataValueSetByRef(ZorFieldData fieldData, ZorIndex point, double value) {
    setFunction(fieldData, point, value);
}

ZorValueGetFunction ZorUtilDataValueGetGetFunction(ZorFieldData) {
    return getFunction;
}

ZorValueSetFunction ZorUtilDataValueGetSetFunction(ZorFieldData) {
    return setFunction;
}

void ZorUtilDataValueArraySetByRef(ZorFieldData fieldData, ZorIndex destOffset, ZorIndex count,
                                   const void* values) {
    if (fieldData != nullptr)
        fieldData->arrayWrites.push_back(count);
    if (count == 0)
        return;
    checkPoint(fieldData, destOffset, "ZorUtilDataValueArraySetByRef");
    checkPoint(fieldData, destOffset + count - 1, "ZorUtilDataValueArraySetByRef");
    if (values == nullptr || count < 0)
        minihost::fatal("ZorUtilDataValueArraySetByRef called without values");
    checkStored(fieldData, "ZorUtilDataValueArraySetByRef");
    if (fieldData->customSet != nullptr)
        minihost::fatal("ZorUtilDataValueArraySetByRef on " + fieldData->what +
                        ", whose values the loader keeps");
    size_t size = valueSize(fieldData->type);
    std::memcpy(fieldData->bytes.data() + static_cast<size_t>(destOffset - 1) * size, values,
                static_cast<size_t>(count) * size);
    fieldData->hasMinMax = false;
}

void ZorUtilDataValueArrayGetByRef(ZorFieldData fieldData, ZorIndex sourceOffset, ZorIndex count,
                                   void* values) {
    if (count == 0)
        return;
    checkPoint(fieldData, sourceOffset, "ZorUtilDataValueArrayGetByRef");
    checkPoint(fieldData, sourceOffset + count - 1, "ZorUtilDataValueArrayGetByRef");
    if (fieldData->customGet != nullptr) {
        for (ZorIndex i = 0; i < count; ++i) {
            ZorFieldDataImpl scratch;  // converts the getter's double to the item's type
            scratch.type = fieldData->type;
            scratch.count = 1;
            scratch.bytes.assign(valueSize(fieldData->type), 0);
            writeValue(&scratch, 1, fieldData->customGet(fieldData, sourceOffset + i));
            std::memcpy(static_cast<unsigned char*>(values) + i * valueSize(fieldData->type),
                        scratch.bytes.data(), valueSize(fieldData->type));
        }
        return;
    }
    checkStored(fieldData, "ZorUtilDataValueArrayGetByRef");
    size_t size = valueSize(fieldData->type);
    std::memcpy(values, fieldData->bytes.data() + static_cast<size_t>(sourceOffset - 1) * size,
                static_cast<size_t>(count) * size);
}

void ZorUtilDataValueSetMinMaxByRef(ZorFieldData fieldData, double minimum, double maximum) {
    if (fieldData == nullptr)
        minihost::fatal("ZorUtilDataValueSetMinMaxByRef called with a null handle");
    fieldData->hasMinMax = true;
    fieldData->minimum = minimum;
    fieldData->maximum = maximum;
}

bool ZorUtilDataValueSetMinMaxByZoneVar(ZorIndex zone, ZorIndex var, double minimum, double maximum) {
    auto item = itemOf(zone, var);
    if (item == nullptr)
        return false;
    std::lock_guard<std::mutex> guard(item->mutex);
    item->hasMinMax = true;
    item->minimum = minimum;
    item->maximum = maximum;
    return true;
}

void ZorUtilDataValueGetMinMaxByRef(ZorFieldData fieldData, double* minimum, double* maximum) {
    if (fieldData == nullptr)
        minihost::fatal("ZorUtilDataValueGetMinMaxByRef called with a null handle");
    if (!fieldData->hasMinMax) {
        double lo = std::numeric_limits<double>::infinity();
        double hi = -lo;
        for (ZorIndex p = 1; p <= fieldData->count; ++p) {
            double v = getFunction(fieldData, p);
            lo = std::min(lo, v);
            hi = std::max(hi, v);
        }
        if (fieldData->count == 0)
            lo = hi = 0.0;
        fieldData->minimum = lo;
        fieldData->maximum = hi;
        fieldData->hasMinMax = true;
    }
    if (minimum != nullptr)
        *minimum = fieldData->minimum;
    if (maximum != nullptr)
        *maximum = fieldData->maximum;
}

}  // extern "C"
