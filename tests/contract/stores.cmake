qvt_test(memory_store_test SOURCES ${CMAKE_CURRENT_LIST_DIR}/MemoryStoreTest.cpp LABELS contract threaded)

# The same with another offset of no record, defined by the program.
qvt_test(memory_store_other_badoff_test
    SOURCES
        ${CMAKE_CURRENT_LIST_DIR}/MemoryStoreTest.cpp
        ${CMAKE_CURRENT_LIST_DIR}/OtherBadoffTest.cpp
        ${PROJECT_SOURCE_DIR}/tests/support/OtherBadoff.cpp
    LABELS contract)

if(TARGET qvt_file)
    qvt_test(file_store_test
        SOURCES ${CMAKE_CURRENT_LIST_DIR}/FileStoreTest.cpp
        LABELS contract threaded
        LINK qvt_file)
endif()
