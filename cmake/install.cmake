# The installed layout (cmake --install, the Debian package): programs in bin/,
# zevran-cli's picture reader in libexec/zevran/ (installed by src/pictures), the
# shipped read-only data in share/zevran/, and what a Linux desktop looks for: the
# desktop entry, AppStream metainfo, icons, manual pages and the shell completion.
# Each user's settings and language files live in their XDG folders, made at run time.
set(ZEVRAN_APP_ID org.example.ZevranWorkshop)
set(ZEVRAN_SHARE_DIR ${CMAKE_INSTALL_DATADIR}/zevran)

install(FILES ${CMAKE_SOURCE_DIR}/data/16.dat ${CMAKE_SOURCE_DIR}/data/zevran.xpm DESTINATION ${ZEVRAN_SHARE_DIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/data/language ${CMAKE_SOURCE_DIR}/data/help DESTINATION ${ZEVRAN_SHARE_DIR})
install(FILES ${CMAKE_SOURCE_DIR}/data/${ZEVRAN_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_SOURCE_DIR}/data/${ZEVRAN_APP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${CMAKE_SOURCE_DIR}/data/icons/zevran.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(size 48 96 192)
  install(FILES ${CMAKE_SOURCE_DIR}/data/icons/zevran-${size}.png
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps RENAME zevran.png)
endforeach()
install(FILES ${CMAKE_SOURCE_DIR}/data/zevran-cli.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME zevran-cli)

# Manual pages from the programs' own --help and --version, so they never drift from
# them; help2man runs the freshly built programs (the window answers both without a screen).
# The pages' FILES sections name the shipped data folder of the prefix installed to:
# install_man_pages.cmake puts it in at install time and compresses the pages.
find_program(ZEVRAN_HELP2MAN help2man)
if(ZEVRAN_HELP2MAN)
  set(ZEVRAN_MAN_DIR ${CMAKE_BINARY_DIR}/man)
  set(zevran_man_pages)
  foreach(program zevran zevran-cli)
    if(NOT TARGET ${program})
      continue()
    endif()
    set(page ${ZEVRAN_MAN_DIR}/${program}.1)
    add_custom_command(
      OUTPUT ${page}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${ZEVRAN_MAN_DIR}
      # A sanitized build's leak report at exit would fail the page.
      COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0 QT_QPA_PLATFORM=offscreen
              ${ZEVRAN_HELP2MAN} --no-info --section=1 --include=${CMAKE_SOURCE_DIR}/data/man/${program}.h2m
              --output=${page} $<TARGET_FILE:${program}>
      DEPENDS ${program} ${CMAKE_SOURCE_DIR}/data/man/${program}.h2m
      COMMENT "Manual page ${program}(1)"
      VERBATIM)
    list(APPEND zevran_man_pages ${page})
  endforeach()
  add_custom_target(manpages ALL DEPENDS ${zevran_man_pages})
  install(CODE "
    set(ZEVRAN_MAN_PAGES \"${zevran_man_pages}\")
    set(ZEVRAN_MAN_STAGE_DIR \"${ZEVRAN_MAN_DIR}\")
    set(ZEVRAN_MAN_INSTALL_DIR \"${CMAKE_INSTALL_MANDIR}/man1\")
    set(ZEVRAN_MAN_DATA_DIR \"${ZEVRAN_SHARE_DIR}\")
    set(ZEVRAN_MAN_READER_DIR \"${ZEVRAN_READER_INSTALL_DIR}\")
    include(\"${CMAKE_SOURCE_DIR}/cmake/install_man_pages.cmake\")")
else()
  message(STATUS "help2man not found: the manual pages are not made (make deps installs it)")
endif()

# The package's documents where Debian keeps them: the machine-readable copyright file and
# the changelog, compressed without name or time stamp so that every build gives the same bytes.
set(ZEVRAN_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/zevran)
set(zevran_changelog ${CMAKE_BINARY_DIR}/debian/changelog.Debian)
add_custom_command(
  OUTPUT ${zevran_changelog}.gz
  COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_SOURCE_DIR}/data/debian/changelog ${zevran_changelog}
  COMMAND gzip -9 -n -f ${zevran_changelog}
  DEPENDS ${CMAKE_SOURCE_DIR}/data/debian/changelog
  COMMENT "Debian changelog"
  VERBATIM)
add_custom_target(debian_changelog ALL DEPENDS ${zevran_changelog}.gz)
install(FILES ${CMAKE_SOURCE_DIR}/data/debian/copyright ${zevran_changelog}.gz DESTINATION ${ZEVRAN_DOC_DIR})

# make package: a Debian package whose dependencies dpkg-shlibdeps finds in the binaries.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zevran)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Zevran Handset Workshop")
set(CPACK_PACKAGE_CONTACT "Zevran Handset Workshop developers <zevran@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor for the firmware image of a mobile handset")
# Lines of at most 80 characters, as Debian's tools show them.
set(CPACK_PACKAGE_DESCRIPTION
    "Zevran Handset Workshop opens a handset's firmware file and works on its\n\
ring tones (SMAF), text strings and pictures, and converts Motorola\n\
S-record files to binary and back. A phone file of the bin kind is never\n\
changed: its edits leave as S-record patch files.\n\
zevran-cli does every job from the command line.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://zevran-workshop.example.org/)
# The Chinese captions need a CJK font; xdg-open hands help and home page to the desktop.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-cjk, xdg-utils")
include(CPack)
