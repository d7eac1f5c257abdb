// Host operations that this stand-in does not carry out yet.
//
// Each is defined, so that an add-on linked against the host resolves all its
// symbols, but stops the program with a clear message when called: nothing
// here pretends to work. An operation leaves this file when it is built.
#include "host/HostServices.h"
#include "host/Metadata.h"
#include "host/ZorData.h"
#include "host/ZorGUI.h"
#include "host/ZorUtil.h"
#include "minihost/Internal.h"

extern "C" {

// ---- host/ZorData.h ----

bool ZorUtilFrameSetMode(int32_t) {
    minihost::detail::notImplemented("ZorUtilFrameSetMode");
}
int32_t ZorUtilFrameGetMode(void) {
    minihost::detail::notImplemented("ZorUtilFrameGetMode");
}
bool ZorUtilDataSetCreateX(ZorArgList) {
    minihost::detail::notImplemented("ZorUtilDataSetCreateX");
}
bool ZorUtilDataSetGetInfo(char**, ZorIndex*, ZorIndex*) {
    minihost::detail::notImplemented("ZorUtilDataSetGetInfo");
}
ZorIndex ZorUtilDataSetGetNumZones(void) {
    minihost::detail::notImplemented("ZorUtilDataSetGetNumZones");
}
ZorIndex ZorUtilDataSetGetNumVars(void) {
    minihost::detail::notImplemented("ZorUtilDataSetGetNumVars");
}
int32_t ZorUtilDataSetGetMaxStrandID(void) {
    minihost::detail::notImplemented("ZorUtilDataSetGetMaxStrandID");
}
bool ZorUtilDataSetAddZone(const char*, ZorIndex, ZorIndex, ZorIndex, int32_t, const int32_t*) {
    minihost::detail::notImplemented("ZorUtilDataSetAddZone");
}
bool ZorUtilDataSetAddZoneX(ZorArgList) {
    minihost::detail::notImplemented("ZorUtilDataSetAddZoneX");
}
bool ZorUtilDataSetAddVar(const char*, const int32_t*) {
    minihost::detail::notImplemented("ZorUtilDataSetAddVar");
}
bool ZorUtilDataSetAddVarX(ZorArgList) {
    minihost::detail::notImplemented("ZorUtilDataSetAddVarX");
}
bool ZorUtilZoneCopyX(ZorArgList) {
    minihost::detail::notImplemented("ZorUtilZoneCopyX");
}
ZorUniqueID ZorUtilZoneGetUniqueID(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilZoneGetUniqueID");
}
ZorIndex ZorUtilZoneGetNumByUniqueID(ZorUniqueID) {
    minihost::detail::notImplemented("ZorUtilZoneGetNumByUniqueID");
}
bool ZorUtilZoneGetInfo(ZorIndex, ZorIndex*, ZorIndex*, ZorIndex*) {
    minihost::detail::notImplemented("ZorUtilZoneGetInfo");
}
int32_t ZorUtilZoneGetType(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilZoneGetType");
}
bool ZorUtilZoneIsFiniteElement(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilZoneIsFiniteElement");
}
bool ZorUtilZoneGetName(ZorIndex, char**) {
    minihost::detail::notImplemented("ZorUtilZoneGetName");
}
ZorIndex ZorUtilZoneGetParentZone(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilZoneGetParentZone");
}
int32_t ZorUtilZoneGetStrandID(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilZoneGetStrandID");
}
double ZorUtilZoneGetSolutionTime(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilZoneGetSolutionTime");
}
bool ZorUtilZoneSetSolutionTime(ZorIndex, double) {
    minihost::detail::notImplemented("ZorUtilZoneSetSolutionTime");
}
void ZorUtilZoneStyleApplyAuto(ZorSet) {
    minihost::detail::notImplemented("ZorUtilZoneStyleApplyAuto");
}
bool ZorUtilVarGetName(ZorIndex, char**) {
    minihost::detail::notImplemented("ZorUtilVarGetName");
}
ZorIndex ZorUtilVarGetNumByName(const char*) {
    minihost::detail::notImplemented("ZorUtilVarGetNumByName");
}
bool ZorUtilVarIsEnabled(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilVarIsEnabled");
}
ZorUniqueID ZorUtilVarGetUniqueID(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilVarGetUniqueID");
}
ZorIndex ZorUtilVarGetNumByUniqueID(ZorUniqueID) {
    minihost::detail::notImplemented("ZorUtilVarGetNumByUniqueID");
}
int32_t ZorUtilDataValueGetType(ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataValueGetType");
}
int32_t ZorUtilDataValueGetLocation(ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataValueGetLocation");
}
bool ZorUtilDataValueIsShared(ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataValueIsShared");
}
bool ZorUtilDataValueBranchShared(ZorIndex, ZorIndex, bool) {
    minihost::detail::notImplemented("ZorUtilDataValueBranchShared");
}
bool ZorUtilDataValueCustomLOD(ZorIndex, ZorIndex, ZorLoadValueCallback, ZorUnloadValueCallback,
                               ZorCleanupValueCallback, ZorValueGetFunction, ZorValueSetFunction,
                               ZorArbParam) {
    minihost::detail::notImplemented("ZorUtilDataValueCustomLOD");
}
ZorArbParam ZorUtilDataValueGetClientData(ZorFieldData) {
    minihost::detail::notImplemented("ZorUtilDataValueGetClientData");
}
ZorFieldData ZorUtilDataValueGetReadableNativeRef(ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataValueGetReadableNativeRef");
}
ZorFieldData ZorUtilDataValueGetReadableDerivedRef(ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataValueGetReadableDerivedRef");
}
ZorFieldData ZorUtilDataValueGetWritableNativeRef(ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataValueGetWritableNativeRef");
}
const void* ZorUtilDataValueGetReadableRawPtr(ZorFieldData) {
    minihost::detail::notImplemented("ZorUtilDataValueGetReadableRawPtr");
}
void* ZorUtilDataValueGetWritableRawPtr(ZorFieldData) {
    minihost::detail::notImplemented("ZorUtilDataValueGetWritableRawPtr");
}
int32_t ZorUtilDataValueGetRefType(ZorFieldData) {
    minihost::detail::notImplemented("ZorUtilDataValueGetRefType");
}
int32_t ZorUtilDataValueGetLocationByRef(ZorFieldData) {
    minihost::detail::notImplemented("ZorUtilDataValueGetLocationByRef");
}
ZorIndex ZorUtilDataValueGetCountByRef(ZorFieldData) {
    minihost::detail::notImplemented("ZorUtilDataValueGetCountByRef");
}
double ZorUtilDataValueGetByRef(ZorFieldData, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataValueGetByRef");
}
void ZorUtilDataValueSetByRef(ZorFieldData, ZorIndex, double) {
    minihost::detail::notImplemented("ZorUtilDataValueSetByRef");
}
ZorValueGetFunction ZorUtilDataValueGetGetFunction(ZorFieldData) {
    minihost::detail::notImplemented("ZorUtilDataValueGetGetFunction");
}
ZorValueSetFunction ZorUtilDataValueGetSetFunction(ZorFieldData) {
    minihost::detail::notImplemented("ZorUtilDataValueGetSetFunction");
}
void ZorUtilDataValueArraySetByRef(ZorFieldData, ZorIndex, ZorIndex, const void*) {
    minihost::detail::notImplemented("ZorUtilDataValueArraySetByRef");
}
void ZorUtilDataValueArrayGetByRef(ZorFieldData, ZorIndex, ZorIndex, void*) {
    minihost::detail::notImplemented("ZorUtilDataValueArrayGetByRef");
}
void ZorUtilDataValueSetMinMaxByRef(ZorFieldData, double, double) {
    minihost::detail::notImplemented("ZorUtilDataValueSetMinMaxByRef");
}
bool ZorUtilDataValueSetMinMaxByZoneVar(ZorIndex, ZorIndex, double, double) {
    minihost::detail::notImplemented("ZorUtilDataValueSetMinMaxByZoneVar");
}
void ZorUtilDataValueGetMinMaxByRef(ZorFieldData, double*, double*) {
    minihost::detail::notImplemented("ZorUtilDataValueGetMinMaxByRef");
}
bool ZorUtilDataNodeCustomLOD(ZorIndex, ZorLoadNodeMapCallback, ZorUnloadNodeMapCallback,
                              ZorCleanupNodeMapCallback, ZorArbParam) {
    minihost::detail::notImplemented("ZorUtilDataNodeCustomLOD");
}
ZorArbParam ZorUtilDataNodeGetClientData(ZorNodeMap) {
    minihost::detail::notImplemented("ZorUtilDataNodeGetClientData");
}
ZorNodeMap ZorUtilDataNodeGetReadableRef(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataNodeGetReadableRef");
}
ZorNodeMap ZorUtilDataNodeGetWritableRef(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataNodeGetWritableRef");
}
void* ZorUtilDataNodeGetRawPtrByRef(ZorNodeMap) {
    minihost::detail::notImplemented("ZorUtilDataNodeGetRawPtrByRef");
}
int32_t ZorUtilDataNodeGetRawItemType(ZorNodeMap) {
    minihost::detail::notImplemented("ZorUtilDataNodeGetRawItemType");
}
ZorIndex ZorUtilDataNodeGetNodesPerElem(ZorNodeMap) {
    minihost::detail::notImplemented("ZorUtilDataNodeGetNodesPerElem");
}
ZorIndex ZorUtilDataNodeGetNumElems(ZorNodeMap) {
    minihost::detail::notImplemented("ZorUtilDataNodeGetNumElems");
}
ZorIndex ZorUtilDataNodeGetByRef(ZorNodeMap, ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataNodeGetByRef");
}
void ZorUtilDataNodeSetByRef(ZorNodeMap, ZorIndex, ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataNodeSetByRef");
}
void ZorUtilDataNodeArraySetByRef(ZorNodeMap, ZorIndex, ZorIndex, const int32_t*) {
    minihost::detail::notImplemented("ZorUtilDataNodeArraySetByRef");
}
void ZorUtilDataNodeArrayGetByRef(ZorNodeMap, ZorIndex, ZorIndex, int32_t*) {
    minihost::detail::notImplemented("ZorUtilDataNodeArrayGetByRef");
}
ZorNodeToElemMap ZorUtilDataNodeToElemMapGetReadableRef(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataNodeToElemMapGetReadableRef");
}
ZorIndex ZorUtilDataNodeToElemMapGetNumElems(ZorNodeToElemMap, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataNodeToElemMapGetNumElems");
}
ZorIndex ZorUtilDataNodeToElemMapGetElem(ZorNodeToElemMap, ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataNodeToElemMapGetElem");
}
bool ZorUtilDataFaceMapCustomLOD(ZorIndex, ZorIndex, ZorIndex, ZorIndex, ZorLoadFaceMapCallback,
                                 ZorUnloadFaceMapCallback, ZorCleanupFaceMapCallback, ZorArbParam) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapCustomLOD");
}
ZorArbParam ZorUtilDataFaceMapGetClientData(ZorFaceMap) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapGetClientData");
}
ZorFaceMap ZorUtilDataFaceMapGetReadableRef(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapGetReadableRef");
}
ZorFaceMap ZorUtilDataFaceMapGetWritableRef(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapGetWritableRef");
}
void ZorUtilDataFaceMapAssignNodes(ZorFaceMap, ZorIndex, const int32_t*, const int32_t*) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapAssignNodes");
}
void ZorUtilDataFaceMapAssignElems(ZorFaceMap, ZorIndex, const int32_t*, const int32_t*) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapAssignElems");
}
void ZorUtilDataFaceMapAssignBConns(ZorFaceMap, ZorIndex, const int32_t*, const int32_t*, const int64_t*) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapAssignBConns");
}
ZorIndex ZorUtilDataFaceMapGetNFaces(ZorFaceMap) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapGetNFaces");
}
ZorIndex ZorUtilDataFaceMapGetNFaceNodes(ZorFaceMap, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapGetNFaceNodes");
}
ZorIndex ZorUtilDataFaceMapGetFaceNode(ZorFaceMap, ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapGetFaceNode");
}
ZorIndex ZorUtilDataFaceMapGetLeftElem(ZorFaceMap, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapGetLeftElem");
}
ZorIndex ZorUtilDataFaceMapGetRightElem(ZorFaceMap, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapGetRightElem");
}
ZorIndex ZorUtilDataFaceMapGetNBndryConns(ZorFaceMap, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapGetNBndryConns");
}
bool ZorUtilDataFaceMapGetBndryConn(ZorFaceMap, ZorIndex, ZorIndex, ZorIndex*, ZorIndex*) {
    minihost::detail::notImplemented("ZorUtilDataFaceMapGetBndryConn");
}
ZorElemToFaceMap ZorUtilDataElemGetReadableRef(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataElemGetReadableRef");
}
ZorIndex ZorUtilDataElemGetNumFaces(ZorElemToFaceMap, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataElemGetNumFaces");
}
ZorIndex ZorUtilDataElemGetFace(ZorElemToFaceMap, ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataElemGetFace");
}
ZorIndex ZorUtilDataFECellGetUniqueNodes(ZorIndex, ZorIndex, ZorIndex*, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataFECellGetUniqueNodes");
}
bool ZorUtilDataFaceNbrCustomLOD(ZorIndex, int32_t, ZorLoadFaceNbrCallback, ZorUnloadFaceNbrCallback,
                                 ZorCleanupFaceNbrCallback, ZorArbParam) {
    minihost::detail::notImplemented("ZorUtilDataFaceNbrCustomLOD");
}
ZorArbParam ZorUtilDataFaceNbrGetClientData(ZorFaceNeighbor) {
    minihost::detail::notImplemented("ZorUtilDataFaceNbrGetClientData");
}
void ZorUtilDataFaceNbrAssignByRef(ZorFaceNeighbor, ZorIndex, ZorIndex, bool, ZorIndex, const int32_t*,
                                   const int64_t*) {
    minihost::detail::notImplemented("ZorUtilDataFaceNbrAssignByRef");
}
ZorFaceNeighbor ZorUtilDataFaceNbrGetReadableRef(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataFaceNbrGetReadableRef");
}
ZorIndex ZorUtilDataFaceNbrGetNumNByRef(ZorFaceNeighbor, ZorIndex, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilDataFaceNbrGetNumNByRef");
}
void ZorUtilDataFaceNbrGetNbrByRef(ZorFaceNeighbor, ZorIndex, ZorIndex, ZorIndex, ZorIndex*, ZorIndex*) {
    minihost::detail::notImplemented("ZorUtilDataFaceNbrGetNbrByRef");
}
ZorAuxDataRef ZorUtilAuxDataDataSetGetRef(void) {
    minihost::detail::notImplemented("ZorUtilAuxDataDataSetGetRef");
}
ZorAuxDataRef ZorUtilAuxDataZoneGetRef(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilAuxDataZoneGetRef");
}
bool ZorUtilAuxDataSetItem(ZorAuxDataRef, const char*, const char*, int32_t, bool) {
    minihost::detail::notImplemented("ZorUtilAuxDataSetItem");
}
ZorIndex ZorUtilAuxDataGetNumItems(ZorAuxDataRef) {
    minihost::detail::notImplemented("ZorUtilAuxDataGetNumItems");
}
bool ZorUtilAuxDataGetItemByIndex(ZorAuxDataRef, ZorIndex, char**, char**, int32_t*, bool*) {
    minihost::detail::notImplemented("ZorUtilAuxDataGetItemByIndex");
}
bool ZorUtilAuxDataGetItemByName(ZorAuxDataRef, const char*, char**) {
    minihost::detail::notImplemented("ZorUtilAuxDataGetItemByName");
}
bool ZorUtilAuxDataDeleteItemByName(ZorAuxDataRef, const char*) {
    minihost::detail::notImplemented("ZorUtilAuxDataDeleteItemByName");
}
ZorIndex ZorUtilXYMapGetCount(void) {
    minihost::detail::notImplemented("ZorUtilXYMapGetCount");
}
bool ZorUtilXYMapSetIndices(const char*, const char*, ZorSet, ZorIndex) {
    minihost::detail::notImplemented("ZorUtilXYMapSetIndices");
}
bool ZorUtilXYMapGetIndices(ZorIndex, const char*, const char*, ZorIndex*) {
    minihost::detail::notImplemented("ZorUtilXYMapGetIndices");
}
bool ZorUtilXYMapSetActive(ZorSet, int32_t) {
    minihost::detail::notImplemented("ZorUtilXYMapSetActive");
}
bool ZorUtilXYMapIsActive(ZorIndex) {
    minihost::detail::notImplemented("ZorUtilXYMapIsActive");
}
bool ZorUtilStyleSetLowLevel(const char*, const char*, const char*, ZorIndex, ZorIndex, ZorArbParam, double,
                             bool) {
    minihost::detail::notImplemented("ZorUtilStyleSetLowLevel");
}
bool ZorUtilStyleGetLowLevel(const char*, const char*, const char*, ZorIndex, ZorIndex, ZorArbParam*,
                             double*) {
    minihost::detail::notImplemented("ZorUtilStyleGetLowLevel");
}

// ---- host/ZorGUI.h ----

ZorGUIID ZorGUIMainDialogWindow(void) {
    minihost::detail::notImplemented("ZorGUIMainDialogWindow");
}
ZorGUIID ZorGUIDialogCreateModal(ZorGUIID, int32_t, int32_t, const char*, ZorGUIActionCallback,
                                 ZorGUIActionCallback, ZorGUIActionCallback, ZorGUIActionCallback) {
    minihost::detail::notImplemented("ZorGUIDialogCreateModal");
}
void ZorGUIDialogLaunch(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIDialogLaunch");
}
void ZorGUIDialogDrop(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIDialogDrop");
}
bool ZorGUIDialogIsUp(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIDialogIsUp");
}
void ZorGUIDialogDestroy(ZorGUIID*) {
    minihost::detail::notImplemented("ZorGUIDialogDestroy");
}
void ZorGUISetSensitivity(ZorGUIID, bool) {
    minihost::detail::notImplemented("ZorGUISetSensitivity");
}
bool ZorGUIGetSensitivity(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIGetSensitivity");
}
void ZorGUISetVisibility(ZorGUIID, bool) {
    minihost::detail::notImplemented("ZorGUISetVisibility");
}
bool ZorGUIGetVisibility(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIGetVisibility");
}
ZorGUIID ZorGUIFrameAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, const char*) {
    minihost::detail::notImplemented("ZorGUIFrameAdd");
}
ZorGUIID ZorGUIFormAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t) {
    minihost::detail::notImplemented("ZorGUIFormAdd");
}
ZorGUIID ZorGUIFormAddPage(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIFormAddPage");
}
void ZorGUIFormShowPage(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIFormShowPage");
}
ZorGUIID ZorGUIFormGetShownPage(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIFormGetShownPage");
}
ZorGUIID ZorGUITabAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, ZorGUIValueCallback) {
    minihost::detail::notImplemented("ZorGUITabAdd");
}
ZorGUIID ZorGUITabAddPage(ZorGUIID, const char*) {
    minihost::detail::notImplemented("ZorGUITabAddPage");
}
void ZorGUITabSetCurrentPage(ZorGUIID, ZorGUIID) {
    minihost::detail::notImplemented("ZorGUITabSetCurrentPage");
}
ZorGUIID ZorGUITabGetCurrentPage(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUITabGetCurrentPage");
}
ZorGUIID ZorGUILabelAdd(ZorGUIID, int32_t, int32_t, const char*) {
    minihost::detail::notImplemented("ZorGUILabelAdd");
}
void ZorGUILabelSetText(ZorGUIID, const char*) {
    minihost::detail::notImplemented("ZorGUILabelSetText");
}
ZorGUIID ZorGUIButtonAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, const char*, ZorGUIActionCallback) {
    minihost::detail::notImplemented("ZorGUIButtonAdd");
}
ZorGUIID ZorGUIRadioBoxAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, const char*, ZorGUIValueCallback) {
    minihost::detail::notImplemented("ZorGUIRadioBoxAdd");
}
void ZorGUIRadioBoxSetToggle(ZorGUIID, int32_t) {
    minihost::detail::notImplemented("ZorGUIRadioBoxSetToggle");
}
int32_t ZorGUIRadioBoxGetToggle(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIRadioBoxGetToggle");
}
ZorGUIID ZorGUIToggleAdd(ZorGUIID, int32_t, int32_t, const char*, ZorGUIValueCallback) {
    minihost::detail::notImplemented("ZorGUIToggleAdd");
}
void ZorGUIToggleSet(ZorGUIID, bool) {
    minihost::detail::notImplemented("ZorGUIToggleSet");
}
bool ZorGUIToggleGet(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIToggleGet");
}
ZorGUIID ZorGUIOptionMenuAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, const char*, ZorGUIValueCallback) {
    minihost::detail::notImplemented("ZorGUIOptionMenuAdd");
}
void ZorGUIOptionMenuSet(ZorGUIID, int32_t) {
    minihost::detail::notImplemented("ZorGUIOptionMenuSet");
}
int32_t ZorGUIOptionMenuGet(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIOptionMenuGet");
}
ZorGUIID ZorGUIListAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, bool, ZorGUIValueCallback) {
    minihost::detail::notImplemented("ZorGUIListAdd");
}
void ZorGUIListAppendItem(ZorGUIID, const char*) {
    minihost::detail::notImplemented("ZorGUIListAppendItem");
}
void ZorGUIListReplaceItem(ZorGUIID, const char*, int32_t) {
    minihost::detail::notImplemented("ZorGUIListReplaceItem");
}
void ZorGUIListDeleteItemAtPos(ZorGUIID, int32_t) {
    minihost::detail::notImplemented("ZorGUIListDeleteItemAtPos");
}
void ZorGUIListDeleteAllItems(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIListDeleteAllItems");
}
int32_t ZorGUIListGetItemCount(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIListGetItemCount");
}
char* ZorGUIListGetString(ZorGUIID, int32_t) {
    minihost::detail::notImplemented("ZorGUIListGetString");
}
ZorSet ZorGUIListGetSelectedItems(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIListGetSelectedItems");
}
int32_t ZorGUIListGetSelectedItemCount(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIListGetSelectedItemCount");
}
void ZorGUIListSetSelectedItems(ZorGUIID, ZorSet) {
    minihost::detail::notImplemented("ZorGUIListSetSelectedItems");
}
void ZorGUIListDeselectAllItems(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIListDeselectAllItems");
}
ZorGUIID ZorGUITextFieldAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, ZorGUITextCallback) {
    minihost::detail::notImplemented("ZorGUITextFieldAdd");
}
void ZorGUITextFieldSetString(ZorGUIID, const char*) {
    minihost::detail::notImplemented("ZorGUITextFieldSetString");
}
char* ZorGUITextFieldGetString(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUITextFieldGetString");
}

}  // extern "C"

namespace zorvane {
namespace dataio {

struct MetadataDirector::Impl {};

MetadataDirector::MetadataDirector() {
    minihost::detail::notImplemented("zorvane::dataio::MetadataDirector");
}
MetadataDirector::~MetadataDirector() = default;

bool MetadataDirector::metadataFileAvailable(const std::string&, const std::string&) const {
    minihost::detail::notImplemented("MetadataDirector::metadataFileAvailable");
}

std::string MetadataDirector::metadataFilename(const std::string&, const std::string&) const {
    minihost::detail::notImplemented("MetadataDirector::metadataFilename");
}

std::string MetadataDirector::initializeMetadataFilename(const std::string&, const std::string&) {
    minihost::detail::notImplemented("MetadataDirector::initializeMetadataFilename");
}

void MetadataDirector::read(std::shared_ptr<InputStream>, MetadataDataset&) {
    minihost::detail::notImplemented("MetadataDirector::read");
}

void MetadataDirector::write(std::shared_ptr<OutputStream>, const MetadataDataset&) {
    minihost::detail::notImplemented("MetadataDirector::write");
}

DeferredMinMaxWriterFactory* MetadataDirector::variableMinMaxDeferredWriterFactory() {
    minihost::detail::notImplemented("MetadataDirector::variableMinMaxDeferredWriterFactory");
}

int64_t uniqueIdForBndryZone(int64_t, int64_t, int64_t, const std::shared_ptr<ZoneIdList>&) {
    minihost::detail::notImplemented("zorvane::dataio::uniqueIdForBndryZone");
}

}  // namespace dataio

namespace zorutilutil {

SolutionTimeNotificationDeferrer::SolutionTimeNotificationDeferrer() {
    minihost::detail::notImplemented("zorvane::zorutilutil::SolutionTimeNotificationDeferrer");
}
SolutionTimeNotificationDeferrer::~SolutionTimeNotificationDeferrer() = default;

}  // namespace zorutilutil
}  // namespace zorvane
