# Compiler options of all our targets, and the function that defines a shared library.

set(TARN_EXPORTS_MAP ${CMAKE_CURRENT_LIST_DIR}/exports.map)

# tarn_warnings(TARGET): the warnings that we mean. The presets for developers make them errors.
function(tarn_warnings target)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
      -Wcast-align -Wformat=2 -Wimplicit-fallthrough -Wunused)
  endif()
endfunction()

# tarn_library(NAME SOURCES ... HEADERS ... [LINK ...] [PRIVATE_LINK ...]): the shared library TARN::NAME. Its public
# headers lie in include/ of the calling folder and can each be compiled alone; its symbols are hidden unless a header
# exports them.
function(tarn_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LINK;PRIVATE_LINK" ${ARGN})
  set(target TARN${name})
  add_library(${target} SHARED ${ARG_SOURCES})
  add_library(TARN::${name} ALIAS ${target})
  tarn_warnings(${target})
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS include FILES ${ARG_HEADERS})
  target_include_directories(${target} PRIVATE src)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_link_libraries(${target} PUBLIC ${ARG_LINK} PRIVATE ${ARG_PRIVATE_LINK})
  # Nobody replaces a function of a library by one of the same name: so its functions may call each other directly.
  target_compile_options(${target} PRIVATE -fno-semantic-interposition -fno-plt)
  target_link_options(${target} PRIVATE
    LINKER:-Bsymbolic-functions LINKER:--as-needed LINKER:--version-script=${TARN_EXPORTS_MAP})
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${name}
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    VERSION ${PROJECT_VERSION}
    SOVERSION ${TARN_SOVERSION}
    LINK_DEPENDS ${TARN_EXPORTS_MAP}
    INSTALL_RPATH "\$ORIGIN")
  set_property(GLOBAL APPEND PROPERTY TARN_LIBRARIES ${target})
  if(TARN_DEVELOPER)
    # The same objects as an archive, for tests of what the library does not export.
    add_library(${target}Private STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${target}>)
    set_target_properties(${target}Private PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(${target}Private PUBLIC ${ARG_LINK} ${ARG_PRIVATE_LINK})
  endif()
endfunction()
