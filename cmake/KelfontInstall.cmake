# cmake --install: libkelfont (shared and static), the headers a host
# includes, the kelfont tool, a CMake package (find_package(kelfont) gives
# kelfont::kelfont and kelfont::kelfont_static) and a pkg-config file.
include(CMakePackageConfigHelpers)

# The public headers: api/kelfont.h and every project header it includes,
# transitively, keeping the folder layout.
function(kelfont_public_headers root out)
  set(pending ${root})
  set(seen)
  while(pending)
    list(POP_FRONT pending current)
    if(current IN_LIST seen)
      continue()
    endif()
    list(APPEND seen ${current})
    set(file ${PROJECT_SOURCE_DIR}/${current})
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(STRINGS ${file} includes REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
    foreach(line IN LISTS includes)
      string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*\"([^\"]+)\".*" "\\1" header "${line}")
      if(EXISTS ${PROJECT_SOURCE_DIR}/${header})
        list(APPEND pending ${header})
      endif()
    endforeach()
  endwhile()
  set(${out} ${seen} PARENT_SCOPE)
endfunction()

kelfont_public_headers(api/kelfont.h KELFONT_PUBLIC_HEADERS)
foreach(header IN LISTS KELFONT_PUBLIC_HEADERS)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/${header}
          DESTINATION ${KELFONT_INSTALL_INCLUDEDIR}/${folder} COMPONENT development)
endforeach()

install(TARGETS kelfont kelfont_static EXPORT kelfontTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET kelfont_cli)
  install(TARGETS kelfont_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(KELFONT_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/kelfont)
install(EXPORT kelfontTargets NAMESPACE kelfont:: DESTINATION ${KELFONT_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/kelfontConfig.cmake.in
  ${PROJECT_BINARY_DIR}/kelfontConfig.cmake INSTALL_DESTINATION ${KELFONT_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kelfontConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kelfontConfig.cmake
              ${PROJECT_BINARY_DIR}/kelfontConfigVersion.cmake
        DESTINATION ${KELFONT_CMAKE_DIR})

# The pkg-config file finds its prefix from its own place, so the tree can
# be installed under any --prefix.
file(RELATIVE_PATH KELFONT_PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" KELFONT_PC_PREFIX "${KELFONT_PC_PREFIX}")
file(RELATIVE_PATH KELFONT_PC_LIBDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
set(KELFONT_PC_PRIVATE_LIBS "")
if(ANDROID)
  set(KELFONT_PC_PRIVATE_LIBS "-llog")
endif()
set(KELFONT_PC_HARFBUZZ "")
if(KELFONT_HARFBUZZ)
  set(KELFONT_PC_HARFBUZZ " harfbuzz")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/kelfont.pc.in ${PROJECT_BINARY_DIR}/kelfont.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kelfont.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The default lists, for `kelfont pack --lists <prefix>/share/kelfont`.
install(FILES ${PROJECT_SOURCE_DIR}/data/fc ${PROJECT_SOURCE_DIR}/data/df
              ${PROJECT_SOURCE_DIR}/data/sf ${PROJECT_SOURCE_DIR}/data/sf_ko-KR
        DESTINATION ${CMAKE_INSTALL_DATADIR}/kelfont)
