# cpack runs this script when the files of all components are staged and before the packages are made of them. It adds
# what Debian wants in a package: change log, copyright, compressed manuals, and reasons for what its checks would report.

set(names libraries ${CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME} development ${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME}
          program ${CPACK_DEBIAN_PROGRAM_PACKAGE_NAME} python ${CPACK_DEBIAN_PYTHON_PACKAGE_NAME})

set(changelog ${CPACK_TOPLEVEL_DIRECTORY}/changelog)
execute_process(
  COMMAND ${CPACK_TARN_SOURCE_DIR}/tools/debian_changelog --source ${CPACK_PACKAGE_NAME}
          --maintainer ${CPACK_DEBIAN_PACKAGE_MAINTAINER} ${CPACK_TARN_SOURCE_DIR}/CHANGELOG.md
  OUTPUT_FILE ${changelog} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND gzip -9nf ${changelog} COMMAND_ERROR_IS_FATAL ANY)

while(names)
  list(POP_FRONT names component package)
  set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr)
  if(NOT EXISTS ${root})
    continue()
  endif()
  set(documents ${root}/share/doc/${package})
  file(MAKE_DIRECTORY ${documents})
  file(COPY_FILE ${changelog}.gz ${documents}/changelog.gz)
  file(COPY_FILE ${CPACK_TARN_SOURCE_DIR}/cmake/debian/copyright ${documents}/copyright)
  set(overrides ${CPACK_TARN_SOURCE_DIR}/cmake/debian/${component}.lintian-overrides)
  if(EXISTS ${overrides})
    file(MAKE_DIRECTORY ${root}/share/lintian/overrides)
    file(READ ${overrides} text)
    string(REPLACE "libtarn0" ${package} text "${text}")
    file(WRITE ${root}/share/lintian/overrides/${package} "${text}")
  endif()
  file(GLOB manuals ${root}/share/man/*/*.[1-9])
  if(manuals)
    execute_process(COMMAND gzip -9nf ${manuals} COMMAND_ERROR_IS_FATAL ANY)
  endif()
  file(GLOB_RECURSE texts ${root}/share/doc/* ${root}/share/man/* ${root}/share/lintian/*)
  file(CHMOD ${texts} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endwhile()
