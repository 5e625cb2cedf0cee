# Units, number text and the words for types: what the handlers need of text and what needs none of them.
set(QVT_XML_UNITS_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/DefaultTypeNames.cpp
    ${CMAKE_CURRENT_LIST_DIR}/NumberText.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SevenDigits.cpp
    ${CMAKE_CURRENT_LIST_DIR}/UnitTable.cpp)
