# The sources of the type identifiers, for the list of the layer that takes them in.
set(QVT_TYPE_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/IType.cpp
    ${CMAKE_CURRENT_LIST_DIR}/TypeIds.cpp)
