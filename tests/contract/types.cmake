qvt_test(type_ids_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/TypeIdsTest.cpp LABELS contract)
