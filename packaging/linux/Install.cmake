# What `cmake --install` lays where the desktop conventions want it. One name, the application's identity, is that of the
# desktop entry, the icons and the metainfo; the session's autostart entry and the windows' class have it too.
include(GNUInstallDirs)
set(source ${PROJECT_SOURCE_DIR}/packaging/linux)
set(made ${CMAKE_BINARY_DIR}/packaging)

install(TARGETS ostrel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

configure_file(${source}/application.desktop.in ${made}/${OSTREL_APPLICATION_ID}.desktop @ONLY)
install(FILES ${made}/${OSTREL_APPLICATION_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${source}/releases.awk)
execute_process(COMMAND awk -f ${source}/releases.awk ${PROJECT_SOURCE_DIR}/CHANGELOG.md OUTPUT_VARIABLE releases
                COMMAND_ERROR_IS_FATAL ANY)
configure_file(${source}/metainfo.xml.in ${made}/${OSTREL_APPLICATION_ID}.metainfo.xml @ONLY)
install(FILES ${made}/${OSTREL_APPLICATION_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/icon.svg DESTINATION ${icons}/scalable/apps
        RENAME ${OSTREL_APPLICATION_ID}.svg)
install(FILES ${source}/symbolic.svg DESTINATION ${icons}/symbolic/apps
        RENAME ${OSTREL_APPLICATION_ID}-symbolic.svg)

install(FILES ${source}/completions/ostrel.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME ostrel)
install(FILES ${source}/completions/_ostrel DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES ${source}/completions/ostrel.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/CHANGELOG.md
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/ostrel)

# Whoever only builds the program needs no tools for what is drawn and rendered.
find_program(OSTREL_RSVG_CONVERT rsvg-convert)
find_program(OSTREL_SCDOC scdoc)
set(rendered "")
if(OSTREL_RSVG_CONVERT)
  foreach(side 16 22 24 32 48 64 128 256 512)
    set(picture ${made}/${side}.png)
    add_custom_command(
      OUTPUT ${picture}
      COMMAND ${OSTREL_RSVG_CONVERT} --width=${side} --height=${side} --output=${picture}
              ${PROJECT_SOURCE_DIR}/packaging/icon.svg
      DEPENDS ${PROJECT_SOURCE_DIR}/packaging/icon.svg
      VERBATIM)
    list(APPEND rendered ${picture})
    install(FILES ${picture} DESTINATION ${icons}/${side}x${side}/apps RENAME ${OSTREL_APPLICATION_ID}.png)
  endforeach()
else()
  message(STATUS "There is no rsvg-convert here: the icon is installed as SVG only")
endif()
if(OSTREL_SCDOC)
  configure_file(${source}/ostrel.1.scd.in ${made}/ostrel.1.scd @ONLY)
  add_custom_command(
    OUTPUT ${made}/ostrel.1
    COMMAND ${OSTREL_SCDOC} <${made}/ostrel.1.scd >${made}/ostrel.1
    DEPENDS ${made}/ostrel.1.scd)
  list(APPEND rendered ${made}/ostrel.1)
  install(FILES ${made}/ostrel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
else()
  message(STATUS "There is no scdoc here: the manual page is not installed")
endif()
add_custom_target(ostrel_rendered ALL DEPENDS ${rendered})
