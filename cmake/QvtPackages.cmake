# `cpack --preset deb` makes three Debian packages of the three components. What they depend on is read from the
# libraries themselves.
set(CPACK_PACKAGE_NAME qvt)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "The qvt maintainers <maintainers@qvt.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Design data in stores: nodes, groups and links with typed values")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR DEB)

set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")

# The name of the libraries' package tells their binary interface, as their own names do.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libqvt${qvtRelease}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libqvt-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME qvt)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)

include(CPack)
cpack_add_component(runtime DESCRIPTION "The shared libraries")
cpack_add_component(dev DESCRIPTION "Headers, and files for CMake and pkg-config" DEPENDS runtime)
cpack_add_component(tools DESCRIPTION "The command line tool" DEPENDS runtime)
