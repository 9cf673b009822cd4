# ctest sees each GoogleTest suite as one test: a suite is the tests of one class, starts one process and takes one
# line, and its output names the case that failed.

set(TARN_TEST_TIMEOUT 120 CACHE STRING "Seconds after which a suite counts as hanging")

# tarn_test_suites(PROGRAM LABEL): the suites of a built test program, listed anew whenever it is linked.
function(tarn_test_suites program label)
  set(suites ${CMAKE_CURRENT_BINARY_DIR}/${program}-suites.cmake)
  set(include ${CMAKE_CURRENT_BINARY_DIR}/${program}-include.cmake)
  add_custom_command(TARGET ${program} POST_BUILD BYPRODUCTS ${suites} VERBATIM
    COMMAND ${CMAKE_COMMAND} -D PROGRAM=$<TARGET_FILE:${program}> -D LABEL=${label} -D OUTPUT=${suites}
            -D TIMEOUT=${TARN_TEST_TIMEOUT} -P ${PROJECT_SOURCE_DIR}/cmake/ListSuites.cmake)
  file(WRITE ${include} "if(EXISTS \"${suites}\")\n  include(\"${suites}\")\nelse()\n"
                        "  add_test(${program}_NOT_BUILT ${program}_NOT_BUILT)\nendif()\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${include})
endfunction()
