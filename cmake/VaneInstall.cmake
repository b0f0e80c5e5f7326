# What a host gets: the libraries with their headers, as a CMake package and for pkg-config, and the
# programs with their manual page, the schemas of their output and completions. The simulated readout comes as a program only.

include(CMakePackageConfigHelpers)

# In the order of a static link: what uses another stands before it.
set(VANE_INSTALLED_LIBRARIES headless serial conversions files terminal posix protocol physics vane)
set(VANE_PACKAGE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/VaneT312B)

list(TRANSFORM VANE_INSTALLED_LIBRARIES PREPEND vane_ OUTPUT_VARIABLE targets)
install(TARGETS ${targets} EXPORT VaneT312BTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(folder IN ITEMS vane protocol physics adapters)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/${folder}
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/VaneT312B
          FILES_MATCHING PATTERN "*.h"
          # Of the desktop program alone: a host of the package needs no toolkit.
          PATTERN "qt" EXCLUDE)
endforeach()
install(EXPORT VaneT312BTargets NAMESPACE VaneT312B:: DESTINATION ${VANE_PACKAGE_FOLDER})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/VaneT312BConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VaneT312BConfig.cmake INSTALL_DESTINATION ${VANE_PACKAGE_FOLDER})
# Before 1.0 a new minor version may change an interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VaneT312BConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VaneT312BConfig.cmake
              ${PROJECT_BINARY_DIR}/VaneT312BConfigVersion.cmake
        DESTINATION ${VANE_PACKAGE_FOLDER})

# Its paths start from the place of the file itself, so that an installed tree can be moved.
list(TRANSFORM VANE_INSTALLED_LIBRARIES PREPEND -lVaneT312B- OUTPUT_VARIABLE VANE_PC_LIBRARIES)
list(JOIN VANE_PC_LIBRARIES " " VANE_PC_LIBRARIES)
file(RELATIVE_PATH VANE_PREFIX_FROM_PC /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${CMAKE_CURRENT_LIST_DIR}/VaneT312B.pc.in ${PROJECT_BINARY_DIR}/VaneT312B.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/VaneT312B.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(VANE_BUILD_PROGRAMS)
  install(TARGETS thermoscribe thermoscribe-sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${PROJECT_SOURCE_DIR}/docs/thermoscribe.1
          DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/schema
          DESTINATION ${CMAKE_INSTALL_DATADIR}/VaneT312B)
  # In the folders where systemd and udev look, of the machine and of its administrator.
  configure_file(${PROJECT_SOURCE_DIR}/apps/thermoscribe/share/thermoscribe-record@.service.in
                 ${PROJECT_BINARY_DIR}/thermoscribe-record@.service @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/thermoscribe-record@.service DESTINATION lib/systemd/system)
  install(FILES ${PROJECT_SOURCE_DIR}/apps/thermoscribe/share/70-thermoscribe.rules
          DESTINATION lib/udev/rules.d)
  # In the folders where bash, zsh and fish look for completions.
  install(DIRECTORY ${PROJECT_BINARY_DIR}/apps/thermoscribe/share/
          DESTINATION ${CMAKE_INSTALL_DATADIR})
endif()

if(VANE_BUILD_PROGRAMS AND VANE_DESKTOP)
  set(share ${PROJECT_SOURCE_DIR}/apps/thermoscribe-desktop/share)
  install(TARGETS thermoscribe-desktop RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${PROJECT_SOURCE_DIR}/docs/thermoscribe-desktop.1
          DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  # Where the program looks for the pages, from its own place.
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/help
          DESTINATION ${CMAKE_INSTALL_DATADIR}/VaneT312B)
  # In the folders where desktops look for programs.
  install(FILES ${share}/thermoscribe-desktop.desktop
          DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${share}/thermoscribe-desktop.metainfo.xml
          DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${share}/thermoscribe-desktop.svg
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()
