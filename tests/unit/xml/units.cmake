qvt_test(xml_units_test LAYER xml SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/DefaultTypeNamesTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/NumberTextAgainstStreamsTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/NumberTextTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/UnitTableTest.cpp)
if(TARGET xml_units_test)
    target_compile_definitions(xml_units_test PRIVATE QVT_UNIT_TABLE_GOLDEN="${CMAKE_CURRENT_LIST_DIR}/unit-table.txt")
endif()
