# Writes to OUTPUT a ctest test for each suite of the GoogleTest program PROGRAM, labelled LABEL, which may take TIMEOUT
# seconds. See TestSuites.cmake.

execute_process(COMMAND ${PROGRAM} --gtest_list_tests OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "(^|\n)[^ \n][^\n]*[.]( |\n)" suites "${listing}")
set(tests "")
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "^\n?(.*)[.][ \n]$" "\\1" suite "${suite}")
  string(APPEND tests
    "add_test([==[${LABEL}.${suite}]==] [==[${PROGRAM}]==] [==[--gtest_filter=${suite}.*]==] --gtest_brief=1)\n"
    "set_tests_properties([==[${LABEL}.${suite}]==] PROPERTIES LABELS ${LABEL} TIMEOUT ${TIMEOUT} "
    "FAIL_REGULAR_EXPRESSION [==[ 0 tests from]==])\n")
endforeach()
if(tests STREQUAL "")
  message(FATAL_ERROR "${PROGRAM} holds no test")
endif()
file(WRITE ${OUTPUT} "${tests}")
