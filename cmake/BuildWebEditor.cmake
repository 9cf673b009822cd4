# Fetches the packages of FOLDER as its lock file says, once for each lock file, and builds the page into PAGE if that is
# given. Run by the build:
#
#     cmake -D NODE=... -D NPM=... -D MODE=AUTO|ON -D LOG=... -D FOLDER=... [-D PAGE=...] -P BuildWebEditor.cmake
#
# With MODE=AUTO it is no error that packages cannot be fetched: one line says so, and the next build tries again.

# Builds of several presets share the packages.
file(LOCK ${FOLDER} DIRECTORY GUARD PROCESS)

file(SHA256 ${FOLDER}/package-lock.json wanted)
set(note ${FOLDER}/node_modules/.complete)
set(present)
if(EXISTS ${note})
  file(READ ${note} present)
endif()
if(NOT present STREQUAL wanted)
  get_filename_component(name ${FOLDER} NAME)
  set(log ${LOG}/npm-${name}.log)
  execute_process(COMMAND ${NPM} ci --include=dev --no-audit --no-fund WORKING_DIRECTORY ${FOLDER}
                  RESULT_VARIABLE failed OUTPUT_FILE ${log} ERROR_FILE ${log})
  if(failed)
    file(READ ${log} messages)
    if(messages MATCHES "EUSAGE|EJSONPARSE|EINTEGRITY")
      message(FATAL_ERROR "${FOLDER}/package-lock.json is not in order:\n${messages}")
    endif()
    set(sentence "The web editor is not built: npm could not fetch its packages (${log})")
    if(MODE STREQUAL "AUTO")
      message("${sentence}")
      return()
    endif()
    message(FATAL_ERROR "${sentence}")
  endif()
  file(WRITE ${note} ${wanted})
endif()

if(PAGE)
  execute_process(COMMAND ${NODE} scripts/build.mjs --out ${PAGE} WORKING_DIRECTORY ${FOLDER} RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "The web editor has a mistake in its sources; the messages above name it")
  endif()
endif()
