# tarn_library(NAME SOURCES ... HEADERS ...): a shared library TARN::NAME of this family. Its public headers lie in
# include/ of the calling folder and can each be compiled alone; its symbols are hidden unless a header exports them.
function(tarn_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LINK;PRIVATE_LINK" ${ARGN})
  add_library(TARN${name} SHARED ${ARG_SOURCES})
  add_library(TARN::${name} ALIAS TARN${name})
  target_sources(TARN${name} PUBLIC FILE_SET HEADERS BASE_DIRS include FILES ${ARG_HEADERS})
  target_include_directories(TARN${name} PRIVATE src)
  target_compile_features(TARN${name} PUBLIC cxx_std_20)
  target_link_libraries(TARN${name} PUBLIC ${ARG_LINK} PRIVATE ${ARG_PRIVATE_LINK})
  set_target_properties(TARN${name} PROPERTIES
    EXPORT_NAME ${name}
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()
