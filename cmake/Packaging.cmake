# The examples, beside the install directory's other files; a user copies
# them to a folder of his own, since a compile writes beside its project.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION share/kavlin/examples)

# A system-wide installation (prefix /usr or /usr/local, as the Debian
# package's): PREFIX/share/kavlin cannot be Run_Dir there, since users cannot
# write its Temp. The install directory is /var/lib/kavlin instead, with the
# symbol files and a Temp writable by all and sticky, as /tmp is (the bundled
# component keeps each user's object files in a folder of his own in it),
# and /etc/xdg/Kavlin/Kavlin.conf names it as the default that the settings
# store reads behind each user's own file.
set(KAVLIN_SYSTEM_RUN_DIR /var/lib/kavlin CACHE PATH
    "Run_Dir of a system-wide installation (prefix /usr or /usr/local)")
install(CODE "set(KAVLIN_SYSTEM_RUN_DIR \"${KAVLIN_SYSTEM_RUN_DIR}\")
set(KAVLIN_LIBRARY_SOURCE \"${PROJECT_SOURCE_DIR}/src/compiler/library\")")
install(CODE [[
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr" OR CMAKE_INSTALL_PREFIX STREQUAL "/usr/local")
    set(RunDir "$ENV{DESTDIR}${KAVLIN_SYSTEM_RUN_DIR}")
    message(STATUS "Installing: ${RunDir} (Run_Dir of every user)")
    foreach(Family KV10 KV20)
      # file(INSTALL) puts DESTDIR in front by itself.
      file(INSTALL "${KAVLIN_LIBRARY_SOURCE}/Bin${Family}/Symbol${Family}.sym"
           DESTINATION "${KAVLIN_SYSTEM_RUN_DIR}/Bin${Family}")
    endforeach()
    file(MAKE_DIRECTORY "${RunDir}/Temp")
    execute_process(COMMAND chmod 1777 "${RunDir}/Temp" COMMAND_ERROR_IS_FATAL ANY)
    set(Conf "$ENV{DESTDIR}/etc/xdg/Kavlin/Kavlin.conf")
    message(STATUS "Installing: ${Conf}")
    file(WRITE "${Conf}" "[Config]\nRun_Dir=${KAVLIN_SYSTEM_RUN_DIR}\n")
  endif()
]])

# cpack -G DEB in the build folder makes the Debian package of the whole
# system, installed with the prefix /usr.
set(CPACK_PACKAGE_NAME kavlin-studio)
set(CPACK_PACKAGE_VENDOR "Kavlin")
set(CPACK_PACKAGE_CONTACT "Kavlin Studio developers <kavlin-studio@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Development system for the KV-10, KV-20 and KV-30 microcontrollers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_GENERATOR DEB)
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
foreach(Script postinst postrm)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/${Script}.in
                 ${PROJECT_BINARY_DIR}/debian/${Script} @ONLY
                 FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                  WORLD_READ WORLD_EXECUTE)
endforeach()
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/debian/postinst ${PROJECT_BINARY_DIR}/debian/postrm
    ${PROJECT_SOURCE_DIR}/cmake/debian/conffiles)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
