# `cpack` in a build with the preset `package` makes one Debian package of each component that is installed:
#
#     libraries     libtarn0       the shared libraries; the number is TARN_SOVERSION
#     development   libtarn-dev    headers, the CMake package and the pkg-config file
#     program       zev            the program, its manual, the examples and, where it was built, the web editor
#     python        python3-tarn   the package tarn for Python, where it was built
#
# Dependencies on other libraries are found by dpkg-shlibdeps. Version and change log are those of CHANGELOG.md;
# cmake/debian/finish.cmake turns it into the form of Debian. tools/packages builds the packages and tries them.

get_cmake_property(components COMPONENTS)
list(REMOVE_ITEM components Unspecified)
set(CPACK_COMPONENTS_ALL ${components})

# An unreleased version sorts before the release of the same number, so that the release replaces it.
string(REGEX REPLACE ".* - " "" release_date "${TARN_RELEASE}")
set(CPACK_DEBIAN_PACKAGE_VERSION ${PROJECT_VERSION})
if(release_date STREQUAL "unreleased")
  string(APPEND CPACK_DEBIAN_PACKAGE_VERSION "~unreleased")
endif()

set(TARN_MAINTAINER "The developers of TARN <root@localhost>" CACHE STRING "Maintainer that Debian packages name")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarn)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "")
# Empty, so that the first line of each description below is the summary of its package.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
    WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/finish.cmake)
set(CPACK_TARN_SOURCE_DIR ${PROJECT_SOURCE_DIR})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${TARN_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# The libraries promise little before 1.0, so what was built with them needs at least this version.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# dpkg-shlibdeps looks here for libraries of ours that other packages of ours need.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(same_version "(= ${CPACK_DEBIAN_PACKAGE_VERSION})")
set(library_package libtarn${TARN_SOVERSION})

set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_COMPONENT_LIBRARIES_DESCRIPTION "rule-driven set-up engine for simulation, shared libraries
Rules say which objects and parameters the set-up of a simulation may have,
when, and with which values. The libraries keep a set-up legal while it is
edited, explain why it is as it is, and report what is wrong with it.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtarn-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library_package} ${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS nlohmann-json3-dev)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "rule-driven set-up engine for simulation, development files
The headers of the libraries, a CMake package and a pkg-config file.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME zev)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${library_package} ${same_version}")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS python3-tarn)
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "rule-driven set-up engine for simulation, program
The program zev edits the set-up of a simulation under rules, reviews models,
explains what the rules decide, and checks and tests the rules themselves.
Examples are in /usr/share/tarn/examples.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-tarn)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
# An extension module works with the version of Python for which it was compiled.
if("python" IN_LIST components)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  math(EXPR next_minor "${Python3_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
      "${library_package} ${same_version}, python3 (>= 3.${Python3_VERSION_MINOR}), python3 (<< 3.${next_minor}), python3-yaml")
endif()
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-distributed")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/postinst
    ${CMAKE_CURRENT_LIST_DIR}/debian/prerm)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "rule-driven set-up engine for simulation, Python package
The Python package tarn loads rules, edits and reviews models, and runs studies
of many variants of one model, on one machine or on many.")

include(CPack)
