# What a host finds after `cmake --install`: headers, the two libraries, the tool, and a package named qvt.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

if(NOT TARGET qvt_data)
    return()
endif()

set(package "${CMAKE_INSTALL_LIBDIR}/cmake/qvt")
install(TARGETS qvt_core qvt_data EXPORT qvtTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
set_target_properties(qvt_core qvt_data PROPERTIES INSTALL_RPATH "$ORIGIN")
if(TARGET qvt)
    install(TARGETS qvt RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    set_target_properties(qvt PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
endif()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/norvane" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" FILES_MATCHING PATTERN "*.h")

install(EXPORT qvtTargets NAMESPACE qvt:: FILE qvtConfig.cmake DESTINATION "${package}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/qvtConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/qvtConfigVersion.cmake" DESTINATION "${package}")
