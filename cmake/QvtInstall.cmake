# What a host finds after `cmake --install`, in three components: `runtime` (the shared libraries), `dev` (headers, the
# package qvt for find_package, pkg-config files, the pages) and `tools` (the program). Nothing installed holds a path of
# the build, so that a prefix can be moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

if(NOT TARGET qvt_data)
    return()
endif()

set(package "${CMAKE_INSTALL_LIBDIR}/cmake/qvt")
set(pkgconfig "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# From the folder of the pkg-config files up to the prefix.
string(REGEX REPLACE "[^/]+" ".." qvtUp "${pkgconfig}")
set(qvtRelease "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
set(qvtSuffix "${PROJECT_VERSION_MAJOR}_${PROJECT_VERSION_MINOR}")

# qvt_install_library(<component of find_package> "<what it is>" [<component that it requires>])
# All other libraries that ours need are private to them: a consumer has nothing to find but these.
function(qvt_install_library name about)
    set(target qvt_${name})
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    # Hosts write C++17 or newer; the libraries themselves are newer.
    target_compile_features(${target} INTERFACE cxx_std_17)
    install(TARGETS ${target} EXPORT qvt-${name}
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime
        INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
    install(EXPORT qvt-${name} NAMESPACE qvt:: FILE qvt-${name}.cmake DESTINATION "${package}" COMPONENT dev)
    set(requires "")
    if(ARGN)
        set(requires "qvt-${ARGV2}-${qvtRelease} = ${PROJECT_VERSION}")
    endif()
    set(file "${PROJECT_BINARY_DIR}/pkgconfig/qvt-${name}-${qvtRelease}.pc")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/qvt.pc.in" "${file}" @ONLY)
    install(FILES "${file}" DESTINATION "${pkgconfig}" COMPONENT dev)
endfunction()

set(qvtComponents core data)
qvt_install_library(core "Stores, strings, readers and writers of qvt")
qvt_install_library(data "The data model of qvt" core)
if(TARGET qvt_file)
    list(APPEND qvtComponents file)
    qvt_install_library(file "Stores in files, their checking and repair" core)
endif()

install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT dev
    FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

# The pages, with all that they lead to.
install(FILES
    "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${PROJECT_SOURCE_DIR}/SECURITY.md"
    "${PROJECT_SOURCE_DIR}/ARCHITECTURE.md" "${PROJECT_SOURCE_DIR}/CONTRIBUTING.md"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT dev)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" "${PROJECT_SOURCE_DIR}/examples"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT dev
    FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.cpp" PATTERN "*.xml")

configure_file("${PROJECT_SOURCE_DIR}/cmake/qvtConfig.cmake.in" "${PROJECT_BINARY_DIR}/qvtConfig.cmake" @ONLY)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/qvtConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/qvtConfig.cmake" "${PROJECT_BINARY_DIR}/qvtConfigVersion.cmake"
    DESTINATION "${package}" COMPONENT dev)

if(TARGET qvt)
    install(TARGETS qvt RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
    file(RELATIVE_PATH qvtLibraries "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(qvt PROPERTIES INSTALL_RPATH "$ORIGIN/${qvtLibraries}")
endif()

include(QvtPackages)
