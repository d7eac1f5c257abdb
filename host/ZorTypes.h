// Handle types and numbers of the host application, as the add-on sees them.
//
// Every handle is opaque: the add-on only passes it back to the host. The
// numbers keep the meaning that the host gives them; the add-on's logic
// depends on several of them (zone types, value locations, state changes).
#pragma once

#include <cstdint>

#if defined(__GNUC__)
#define ZOR_HOST_API __attribute__((visibility("default")))
#else
#define ZOR_HOST_API
#endif

// ---- Opaque handles -------------------------------------------------------

typedef struct ZorAddOnImpl* ZorAddOnID;                // one per registered add-on
typedef struct ZorStringListImpl* ZorStringList;        // list of strings, numbered from 1
typedef struct ZorArgListImpl* ZorArgList;              // named arguments of an "...X" call
typedef struct ZorSetImpl* ZorSet;                      // set of positive integers, numbered from 1
typedef struct ZorMutexImpl* ZorMutex;                  // a non-recursive mutex of the host
typedef struct ZorAuxDataImpl* ZorAuxDataRef;           // auxiliary data of a data set or zone
typedef struct ZorFieldDataImpl* ZorFieldData;          // values of one variable in one zone
typedef struct ZorNodeMapImpl* ZorNodeMap;              // element-to-node map of a finite-element zone
typedef struct ZorFaceMapImpl* ZorFaceMap;              // face map of a polygon or polyhedron zone
typedef struct ZorFaceNeighborImpl* ZorFaceNeighbor;    // face neighbours of a zone
typedef struct ZorNodeToElemMapImpl* ZorNodeToElemMap;  // node-to-element map (derived)
typedef struct ZorElemToFaceMapImpl* ZorElemToFaceMap;  // faces of each element (derived)
typedef int32_t ZorGUIID;  // a dialog or control of the dialog toolkit; ZorGUIBadID until made

typedef intptr_t ZorArbParam;  // an argument whose meaning depends on the call
typedef uint64_t ZorUniqueID;  // unique id of a data set, zone or variable; 0 = none
typedef int64_t ZorIndex;      // host index or count; numbers start at 1

// ---- Numbers --------------------------------------------------------------

enum ZorZoneType : int32_t {
    ZorZoneType_Ordered = 0,
    ZorZoneType_FETriangle = 1,
    ZorZoneType_FEQuad = 2,
    ZorZoneType_FETetra = 3,
    ZorZoneType_FEBrick = 4,
    ZorZoneType_FELineSeg = 5,
    ZorZoneType_FEPolygon = 6,
    ZorZoneType_FEPolyhedron = 7,
    ZorZoneType_Invalid = -1
};

enum ZorValueLocation : int32_t {
    ZorValueLocation_CellCentered = 0,
    ZorValueLocation_Nodal = 1,
    ZorValueLocation_Invalid = -1
};

enum ZorFieldDataType : int32_t {
    ZorFieldDataType_Reserved = 0,  // no type: not yet given
    ZorFieldDataType_Float = 1,
    ZorFieldDataType_Double = 2,
    ZorFieldDataType_Int32 = 3,
    ZorFieldDataType_Int16 = 4,
    ZorFieldDataType_Byte = 5,
    ZorFieldDataType_Bit = 6,
    ZorFieldDataType_Invalid = -1
};

// Kinds of ZorUtilDialogMessageBox.
enum ZorMessageBoxType : int32_t {
    ZorMessageBoxType_Error = 0,
    ZorMessageBoxType_Warning = 1,
    ZorMessageBoxType_Information = 2,
    ZorMessageBoxType_Question = 3,  // OK / Cancel
    ZorMessageBoxType_YesNo = 4,
    ZorMessageBoxType_YesNoCancel = 5,
    ZorMessageBoxType_WarningOkCancel = 6
};

// Codes passed to state-change callbacks and to ZorUtilStateChanged.
enum ZorStateChange : int32_t {
    ZorStateChange_VarsAltered = 0,
    ZorStateChange_VarsAdded = 1,
    ZorStateChange_ZonesDeleted = 2,
    ZorStateChange_ZonesAdded = 3,
    ZorStateChange_NodeMapsAltered = 4,
    ZorStateChange_FrameDeleted = 5,
    ZorStateChange_NewTopFrame = 6,
    ZorStateChange_Style = 7,
    ZorStateChange_DataSetReset = 8,
    ZorStateChange_NewLayout = 9,
    ZorStateChange_CompleteReset = 10,
    ZorStateChange_LineMapAssignment = 11,
    ZorStateChange_ContourLevels = 12,
    ZorStateChange_ModalDialogLaunch = 13,
    ZorStateChange_ModalDialogDismiss = 14,
    ZorStateChange_QuitProgram = 15,
    ZorStateChange_ZoneName = 16,
    ZorStateChange_VarName = 17,
    ZorStateChange_AuxDataAdded = 18,
    ZorStateChange_SolutionTime = 19  // solution times of zones changed
};

// Plot types of a frame.
enum ZorPlotType : int32_t {
    ZorPlotType_Automatic = 0,
    ZorPlotType_Cartesian3D = 1,
    ZorPlotType_Cartesian2D = 2,
    ZorPlotType_XYLine = 3,
    ZorPlotType_Sketch = 4,
    ZorPlotType_PolarLine = 5
};

// Modes of a frame, as ZorUtilFrameSetMode takes them.
enum ZorFrameMode : int32_t {
    ZorFrameMode_Empty = 0,
    ZorFrameMode_ThreeD = 1,
    ZorFrameMode_TwoD = 2,
    ZorFrameMode_XY = 3,
    ZorFrameMode_Sketch = 4
};

// Width of the items of a node map or face map.
enum ZorRawItemType : int32_t { ZorRawItemType_Int32 = 0, ZorRawItemType_Int64 = 1 };

// Modes of face neighbour assignment.
enum ZorFaceNeighborMode : int32_t {
    ZorFaceNeighborMode_LocalOneToOne = 0,
    ZorFaceNeighborMode_LocalOneToMany = 1,
    ZorFaceNeighborMode_GlobalOneToOne = 2,
    ZorFaceNeighborMode_GlobalOneToMany = 3
};

// State-change callback of version 2: the code and a handle for the details.
typedef void (*ZorStateChangeCallback)(int32_t stateChange, ZorArbParam callData);
typedef void (*ZorOnIdleCallback)(ZorArbParam clientData);

// Loader callbacks.
typedef bool (*ZorDataSetLoaderCallback)(ZorStringList instructions);
typedef bool (*ZorDataSetLoaderSelectedCallback)(ZorStringList fileNames, bool advancedOptions, bool append,
                                                 ZorArbParam clientData);

// A set or string list position that holds no member.
constexpr ZorIndex ZorNoMember = -1;

// ---- Further numbers --------------------------------------------------------

// A dialog or control id that stands for nothing (not made yet).
constexpr ZorGUIID ZorGUIBadID = -1;

// How a set is applied to what it names (ZorUtilXYMapSetActive).
enum ZorAssignOp : int32_t {
    ZorAssignOp_Equals = 0,      // exactly the members of the set
    ZorAssignOp_PlusEquals = 1,  // the members are added
    ZorAssignOp_MinusEquals = 2  // the members are taken away
};

// Types of auxiliary data items.
enum ZorAuxDataType : int32_t { ZorAuxDataType_String = 0 };

// What the host does itself for the face neighbours of a zone whose
// neighbours a loader gives on demand (ZorUtilDataFaceNbrCustomLOD).
enum ZorFaceNbrLODMode : int32_t {
    ZorFaceNbrLODMode_LoaderOnly = 0,  // the loader gives every neighbour
    ZorFaceNbrLODMode_HostInside = 1   // the host finds neighbours inside the zone; the loader adds the rest
};

// Kinds of the host's file choosers.
enum ZorFileDialogType : int32_t {
    ZorFileDialogType_ReadSingleFile = 0,
    ZorFileDialogType_ReadMultiFile = 1,
    ZorFileDialogType_WriteFile = 2
};

// ---- Load-on-demand callbacks -----------------------------------------------
//
// The host calls a load callback on the thread that needs the item, with the
// add-on lock held; it returns false when the item could not be loaded. An
// unload callback lets go of what a load took (true when done). A cleanup
// callback runs once, when the item goes for good, and frees the client data.

typedef bool (*ZorLoadValueCallback)(ZorFieldData fieldData);
typedef bool (*ZorUnloadValueCallback)(ZorFieldData fieldData);
typedef void (*ZorCleanupValueCallback)(ZorFieldData fieldData);
// Custom value access instead of the host's storage: point from 1.
typedef double (*ZorValueGetFunction)(const ZorFieldData fieldData, ZorIndex point);
typedef void (*ZorValueSetFunction)(ZorFieldData fieldData, ZorIndex point, double value);

typedef bool (*ZorLoadNodeMapCallback)(ZorNodeMap nodeMap);
typedef bool (*ZorUnloadNodeMapCallback)(ZorNodeMap nodeMap);
typedef void (*ZorCleanupNodeMapCallback)(ZorNodeMap nodeMap);

typedef bool (*ZorLoadFaceMapCallback)(ZorFaceMap faceMap);
typedef bool (*ZorUnloadFaceMapCallback)(ZorFaceMap faceMap);
typedef void (*ZorCleanupFaceMapCallback)(ZorFaceMap faceMap);

typedef bool (*ZorLoadFaceNbrCallback)(ZorFaceNeighbor faceNeighbor);
typedef bool (*ZorUnloadFaceNbrCallback)(ZorFaceNeighbor faceNeighbor);
typedef void (*ZorCleanupFaceNbrCallback)(ZorFaceNeighbor faceNeighbor);

// ---- Dialog toolkit callbacks -------------------------------------------------

// A dialog's init, OK, cancel or help action, or a button press.
typedef void (*ZorGUIActionCallback)(void);
// A changed value of a radio box (toggle from 1), toggle (0 or 1), option
// menu (option from 1), list (the position last clicked, from 1) or tab
// control (the page's id).
typedef void (*ZorGUIValueCallback)(const int32_t* value);
// A text field's text when the user leaves the field; return true to accept it.
typedef bool (*ZorGUITextCallback)(const char* text);
