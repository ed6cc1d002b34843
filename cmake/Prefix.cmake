# What depends on the prefix is decided during installation: `cmake --install --prefix` may name a prefix other than
# that of the build's configuration.

# find_installed_libraries(TARGET COMPONENT): the installed file looks for the libraries of its own prefix, after those
# of LD_LIBRARY_PATH. It has no run path in /usr, where every program finds them, nor with a vendor's Chip SDK,
# which is not installed.
function(find_installed_libraries target component)
  if(SWSDK_INCLUDE_DIR)
    return()
  endif()
  get_target_property(type ${target} TYPE)
  set(folder "${CMAKE_INSTALL_LIBDIR}")
  if(type STREQUAL EXECUTABLE)
    set(folder "${CMAKE_INSTALL_BINDIR}")
  endif()
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_LIBDIR BASE_DIRECTORY "${folder}" OUTPUT_VARIABLE libraries)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  install(CODE "
    if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
      file(RPATH_REMOVE FILE \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${folder}/$<TARGET_FILE_NAME:${target}>\")
    endif()" COMPONENT ${component})
endfunction()

# install_pkg_config(FILE COMPONENT): the .pc file, from its template in this folder.
function(install_pkg_config file component)
  install(CODE "
    cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_PREFIX OUTPUT_VARIABLE prefix)
    set(PROJECT_VERSION \"${PROJECT_VERSION}\")
    set(PROJECT_DESCRIPTION \"${PROJECT_DESCRIPTION}\")
    set(CMAKE_INSTALL_INCLUDEDIR \"${CMAKE_INSTALL_INCLUDEDIR}\")
    set(CMAKE_INSTALL_LIBDIR \"${CMAKE_INSTALL_LIBDIR}\")
    configure_file(\"${PROJECT_SOURCE_DIR}/cmake/${file}.in\" \"${PROJECT_BINARY_DIR}/${file}\" @ONLY)"
    COMPONENT ${component})
  install(FILES "${PROJECT_BINARY_DIR}/${file}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ${component})
endfunction()

# install_python_module(NAME COMPONENT FILE...): in /usr and /usr/local, into the folder where Debian's Python looks; in
# another prefix, into the folder of a virtual environment there.
function(install_python_module name component)
  install(CODE "
    if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
      set(python_modules lib/python3/dist-packages)
    elseif(CMAKE_INSTALL_PREFIX STREQUAL \"/usr/local\")
      set(python_modules lib/python${Python3_VERSION_MAJOR}.${Python3_VERSION_MINOR}/dist-packages)
    else()
      set(python_modules lib/python${Python3_VERSION_MAJOR}.${Python3_VERSION_MINOR}/site-packages)
    endif()" COMPONENT ${component})
  install(FILES ${ARGN} DESTINATION "\${python_modules}/${name}" COMPONENT ${component})
endfunction()
