// The host's data set: frame, data set, zones, variables, field data,
// load-on-demand, connectivity and the views derived from it, auxiliary data,
// XY maps and style.
//
// Zones and variables are numbered from 1 in the order they were made; their
// unique ids are never reused. Points, elements, faces and corners are
// numbered from 1 as well; only raw pointers are zero-based. A reader that
// asks for an item registered for load-on-demand makes the host load it,
// on the calling thread, with the add-on lock held.
#pragma once

#include <cstdint>

#include "host/ZorTypes.h"

extern "C" {

// ---- Frame ----------------------------------------------------------------------

// The unique id of the host's one frame (never 0).
ZOR_HOST_API ZorUniqueID ZorUtilFrameGetUniqueID(void);
// Takes the frame's data set away and puts the frame into sketch mode. False for an unknown frame.
ZOR_HOST_API bool ZorUtilFrameReset(ZorUniqueID frameID);
// Sets the frame's mode (a ZorFrameMode); false when the data set cannot be shown so.
ZOR_HOST_API bool ZorUtilFrameSetMode(int32_t frameMode);
// The frame's mode, a ZorFrameMode.
ZOR_HOST_API int32_t ZorUtilFrameGetMode(void);
// The frame's plot type, a ZorPlotType.
ZOR_HOST_API int32_t ZorUtilFrameGetPlotType(void);
// Sets the plot type; false (refused) for a type that needs a data set when there is none.
ZOR_HOST_API bool ZorUtilFrameSetPlotType(int32_t plotType);

// ---- Data set -------------------------------------------------------------------

// True when the frame has a data set.
ZOR_HOST_API bool ZorUtilDataSetIsAvailable(void);
// True when a data set of that unique id still exists.
ZOR_HOST_API bool ZorUtilDataSetIsAvailableByUniqueID(ZorUniqueID dataSetID);
// The unique id of the frame's data set; 0 when there is none.
ZOR_HOST_API ZorUniqueID ZorUtilDataSetGetUniqueID(void);
// True when the host's configuration allows load-on-demand.
ZOR_HOST_API bool ZorUtilDataSetIsLODAllowed(void);
// Makes a new data set in the frame, replacing the present one. Arguments:
// "DataSetTitle" (string), "VarNames" (string list, the variables made at once),
// "LoaderName" (string, optional). False, with the host's last error set, on failure.
ZOR_HOST_API bool ZorUtilDataSetCreateX(ZorArgList args);
// The title (a host string; null pointer: not wanted) and the numbers of zones
// and variables (null pointers allowed). False when there is no data set.
ZOR_HOST_API bool ZorUtilDataSetGetInfo(char** dataSetTitle, ZorIndex* numZones, ZorIndex* numVars);
// Number of zones; 0 without a data set.
ZOR_HOST_API ZorIndex ZorUtilDataSetGetNumZones(void);
// Number of variables; 0 without a data set.
ZOR_HOST_API ZorIndex ZorUtilDataSetGetNumVars(void);
// The largest strand id of any zone; 0 when no zone has a strand.
ZOR_HOST_API int32_t ZorUtilDataSetGetMaxStrandID(void);
// Adds a zone: name, sizes, a ZorZoneType and one ZorFieldDataType per variable
// (null: all Float); values are nodal and zero. False on failure.
ZOR_HOST_API bool ZorUtilDataSetAddZone(const char* name, ZorIndex iMax, ZorIndex jMax, ZorIndex kMax,
                                        int32_t zoneType, const int32_t* varDataTypes);
// Adds a zone. Arguments: "Name" (string), "ZoneType" (int), "IMax", "JMax",
// "KMax" (ints; for finite-element zones nodes, elements and 1, or the face
// count of a polytope zone), optional "ParentZone", "StrandID" (ints),
// "SolutionTime" (double), "VarDataType", "ValueLocation" (int32 arrays, one
// per variable), "DeferVarCreation" (int: storage made when first needed),
// "DeferNodeMapCreation" (int), "FaceNeighborMode" (int, a ZorFaceNeighborMode).
ZOR_HOST_API bool ZorUtilDataSetAddZoneX(ZorArgList args);
// Adds a nodal variable to every zone, with one ZorFieldDataType per zone (null: all Float).
ZOR_HOST_API bool ZorUtilDataSetAddVar(const char* name, const int32_t* fieldDataTypes);
// Adds a variable. Arguments: "Name" (string), optional "VarDataType",
// "ValueLocation" (int32 arrays, one per zone), "DeferVarCreation" (int).
ZOR_HOST_API bool ZorUtilDataSetAddVarX(ZorArgList args);
// Brackets a load into the data set: the host holds back redraws until the
// matching end. Brackets nest.
ZOR_HOST_API void ZorUtilDataLoadBegin(void);
ZOR_HOST_API void ZorUtilDataLoadEnd(void);

// ---- Zones ------------------------------------------------------------------------

// Copies zones. Arguments: "SourceZones" (set). The copies come behind the last
// zone in set order and share every variable, node map, face map and neighbour
// item with their source.
ZOR_HOST_API bool ZorUtilZoneCopyX(ZorArgList args);
// The zone's unique id; 0 for no such zone.
ZOR_HOST_API ZorUniqueID ZorUtilZoneGetUniqueID(ZorIndex zone);
// The number of the zone with that unique id; 0 when there is none.
ZOR_HOST_API ZorIndex ZorUtilZoneGetNumByUniqueID(ZorUniqueID zoneID);
// Sizes (null pointers allowed): for an ordered zone I, J and K; for a
// finite-element zone the points, the elements, and the corners per element
// (classic types) or the faces (polytopes). False for no such zone.
ZOR_HOST_API bool ZorUtilZoneGetInfo(ZorIndex zone, ZorIndex* iMax, ZorIndex* jMax, ZorIndex* kMax);
// The zone's ZorZoneType; ZorZoneType_Invalid for no such zone.
ZOR_HOST_API int32_t ZorUtilZoneGetType(ZorIndex zone);
// True for a zone of a finite-element type (1 to 7).
ZOR_HOST_API bool ZorUtilZoneIsFiniteElement(ZorIndex zone);
// The zone's name as a host string; false for no such zone.
ZOR_HOST_API bool ZorUtilZoneGetName(ZorIndex zone, char** name);
// The parent zone's number; 0 for none.
ZOR_HOST_API ZorIndex ZorUtilZoneGetParentZone(ZorIndex zone);
// The zone's strand id; 0 when it belongs to no strand.
ZOR_HOST_API int32_t ZorUtilZoneGetStrandID(ZorIndex zone);
// The zone's solution time.
ZOR_HOST_API double ZorUtilZoneGetSolutionTime(ZorIndex zone);
// Sets the zone's solution time and tells listeners (state change 19), unless
// a SolutionTimeNotificationDeferrer holds the notice back. False for no such zone.
ZOR_HOST_API bool ZorUtilZoneSetSolutionTime(ZorIndex zone, double solutionTime);
// Gives the zones the host's automatic style for their plot type.
ZOR_HOST_API void ZorUtilZoneStyleApplyAuto(ZorSet zones);

// ---- Variables ----------------------------------------------------------------------

// The variable's name as a host string; false for no such variable.
ZOR_HOST_API bool ZorUtilVarGetName(ZorIndex var, char** name);
// The number of the first variable of exactly that name; 0 when there is none.
ZOR_HOST_API ZorIndex ZorUtilVarGetNumByName(const char* name);
// True when the variable is enabled (loaded variables are; all are in this host).
ZOR_HOST_API bool ZorUtilVarIsEnabled(ZorIndex var);
// The variable's unique id; 0 for no such variable.
ZOR_HOST_API ZorUniqueID ZorUtilVarGetUniqueID(ZorIndex var);
// The number of the variable with that unique id; 0 when there is none.
ZOR_HOST_API ZorIndex ZorUtilVarGetNumByUniqueID(ZorUniqueID varID);

// ---- Field data: one variable in one zone ---------------------------------------------

// The ZorFieldDataType of the variable in the zone; ZorFieldDataType_Invalid for none.
ZOR_HOST_API int32_t ZorUtilDataValueGetType(ZorIndex zone, ZorIndex var);
// The ZorValueLocation of the variable in the zone; ZorValueLocation_Invalid for none.
ZOR_HOST_API int32_t ZorUtilDataValueGetLocation(ZorIndex zone, ZorIndex var);
// True when the zone shares the variable's values with another zone.
ZOR_HOST_API bool ZorUtilDataValueIsShared(ZorIndex zone, ZorIndex var);
// Gives the zone its own copy of the variable, no longer shared. With copyValues
// the copy starts from the shared values (loaded if need be); otherwise it is an
// empty item of the same type and location, to be loaded or written anew.
ZOR_HOST_API bool ZorUtilDataValueBranchShared(ZorIndex zone, ZorIndex var, bool copyValues);
// Registers the loader of the variable's values in the zone. getValue and
// setValue are null when the values live in the host's storage. The host owns
// clientData from a true result on and hands it to cleanup at the end.
ZOR_HOST_API bool ZorUtilDataValueCustomLOD(ZorIndex zone, ZorIndex var, ZorLoadValueCallback load,
                                            ZorUnloadValueCallback unload, ZorCleanupValueCallback cleanup,
                                            ZorValueGetFunction getValue, ZorValueSetFunction setValue,
                                            ZorArbParam clientData);
// The client data given with ZorUtilDataValueCustomLOD; 0 when none.
ZOR_HOST_API ZorArbParam ZorUtilDataValueGetClientData(ZorFieldData fieldData);
// The stored values of the variable in the zone, loaded if need be; null when
// there are none (no such item, a failed load, or a custom getter holds them).
ZOR_HOST_API ZorFieldData ZorUtilDataValueGetReadableNativeRef(ZorIndex zone, ZorIndex var);
// The values as readers see them, loaded if need be, through the host's
// storage or the loader's getter; read them with ZorUtilDataValueGetByRef.
// Null for no such item or a failed load.
ZOR_HOST_API ZorFieldData ZorUtilDataValueGetReadableDerivedRef(ZorIndex zone, ZorIndex var);
// The values for writing, made or loaded if need be; null on failure.
ZOR_HOST_API ZorFieldData ZorUtilDataValueGetWritableNativeRef(ZorIndex zone, ZorIndex var);
// A readable raw array of the values (zero-based, of the item's ZorFieldDataType); null when there is none.
ZOR_HOST_API const void* ZorUtilDataValueGetReadableRawPtr(ZorFieldData fieldData);
// A writable raw array of the values; null when there is none.
ZOR_HOST_API void* ZorUtilDataValueGetWritableRawPtr(ZorFieldData fieldData);
// The ZorFieldDataType of the item's storage.
ZOR_HOST_API int32_t ZorUtilDataValueGetRefType(ZorFieldData fieldData);
// The ZorValueLocation of the item.
ZOR_HOST_API int32_t ZorUtilDataValueGetLocationByRef(ZorFieldData fieldData);
// Number of values: points for nodal items, elements for cell-centred ones.
ZOR_HOST_API ZorIndex ZorUtilDataValueGetCountByRef(ZorFieldData fieldData);
// The value at a point (from 1), as a double.
ZOR_HOST_API double ZorUtilDataValueGetByRef(ZorFieldData fieldData, ZorIndex point);
// Sets the value at a point (from 1), converted to the item's type.
ZOR_HOST_API void ZorUtilDataValueSetByRef(ZorFieldData fieldData, ZorIndex point, double value);
// The host's getter of the item, for fast reading in loops.
ZOR_HOST_API ZorValueGetFunction ZorUtilDataValueGetGetFunction(ZorFieldData fieldData);
// The host's setter of the item.
ZOR_HOST_API ZorValueSetFunction ZorUtilDataValueGetSetFunction(ZorFieldData fieldData);
// Copies count values into the item from position destOffset (from 1); the
// values are of the item's ZorFieldDataType (float for Float, double for Double).
ZOR_HOST_API void ZorUtilDataValueArraySetByRef(ZorFieldData fieldData, ZorIndex destOffset, ZorIndex count,
                                                const void* values);
// Copies count values out of the item from position sourceOffset (from 1), in the item's type.
ZOR_HOST_API void ZorUtilDataValueArrayGetByRef(ZorFieldData fieldData, ZorIndex sourceOffset, ZorIndex count,
                                                void* values);
// Tells the host the item's range, so that it need not compute it.
ZOR_HOST_API void ZorUtilDataValueSetMinMaxByRef(ZorFieldData fieldData, double minimum, double maximum);
// The same for a variable of a zone that may not be loaded yet. False for no such item.
ZOR_HOST_API bool ZorUtilDataValueSetMinMaxByZoneVar(ZorIndex zone, ZorIndex var, double minimum,
                                                     double maximum);
// The item's range: the one given, else computed from the values (loaded if need be).
ZOR_HOST_API void ZorUtilDataValueGetMinMaxByRef(ZorFieldData fieldData, double* minimum, double* maximum);

// ---- Node maps (element-to-node maps of classic finite-element zones) --------------------

// Registers the loader of the zone's node map. The host owns clientData from a true result on.
ZOR_HOST_API bool ZorUtilDataNodeCustomLOD(ZorIndex zone, ZorLoadNodeMapCallback load,
                                           ZorUnloadNodeMapCallback unload, ZorCleanupNodeMapCallback cleanup,
                                           ZorArbParam clientData);
// The client data given with ZorUtilDataNodeCustomLOD; 0 when none.
ZOR_HOST_API ZorArbParam ZorUtilDataNodeGetClientData(ZorNodeMap nodeMap);
// The zone's node map for reading, loaded if need be; null for none or a failed load.
ZOR_HOST_API ZorNodeMap ZorUtilDataNodeGetReadableRef(ZorIndex zone);
// The zone's node map for writing, made or loaded if need be; null on failure.
ZOR_HOST_API ZorNodeMap ZorUtilDataNodeGetWritableRef(ZorIndex zone);
// The map's raw array: zero-based node numbers, element after element, in the
// width of ZorUtilDataNodeGetRawItemType; null when the host offers none.
ZOR_HOST_API void* ZorUtilDataNodeGetRawPtrByRef(ZorNodeMap nodeMap);
// The width of the raw items, a ZorRawItemType.
ZOR_HOST_API int32_t ZorUtilDataNodeGetRawItemType(ZorNodeMap nodeMap);
// Corners per element of the map.
ZOR_HOST_API ZorIndex ZorUtilDataNodeGetNodesPerElem(ZorNodeMap nodeMap);
// Number of elements of the map.
ZOR_HOST_API ZorIndex ZorUtilDataNodeGetNumElems(ZorNodeMap nodeMap);
// The node (from 1) at a corner (from 1) of an element (from 1).
ZOR_HOST_API ZorIndex ZorUtilDataNodeGetByRef(ZorNodeMap nodeMap, ZorIndex element, ZorIndex corner);
// Sets the node (from 1) at a corner (from 1) of an element (from 1).
ZOR_HOST_API void ZorUtilDataNodeSetByRef(ZorNodeMap nodeMap, ZorIndex element, ZorIndex corner,
                                          ZorIndex node);
// Copies count one-based node numbers into the map, element after element,
// from slot destOffset (from 1) on.
ZOR_HOST_API void ZorUtilDataNodeArraySetByRef(ZorNodeMap nodeMap, ZorIndex destOffset, ZorIndex count,
                                               const int32_t* nodes);
// Copies count one-based node numbers out of the map from slot sourceOffset (from 1).
ZOR_HOST_API void ZorUtilDataNodeArrayGetByRef(ZorNodeMap nodeMap, ZorIndex sourceOffset, ZorIndex count,
                                               int32_t* nodes);

// ---- Node-to-element maps (derived from the node map) ---------------------------------------

// The elements around each node of the zone, built from the node map (loaded if need be); null on failure.
ZOR_HOST_API ZorNodeToElemMap ZorUtilDataNodeToElemMapGetReadableRef(ZorIndex zone);
// Number of elements that hold the node (from 1).
ZOR_HOST_API ZorIndex ZorUtilDataNodeToElemMapGetNumElems(ZorNodeToElemMap map, ZorIndex node);
// The element at place elemOffset (from 1) of the node's elements, in rising order.
ZOR_HOST_API ZorIndex ZorUtilDataNodeToElemMapGetElem(ZorNodeToElemMap map, ZorIndex node,
                                                      ZorIndex elemOffset);

// ---- Face maps (polygon and polyhedron zones) --------------------------------------------------

// Registers the loader of the zone's face map, with its sizes: faces, nodes of
// all faces together, and faces with a boundary connection. The host owns
// clientData from a true result on.
ZOR_HOST_API bool ZorUtilDataFaceMapCustomLOD(ZorIndex zone, ZorIndex numFaces, ZorIndex numFaceNodes,
                                              ZorIndex numFaceBndryConns, ZorLoadFaceMapCallback load,
                                              ZorUnloadFaceMapCallback unload,
                                              ZorCleanupFaceMapCallback cleanup, ZorArbParam clientData);
// The client data given with ZorUtilDataFaceMapCustomLOD; 0 when none.
ZOR_HOST_API ZorArbParam ZorUtilDataFaceMapGetClientData(ZorFaceMap faceMap);
// The zone's face map for reading, loaded if need be; null for none or a failed load.
ZOR_HOST_API ZorFaceMap ZorUtilDataFaceMapGetReadableRef(ZorIndex zone);
// The zone's face map for writing; null on failure.
ZOR_HOST_API ZorFaceMap ZorUtilDataFaceMapGetWritableRef(ZorIndex zone);
// Appends faces: their node counts (null: 2 each, the edges of a polygon zone)
// and their one-based nodes, all faces one after the other.
ZOR_HOST_API void ZorUtilDataFaceMapAssignNodes(ZorFaceMap faceMap, ZorIndex numFaces,
                                                const int32_t* faceNodeCounts, const int32_t* faceNodes);
// Sets the elements on the left and right of faces, in the order the faces were
// assigned: an element from 1, 0 for none, -k for the k-th boundary connection face.
ZOR_HOST_API void ZorUtilDataFaceMapAssignElems(ZorFaceMap faceMap, ZorIndex numFaces,
                                                const int32_t* leftElems, const int32_t* rightElems);
// Gives the boundary connection faces: per face its count of connections, and
// for all connections together the element (from 1) in the far zone and the
// far zone's unique id.
ZOR_HOST_API void ZorUtilDataFaceMapAssignBConns(ZorFaceMap faceMap, ZorIndex numFaceBndryConns,
                                                 const int32_t* connectionCounts,
                                                 const int32_t* connectionElems,
                                                 const int64_t* connectionZones);
// Number of faces of the map.
ZOR_HOST_API ZorIndex ZorUtilDataFaceMapGetNFaces(ZorFaceMap faceMap);
// Number of nodes of a face (from 1).
ZOR_HOST_API ZorIndex ZorUtilDataFaceMapGetNFaceNodes(ZorFaceMap faceMap, ZorIndex face);
// The node (from 1) at place nodeOffset (from 1) of a face.
ZOR_HOST_API ZorIndex ZorUtilDataFaceMapGetFaceNode(ZorFaceMap faceMap, ZorIndex face, ZorIndex nodeOffset);
// The left element of a face, as assigned (from 1, 0, or -k).
ZOR_HOST_API ZorIndex ZorUtilDataFaceMapGetLeftElem(ZorFaceMap faceMap, ZorIndex face);
// The right element of a face, as assigned.
ZOR_HOST_API ZorIndex ZorUtilDataFaceMapGetRightElem(ZorFaceMap faceMap, ZorIndex face);
// Number of connections of boundary connection face k (from 1).
ZOR_HOST_API ZorIndex ZorUtilDataFaceMapGetNBndryConns(ZorFaceMap faceMap, ZorIndex bndryConnFace);
// Connection c (from 1) of boundary connection face k: element and zone number
// (0 when the far zone no longer exists). False when out of range.
ZOR_HOST_API bool ZorUtilDataFaceMapGetBndryConn(ZorFaceMap faceMap, ZorIndex bndryConnFace,
                                                 ZorIndex connection, ZorIndex* element, ZorIndex* zone);

// ---- Element faces (derived) ---------------------------------------------------------------

// The faces of each element of the zone, built from its face map or node map
// (loaded if need be); null on failure.
ZOR_HOST_API ZorElemToFaceMap ZorUtilDataElemGetReadableRef(ZorIndex zone);
// Number of faces of an element (from 1).
ZOR_HOST_API ZorIndex ZorUtilDataElemGetNumFaces(ZorElemToFaceMap map, ZorIndex element);
// Face faceOffset (from 1) of an element: a face of the face map for a polytope
// zone, a local face number (the host's face table) for a classic zone.
ZOR_HOST_API ZorIndex ZorUtilDataElemGetFace(ZorElemToFaceMap map, ZorIndex element, ZorIndex faceOffset);
// The distinct nodes of an element, in the order its faces meet them (around
// the polygon for a polygon zone), written to nodes up to capacity. Returns
// their number, which may exceed capacity; 0 for no such element.
ZOR_HOST_API ZorIndex ZorUtilDataFECellGetUniqueNodes(ZorIndex zone, ZorIndex element, ZorIndex* nodes,
                                                      ZorIndex capacity);

// ---- Face neighbours ---------------------------------------------------------------------------

// Registers the loader of the zone's face neighbours; mode is a
// ZorFaceNbrLODMode. The host owns clientData from a true result on.
ZOR_HOST_API bool ZorUtilDataFaceNbrCustomLOD(ZorIndex zone, int32_t mode, ZorLoadFaceNbrCallback load,
                                              ZorUnloadFaceNbrCallback unload,
                                              ZorCleanupFaceNbrCallback cleanup, ZorArbParam clientData);
// The client data given with ZorUtilDataFaceNbrCustomLOD; 0 when none.
ZOR_HOST_API ZorArbParam ZorUtilDataFaceNbrGetClientData(ZorFaceNeighbor faceNeighbor);
// Gives face `face` (local face number, from 1) of an element (from 1) its
// neighbours: elements (from 1) and the unique ids of their zones.
// obscuresFace says that the neighbours cover the whole face.
ZOR_HOST_API void ZorUtilDataFaceNbrAssignByRef(ZorFaceNeighbor faceNeighbor, ZorIndex element, ZorIndex face,
                                                bool obscuresFace, ZorIndex numNeighbors,
                                                const int32_t* neighborElems, const int64_t* neighborZones);
// The zone's face neighbours for reading: those assigned and, by the zone's
// mode, those the host finds inside the zone; loaded if need be. Null on failure.
ZOR_HOST_API ZorFaceNeighbor ZorUtilDataFaceNbrGetReadableRef(ZorIndex zone);
// Number of neighbours across a local face (from 1) of an element (from 1).
ZOR_HOST_API ZorIndex ZorUtilDataFaceNbrGetNumNByRef(ZorFaceNeighbor faceNeighbor, ZorIndex element,
                                                     ZorIndex face);
// Neighbour nbrOffset (from 1): its element and its zone number, 0 for the zone itself.
ZOR_HOST_API void ZorUtilDataFaceNbrGetNbrByRef(ZorFaceNeighbor faceNeighbor, ZorIndex element, ZorIndex face,
                                                ZorIndex nbrOffset, ZorIndex* neighborElem,
                                                ZorIndex* neighborZone);

// ---- Auxiliary data -------------------------------------------------------------------------------

// The auxiliary data of the data set; null without a data set.
ZOR_HOST_API ZorAuxDataRef ZorUtilAuxDataDataSetGetRef(void);
// The auxiliary data of a zone; null for no such zone.
ZOR_HOST_API ZorAuxDataRef ZorUtilAuxDataZoneGetRef(ZorIndex zone);
// Sets an item (replacing one of the same name): its value is a string for
// ZorAuxDataType_String; retain says whether it is saved with the data set.
ZOR_HOST_API bool ZorUtilAuxDataSetItem(ZorAuxDataRef auxData, const char* name, const char* value,
                                        int32_t type, bool retain);
// Number of items.
ZOR_HOST_API ZorIndex ZorUtilAuxDataGetNumItems(ZorAuxDataRef auxData);
// Item `index` (from 1, in order of first setting): name and value as host
// strings (null pointers: not wanted), type and retain. False when out of range.
ZOR_HOST_API bool ZorUtilAuxDataGetItemByIndex(ZorAuxDataRef auxData, ZorIndex index, char** name,
                                               char** value, int32_t* type, bool* retain);
// The value of the item of that name as a host string; false when there is none.
ZOR_HOST_API bool ZorUtilAuxDataGetItemByName(ZorAuxDataRef auxData, const char* name, char** value);
// Deletes the item of that name; false when there is none.
ZOR_HOST_API bool ZorUtilAuxDataDeleteItemByName(ZorAuxDataRef auxData, const char* name);

// ---- XY maps and style ---------------------------------------------------------------------------------
//
// In XY mode map m draws variable m + 1 against variable 1 in zone 1.

// Number of XY maps of the frame.
ZOR_HOST_API ZorIndex ZorUtilXYMapGetCount(void);
// Sets an index attribute of the maps in the set: attribute "IRange", "JRange"
// or "KRange", subAttribute "Min", "Max" or "Skip". False for an unknown name.
ZOR_HOST_API bool ZorUtilXYMapSetIndices(const char* attribute, const char* subAttribute, ZorSet maps,
                                         ZorIndex value);
// Reads back an index attribute of one map.
ZOR_HOST_API bool ZorUtilXYMapGetIndices(ZorIndex map, const char* attribute, const char* subAttribute,
                                         ZorIndex* value);
// Makes the maps of the set active by a ZorAssignOp.
ZOR_HOST_API bool ZorUtilXYMapSetActive(ZorSet maps, int32_t assignOp);
// True when the map is active.
ZOR_HOST_API bool ZorUtilXYMapIsActive(ZorIndex map);
// Sets a style value named by up to three words (null for fewer), with two
// offsets (0 where the path takes none). An integer style takes intValue, a
// number doubleValue. notify tells listeners (state change 7). False without a first word.
ZOR_HOST_API bool ZorUtilStyleSetLowLevel(const char* word1, const char* word2, const char* word3,
                                          ZorIndex offset1, ZorIndex offset2, ZorArbParam intValue,
                                          double doubleValue, bool notify);
// Reads back a style value set before; false when it was never set.
ZOR_HOST_API bool ZorUtilStyleGetLowLevel(const char* word1, const char* word2, const char* word3,
                                          ZorIndex offset1, ZorIndex offset2, ZorArbParam* intValue,
                                          double* doubleValue);

}  // extern "C"
