# Runs at install time (cmake --install, the Debian package's staging): the manual pages
# name the folders of the prefix they are installed under, which is known only now, since
# `cmake --install --prefix` may pick another prefix than the one configured and CPack
# installs under /usr. The pages come from the build with @ZEVRAN_DATA_DIR@ standing for
# the shipped data folder; each is written with the real folder, compressed and installed.
#   ZEVRAN_MAN_PAGES        the built pages (uncompressed)
#   ZEVRAN_MAN_STAGE_DIR    a folder of the build where the finished pages are made, as
#                           installed-NAME.gz beside the built pages
#   ZEVRAN_MAN_INSTALL_DIR  where the pages go, relative to the prefix or absolute
#   ZEVRAN_MAN_DATA_DIR     the shipped data folder, relative to the prefix or absolute
#   ZEVRAN_MAN_READER_DIR   the picture reader's folder, relative to the prefix or absolute
function(zevran_under_prefix path result)
  if(IS_ABSOLUTE "${path}")
    set(${result} "${path}" PARENT_SCOPE)
  else()
    set(${result} "${CMAKE_INSTALL_PREFIX}/${path}" PARENT_SCOPE)
  endif()
endfunction()

zevran_under_prefix("${ZEVRAN_MAN_DATA_DIR}" zevran_data_dir)
zevran_under_prefix("${ZEVRAN_MAN_READER_DIR}" zevran_reader_dir)
zevran_under_prefix("${ZEVRAN_MAN_INSTALL_DIR}" zevran_man_dir)
foreach(page IN LISTS ZEVRAN_MAN_PAGES)
  get_filename_component(name "${page}" NAME)
  set(staged "${ZEVRAN_MAN_STAGE_DIR}/installed-${name}")
  file(REMOVE "${staged}" "${staged}.gz")
  file(READ "${page}" text)
  string(REPLACE "@ZEVRAN_DATA_DIR@" "${zevran_data_dir}" text "${text}")
  string(REPLACE "@ZEVRAN_READER_DIR@" "${zevran_reader_dir}" text "${text}")
  file(WRITE "${staged}" "${text}")
  execute_process(COMMAND gzip -n -9 -f "${staged}" RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "gzip ${staged} failed: ${status}")
  endif()
  file(INSTALL "${staged}.gz" DESTINATION "${zevran_man_dir}" RENAME "${name}.gz")
endforeach()
