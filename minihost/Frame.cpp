// The host's one frame: its unique id, plot type and mode, and the questions
// about its data set that need no data set to answer.
//
// There is no data set yet in this host, so the frame is always empty: no
// data set is available, its unique id is 0, and a reset leaves it empty.
#include <atomic>
#include <mutex>

#include "host/ZorData.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

namespace {

constexpr ZorUniqueID frameUniqueID = 1;  // the one frame's id

std::mutex frameMutex;  // guards the fields below
int32_t plotType = ZorPlotType_Sketch;
int dataLoadDepth = 0;  // open ZorUtilDataLoadBegin brackets

// True for plot types that show a data set, which the frame needs for them.
bool needsDataSet(int32_t type) {
    return type == ZorPlotType_Cartesian3D || type == ZorPlotType_Cartesian2D || type == ZorPlotType_XYLine ||
           type == ZorPlotType_PolarLine;
}

}  // namespace

extern "C" {

ZorUniqueID ZorUtilFrameGetUniqueID(void) {
    return frameUniqueID;
}

bool ZorUtilFrameReset(ZorUniqueID frameID) {
    if (frameID != frameUniqueID)
        return false;
    std::lock_guard<std::mutex> guard(frameMutex);
    plotType = ZorPlotType_Sketch;
    return true;
}

int32_t ZorUtilFrameGetPlotType(void) {
    std::lock_guard<std::mutex> guard(frameMutex);
    return plotType;
}

bool ZorUtilFrameSetPlotType(int32_t type) {
    if (type < ZorPlotType_Automatic || type > ZorPlotType_PolarLine)
        return false;
    if (needsDataSet(type) && !ZorUtilDataSetIsAvailable())
        return false;
    std::lock_guard<std::mutex> guard(frameMutex);
    plotType = type;
    return true;
}

bool ZorUtilDataSetIsAvailable(void) {
    return false;
}

bool ZorUtilDataSetIsAvailableByUniqueID(ZorUniqueID /*dataSetID*/) {
    return false;
}

ZorUniqueID ZorUtilDataSetGetUniqueID(void) {
    return 0;
}

bool ZorUtilDataSetIsLODAllowed(void) {
    return minihost::detail::loadOnDemandAllowed();
}

void ZorUtilDataLoadBegin(void) {
    std::lock_guard<std::mutex> guard(frameMutex);
    ++dataLoadDepth;
}

void ZorUtilDataLoadEnd(void) {
    std::lock_guard<std::mutex> guard(frameMutex);
    if (dataLoadDepth == 0)
        minihost::fatal("ZorUtilDataLoadEnd without ZorUtilDataLoadBegin");
    --dataLoadDepth;
}

}  // extern "C"

namespace minihost {

int dataLoadDepth() {
    std::lock_guard<std::mutex> guard(frameMutex);
    return ::dataLoadDepth;
}

namespace detail {

void resetFrame() {
    std::lock_guard<std::mutex> guard(frameMutex);
    plotType = ZorPlotType_Sketch;
    ::dataLoadDepth = 0;
}

}  // namespace detail
}  // namespace minihost
