// The data set: zones, variables, unique ids, copies, strands, solution times,
// auxiliary data, field data access, frame modes and XY maps.
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "DataSetTestUtil.h"
#include "host/HostServices.h"

namespace {

using namespace datasettest;

class HostDataSet : public ::testing::Test {
  protected:
    void SetUp() override {
        minihost::deleteDataSet();
        minihost::resetRecords();
    }
    void TearDown() override {
        minihost::deleteDataSet();
        minihost::resetRecords();
    }
};

TEST_F(HostDataSet, CreateMakesTheVariablesAndAFreshUniqueId) {
    newDataSet({"X", "Y", "Z"});
    ASSERT_TRUE(ZorUtilDataSetIsAvailable());
    ZorUniqueID first = ZorUtilDataSetGetUniqueID();
    EXPECT_NE(first, 0u);
    EXPECT_TRUE(ZorUtilDataSetIsAvailableByUniqueID(first));
    char* title = nullptr;
    ZorIndex zones = -1, vars = -1;
    ASSERT_TRUE(ZorUtilDataSetGetInfo(&title, &zones, &vars));
    EXPECT_STREQ(title, "Test");
    ZorUtilStringDealloc(&title);
    EXPECT_EQ(zones, 0);
    EXPECT_EQ(vars, 3);
    EXPECT_EQ(ZorUtilVarGetNumByName("Y"), 2);
    EXPECT_EQ(ZorUtilVarGetNumByName("y"), 0);  // names mind case
    newDataSet({"X"});
    EXPECT_NE(ZorUtilDataSetGetUniqueID(), first);
    EXPECT_FALSE(ZorUtilDataSetIsAvailableByUniqueID(first));
    EXPECT_EQ(minihost::hostStateChanges(), (std::vector<int32_t>{ZorStateChange_DataSetReset}));
}

TEST_F(HostDataSet, UniqueIdsAreNeverGivenTwice) {
    std::set<ZorUniqueID> seen;
    for (int round = 0; round < 3; ++round) {
        newDataSet({"X", "Y"});
        ASSERT_TRUE(addZone("a", ZorZoneType_FEQuad, 4, 1, 1));
        ASSERT_TRUE(addZone("b", ZorZoneType_Ordered, 2, 2, 1));
        for (ZorUniqueID id :
             {ZorUtilDataSetGetUniqueID(), ZorUtilZoneGetUniqueID(1), ZorUtilZoneGetUniqueID(2),
              ZorUtilVarGetUniqueID(1), ZorUtilVarGetUniqueID(2)}) {
            EXPECT_TRUE(seen.insert(id).second) << id;
        }
        EXPECT_EQ(ZorUtilZoneGetNumByUniqueID(ZorUtilZoneGetUniqueID(2)), 2);
        EXPECT_EQ(ZorUtilVarGetNumByUniqueID(ZorUtilVarGetUniqueID(1)), 1);
        minihost::deleteDataSet();
    }
    EXPECT_FALSE(ZorUtilDataSetIsAvailable());
}

TEST_F(HostDataSet, ZonesOfEveryTypeKeepTheirArguments) {
    newDataSet({"X", "Y", "P"});
    ASSERT_TRUE(addZone("ordered", ZorZoneType_Ordered, 3, 2, 1));
    ASSERT_TRUE(addZone("tri", ZorZoneType_FETriangle, 3, 1, 1));
    ASSERT_TRUE(addZone("quad", ZorZoneType_FEQuad, 4, 1, 1));
    ASSERT_TRUE(addZone("tet", ZorZoneType_FETetra, 4, 1, 1));
    ASSERT_TRUE(addZone("brick", ZorZoneType_FEBrick, 8, 1, 1, {}, {}, 7, 2.5, 2));
    ASSERT_TRUE(addZone("line", ZorZoneType_FELineSeg, 5, 4, 1));
    ASSERT_TRUE(addZone("polygon", ZorZoneType_FEPolygon, 4, 1, 4));
    ASSERT_TRUE(addZone("polyhedron", ZorZoneType_FEPolyhedron, 8, 1, 6,
                        {ZorFieldDataType_Double, ZorFieldDataType_Double, ZorFieldDataType_Int32},
                        {ZorValueLocation_Nodal, ZorValueLocation_Nodal, ZorValueLocation_CellCentered}));
    EXPECT_EQ(ZorUtilDataSetGetNumZones(), 8);
    const int32_t types[] = {0, 1, 2, 3, 4, 5, 6, 7};
    const ZorIndex corners[] = {1, 3, 4, 4, 8, 2, 4, 6};  // K: ordered 1, classic corners, polytope faces
    for (ZorIndex z = 1; z <= 8; ++z) {
        EXPECT_EQ(ZorUtilZoneGetType(z), types[z - 1]);
        EXPECT_EQ(ZorUtilZoneIsFiniteElement(z), z != 1);
        ZorIndex i, j, k;
        ASSERT_TRUE(ZorUtilZoneGetInfo(z, &i, &j, &k));
        EXPECT_EQ(k, corners[z - 1]) << z;
    }
    EXPECT_EQ(zoneName(5), "brick");
    EXPECT_EQ(ZorUtilZoneGetStrandID(5), 7);
    EXPECT_EQ(ZorUtilZoneGetSolutionTime(5), 2.5);
    EXPECT_EQ(ZorUtilZoneGetParentZone(5), 2);
    EXPECT_EQ(ZorUtilDataSetGetMaxStrandID(), 7);
    EXPECT_EQ(ZorUtilDataValueGetType(8, 3), ZorFieldDataType_Int32);
    EXPECT_EQ(ZorUtilDataValueGetLocation(8, 3), ZorValueLocation_CellCentered);
    EXPECT_EQ(ZorUtilDataValueGetType(2, 1), ZorFieldDataType_Float);
    EXPECT_EQ(ZorUtilDataValueGetLocation(2, 1), ZorValueLocation_Nodal);
    EXPECT_EQ(ZorUtilZoneGetType(9), ZorZoneType_Invalid);
}

TEST_F(HostDataSet, AddZoneXRefusesUnknownArgumentsAndBadTypes) {
    newDataSet({"X"});
    ZorArgList args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendString(args, "Name", "z");
    ZorUtilArgListAppendInt(args, "ZoneType", 2);
    ZorUtilArgListAppendInt(args, "Imax", 4);  // misspelt
    EXPECT_FALSE(ZorUtilDataSetAddZoneX(args));
    ZorUtilPostLastErrorMessage();
    ASSERT_EQ(minihost::messages().size(), 1u);
    EXPECT_EQ(minihost::messages()[0].text, "ZorUtilDataSetAddZoneX: unknown argument \"Imax\".");
    ZorUtilArgListClear(args);
    ZorUtilArgListAppendString(args, "Name", "z");
    ZorUtilArgListAppendInt(args, "ZoneType", 9);
    EXPECT_FALSE(ZorUtilDataSetAddZoneX(args));
    ZorUtilArgListDealloc(&args);
    EXPECT_EQ(ZorUtilDataSetGetNumZones(), 0);
}

TEST_F(HostDataSet, VariablesAddedLaterReachEveryZone) {
    newDataSet({"X"});
    ASSERT_TRUE(addZone("a", ZorZoneType_FEQuad, 4, 1, 1));
    ASSERT_TRUE(addZone("b", ZorZoneType_FETriangle, 3, 1, 1));
    const int32_t doubles[] = {ZorFieldDataType_Double, ZorFieldDataType_Float};
    ASSERT_TRUE(ZorUtilDataSetAddVar("T", doubles));
    EXPECT_EQ(ZorUtilDataValueGetType(1, 2), ZorFieldDataType_Double);
    EXPECT_EQ(ZorUtilDataValueGetType(2, 2), ZorFieldDataType_Float);
    EXPECT_EQ(ZorUtilDataValueGetLocation(2, 2), ZorValueLocation_Nodal);
    const int32_t cellCentred[] = {0, 0};
    ZorArgList args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendString(args, "Name", "P");
    ZorUtilArgListAppendArray(args, "VarDataType", doubles);
    ZorUtilArgListAppendArray(args, "ValueLocation", cellCentred);
    ZorUtilArgListAppendInt(args, "DeferVarCreation", 1);
    ASSERT_TRUE(ZorUtilDataSetAddVarX(args));
    ZorUtilArgListDealloc(&args);
    EXPECT_EQ(ZorUtilDataSetGetNumVars(), 3);
    EXPECT_EQ(ZorUtilDataValueGetLocation(1, 3), ZorValueLocation_CellCentered);
    ZorFieldData p = ZorUtilDataValueGetReadableNativeRef(1, 3);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(ZorUtilDataValueGetCountByRef(p), 1);  // one element
}

TEST_F(HostDataSet, ZoneCopiesShareValuesUntilBranched) {
    newDataSet({"X", "P"});
    ASSERT_TRUE(addZone("a", ZorZoneType_FEQuad, 4, 1, 1));
    ZorFieldData x = ZorUtilDataValueGetWritableNativeRef(1, 1);
    ZorFieldData p = ZorUtilDataValueGetWritableNativeRef(1, 2);
    for (ZorIndex i = 1; i <= 4; ++i) {
        ZorUtilDataValueSetByRef(x, i, i);
        ZorUtilDataValueSetByRef(p, i, 10 * i);
    }
    ZorAuxDataRef aux = ZorUtilAuxDataZoneGetRef(1);
    ASSERT_TRUE(ZorUtilAuxDataSetItem(aux, "Common.IsBoundaryZone", "TRUE", ZorAuxDataType_String, true));
    ZorSet sources = ZorUtilSetAlloc(true);
    ZorUtilSetAddMember(sources, 1, true);
    ZorArgList args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendSet(args, "SourceZones", sources);
    ASSERT_TRUE(ZorUtilZoneCopyX(args));
    ZorUtilArgListDealloc(&args);
    ZorUtilSetDealloc(&sources);
    ASSERT_EQ(ZorUtilDataSetGetNumZones(), 2);
    EXPECT_EQ(zoneName(2), "a");
    EXPECT_NE(ZorUtilZoneGetUniqueID(2), ZorUtilZoneGetUniqueID(1));
    EXPECT_TRUE(ZorUtilDataValueIsShared(2, 1));
    EXPECT_TRUE(ZorUtilDataValueIsShared(2, 2));
    char* value = nullptr;
    ASSERT_TRUE(ZorUtilAuxDataGetItemByName(ZorUtilAuxDataZoneGetRef(2), "Common.IsBoundaryZone", &value));
    EXPECT_STREQ(value, "TRUE");
    ZorUtilStringDealloc(&value);

    ASSERT_TRUE(ZorUtilDataValueBranchShared(2, 2, false));
    EXPECT_FALSE(ZorUtilDataValueIsShared(2, 2));
    EXPECT_FALSE(ZorUtilDataValueIsShared(1, 2));
    EXPECT_TRUE(ZorUtilDataValueIsShared(2, 1));
    ZorFieldData branched = ZorUtilDataValueGetWritableNativeRef(2, 2);
    EXPECT_EQ(ZorUtilDataValueGetByRef(branched, 3), 0.0);  // a fresh item
    ZorUtilDataValueSetByRef(branched, 3, -1.0);
    EXPECT_EQ(ZorUtilDataValueGetByRef(ZorUtilDataValueGetReadableNativeRef(1, 2), 3), 30.0);
    // The shared X changes for both.
    ZorUtilDataValueSetByRef(ZorUtilDataValueGetWritableNativeRef(2, 1), 1, 100.0);
    EXPECT_EQ(ZorUtilDataValueGetByRef(ZorUtilDataValueGetReadableNativeRef(1, 1), 1), 100.0);
    // A branch with copyValues starts from the shared values.
    ASSERT_TRUE(ZorUtilDataValueBranchShared(2, 1, true));
    EXPECT_EQ(ZorUtilDataValueGetByRef(ZorUtilDataValueGetReadableNativeRef(2, 1), 4), 4.0);
}

TEST_F(HostDataSet, SolutionTimeNoticesWaitForTheLastDeferrer) {
    newDataSet({"X"});
    ASSERT_TRUE(addZone("a", ZorZoneType_FEQuad, 4, 1, 1));
    ASSERT_TRUE(addZone("b", ZorZoneType_FEQuad, 4, 1, 1));
    ASSERT_TRUE(ZorUtilZoneSetSolutionTime(1, 0.5));
    EXPECT_EQ(minihost::hostStateChanges(), (std::vector<int32_t>{ZorStateChange_SolutionTime}));
    {
        zorvane::zorutilutil::SolutionTimeNotificationDeferrer outer;
        {
            zorvane::zorutilutil::SolutionTimeNotificationDeferrer inner;
            ASSERT_TRUE(ZorUtilZoneSetSolutionTime(1, 1.0));
            ASSERT_TRUE(ZorUtilZoneSetSolutionTime(2, 1.0));
        }
        EXPECT_EQ(minihost::hostStateChanges().size(), 1u);
    }
    EXPECT_EQ(minihost::hostStateChanges().size(), 2u);
    EXPECT_EQ(ZorUtilZoneGetSolutionTime(2), 1.0);
    EXPECT_FALSE(ZorUtilZoneSetSolutionTime(3, 1.0));
}

TEST_F(HostDataSet, AuxDataItemsAreReplacedByName) {
    newDataSet({"X"});
    ZorAuxDataRef aux = ZorUtilAuxDataDataSetGetRef();
    ASSERT_NE(aux, nullptr);
    ASSERT_TRUE(ZorUtilAuxDataSetItem(aux, "Common.UVar", "4", ZorAuxDataType_String, true));
    ASSERT_TRUE(ZorUtilAuxDataSetItem(aux, "Common.WVar", "6", ZorAuxDataType_String, true));
    ASSERT_TRUE(ZorUtilAuxDataSetItem(aux, "Common.WVar", "9", ZorAuxDataType_String, false));
    EXPECT_FALSE(ZorUtilAuxDataSetItem(aux, "", "x", ZorAuxDataType_String, true));
    EXPECT_EQ(ZorUtilAuxDataGetNumItems(aux), 2);
    char* name = nullptr;
    char* value = nullptr;
    int32_t type = -1;
    bool retain = true;
    ASSERT_TRUE(ZorUtilAuxDataGetItemByIndex(aux, 2, &name, &value, &type, &retain));
    EXPECT_STREQ(name, "Common.WVar");
    EXPECT_STREQ(value, "9");
    EXPECT_EQ(type, ZorAuxDataType_String);
    EXPECT_FALSE(retain);
    ZorUtilStringDealloc(&name);
    ZorUtilStringDealloc(&value);
    EXPECT_TRUE(ZorUtilAuxDataDeleteItemByName(aux, "Common.UVar"));
    EXPECT_FALSE(ZorUtilAuxDataGetItemByName(aux, "Common.UVar", &value));
    EXPECT_EQ(ZorUtilAuxDataGetNumItems(aux), 1);
}

TEST_F(HostDataSet, FieldDataOfEveryTypeReadsAndWrites) {
    newDataSet({"F", "D", "I", "S", "B"});
    ASSERT_TRUE(addZone("o", ZorZoneType_Ordered, 3, 1, 1,
                        {ZorFieldDataType_Float, ZorFieldDataType_Double, ZorFieldDataType_Int32,
                         ZorFieldDataType_Int16, ZorFieldDataType_Byte}));
    for (ZorIndex var = 1; var <= 5; ++var) {
        ZorFieldData data = ZorUtilDataValueGetWritableNativeRef(1, var);
        ASSERT_NE(data, nullptr);
        EXPECT_EQ(ZorUtilDataValueGetRefType(data), var);  // the type numbers run 1 to 5 here
        ZorValueSetFunction set = ZorUtilDataValueGetSetFunction(data);
        ZorValueGetFunction get = ZorUtilDataValueGetGetFunction(data);
        set(data, 1, 7.0);
        set(data, 3, 2.0);
        EXPECT_EQ(get(data, 1), 7.0);
        EXPECT_EQ(get(data, 2), 0.0);
        double lo, hi;
        ZorUtilDataValueGetMinMaxByRef(data, &lo, &hi);
        EXPECT_EQ(lo, 0.0);
        EXPECT_EQ(hi, 7.0);
    }
    ZorFieldData d = ZorUtilDataValueGetWritableNativeRef(1, 2);
    const double block[] = {1.5, -2.5};
    ZorUtilDataValueArraySetByRef(d, 2, 2, block);
    const double* raw = static_cast<const double*>(ZorUtilDataValueGetReadableRawPtr(d));
    ASSERT_NE(raw, nullptr);
    EXPECT_EQ(raw[0], 7.0);
    EXPECT_EQ(raw[2], -2.5);
    double back[3];
    ZorUtilDataValueArrayGetByRef(d, 1, 3, back);
    EXPECT_EQ(back[1], 1.5);
    ZorUtilDataValueSetMinMaxByRef(d, -10, 10);
    double lo, hi;
    ZorUtilDataValueGetMinMaxByRef(d, &lo, &hi);
    EXPECT_EQ(lo, -10);  // the range given stands
    minihost::setRawPointersOffered(false);
    EXPECT_EQ(ZorUtilDataValueGetReadableRawPtr(d), nullptr);
    minihost::setRawPointersOffered(true);
}

TEST(HostDataSetDeathTest, WritingOutsideTheValuesAborts) {
    minihost::deleteDataSet();
    newDataSet({"X"});
    ASSERT_TRUE(addZone("o", ZorZoneType_Ordered, 3, 1, 1));
    ZorFieldData x = ZorUtilDataValueGetWritableNativeRef(1, 1);
    const float four[4] = {1, 2, 3, 4};
    EXPECT_DEATH(ZorUtilDataValueArraySetByRef(x, 1, 4, four), "point 4 is outside 1 to 3");
    minihost::deleteDataSet();
}

TEST_F(HostDataSet, FrameModesFollowTheDataSet) {
    EXPECT_FALSE(ZorUtilFrameSetMode(ZorFrameMode_ThreeD));
    newDataSet({"Iteration", "Pressure", "Pressure Scale Factor"});
    ASSERT_TRUE(ZorUtilFrameSetMode(ZorFrameMode_XY));
    EXPECT_EQ(ZorUtilFrameGetPlotType(), ZorPlotType_XYLine);
    ASSERT_TRUE(ZorUtilFrameSetPlotType(ZorPlotType_Cartesian2D));
    EXPECT_EQ(ZorUtilFrameGetMode(), ZorFrameMode_TwoD);
    ASSERT_TRUE(ZorUtilFrameReset(ZorUtilFrameGetUniqueID()));
    EXPECT_FALSE(ZorUtilDataSetIsAvailable());
    EXPECT_EQ(ZorUtilFrameGetPlotType(), ZorPlotType_Sketch);
}

TEST_F(HostDataSet, XYMapsTakeRangesAndActivity) {
    newDataSet({"Iteration", "Pressure", "Pressure Scale Factor"});
    ASSERT_TRUE(ZorUtilFrameSetMode(ZorFrameMode_XY));
    ASSERT_EQ(ZorUtilXYMapGetCount(), 2);
    EXPECT_TRUE(ZorUtilXYMapIsActive(1));
    EXPECT_FALSE(ZorUtilXYMapIsActive(2));
    ZorSet maps = ZorUtilSetAlloc(true);
    ZorUtilSetAddMember(maps, 2, true);
    ASSERT_TRUE(ZorUtilXYMapSetIndices("IRange", "Min", maps, 3));
    EXPECT_FALSE(ZorUtilXYMapSetIndices("IRange", "Middle", maps, 3));
    ZorIndex value = 0;
    ASSERT_TRUE(ZorUtilXYMapGetIndices(2, "IRange", "Min", &value));
    EXPECT_EQ(value, 3);
    ASSERT_TRUE(ZorUtilXYMapGetIndices(1, "IRange", "Min", &value));
    EXPECT_EQ(value, 1);
    ASSERT_TRUE(ZorUtilXYMapSetActive(maps, ZorAssignOp_Equals));
    EXPECT_FALSE(ZorUtilXYMapIsActive(1));
    EXPECT_TRUE(ZorUtilXYMapIsActive(2));
    ZorUtilSetAddMember(maps, 3, true);
    EXPECT_FALSE(ZorUtilXYMapSetActive(maps, ZorAssignOp_Equals));  // no map 3
    ZorUtilSetDealloc(&maps);
}

TEST_F(HostDataSet, StyleValuesAreKeptByPath) {
    ASSERT_TRUE(ZorUtilStyleSetLowLevel("XYAxis", "YDetail", "CoordScale", 1, 0, 1, 0.0, true));
    ASSERT_TRUE(ZorUtilStyleSetLowLevel("XYAxis", "YDetail", "RangeMin", 1, 0, 0, 1e-5, true));
    EXPECT_FALSE(ZorUtilStyleSetLowLevel(nullptr, "YDetail", "RangeMin", 1, 0, 0, 1e-5, true));
    ZorArbParam i = -1;
    double d = -1;
    ASSERT_TRUE(ZorUtilStyleGetLowLevel("XYAxis", "YDetail", "CoordScale", 1, 0, &i, &d));
    EXPECT_EQ(i, 1);
    ASSERT_TRUE(ZorUtilStyleGetLowLevel("XYAxis", "YDetail", "RangeMin", 1, 0, &i, &d));
    EXPECT_EQ(d, 1e-5);
    EXPECT_FALSE(ZorUtilStyleGetLowLevel("XYAxis", "YDetail", "RangeMin", 2, 0, &i, &d));
    EXPECT_EQ(minihost::hostStateChanges(),
              (std::vector<int32_t>{ZorStateChange_Style, ZorStateChange_Style}));
}

TEST_F(HostDataSet, UniqueIdForBoundaryZoneNamesZonesByListOrDataSet) {
    newDataSet({"X"});
    ASSERT_TRUE(addZone("a", ZorZoneType_FEQuad, 4, 1, 1));
    ASSERT_TRUE(addZone("b", ZorZoneType_FEQuad, 4, 1, 1));
    auto ids = std::make_shared<zorvane::dataio::ZoneIdList>(zorvane::dataio::ZoneIdList{501, 502});
    using zorvane::dataio::uniqueIdForBndryZone;
    EXPECT_EQ(uniqueIdForBndryZone(0, 0, 77, ids), 77);
    EXPECT_EQ(uniqueIdForBndryZone(3, 1, 77, ids), 502);  // place 2 of the list
    EXPECT_EQ(uniqueIdForBndryZone(2, 5, 77, ids), static_cast<int64_t>(ZorUtilZoneGetUniqueID(2)));
    EXPECT_EQ(uniqueIdForBndryZone(9, 5, 77, nullptr), 0);
}

}  // namespace
