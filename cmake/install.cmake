# The Python module, the installation and the Debian package.
#
#   cmake --install build/release --prefix /usr/local   # programs, library, headers,
#                                                        # CMake package, Python module
#   (cd build/release && cpack -G DEB)                   # kavren-check_<version>_<arch>.deb
#
# A consumer then writes find_package(kavren CONFIG) and links kavren::kavren.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(KAVREN_VERSION ${PROJECT_VERSION})

# The library links into the Python module (a shared object) and into consumers'
# position-independent executables.
set_target_properties(kavren PROPERTIES POSITION_INDEPENDENT_CODE ON)
# In the build tree the library's users see its internal headers too; once installed,
# only the public headers of include/kavren.
set_property(TARGET kavren PROPERTY INTERFACE_INCLUDE_DIRECTORIES
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

# A sanitizer-instrumented module cannot be loaded by an interpreter that is not, and an
# instrumented library cannot link into an ordinary consumer: those builds leave the
# module and the installation test out.
string(TOUPPER "${CMAKE_BUILD_TYPE}" _kavren_config)
if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${_kavren_config}}" MATCHES "-fsanitize")
  set(_kavren_instrumented TRUE)
else()
  set(_kavren_instrumented FALSE)
endif()

if(KAVREN_BUILD_PYTHON AND NOT _kavren_instrumented)
  add_subdirectory(${PROJECT_SOURCE_DIR}/python ${PROJECT_BINARY_DIR}/python)
endif()

# --- Programs, library, headers ----------------------------------------------------
set(_kavren_programs kavren-check)
foreach(program kavren-report kavren-polish kavren-synth)
  if(TARGET ${program})
    list(APPEND _kavren_programs ${program})
  endif()
endforeach()
install(TARGETS ${_kavren_programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS kavren kavren_json EXPORT kavrenTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kavren
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

# --- CMake package: find_package(kavren CONFIG) gives kavren::kavren -----------------
set(_kavren_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kavren)
install(EXPORT kavrenTargets NAMESPACE kavren:: DESTINATION ${_kavren_cmake_dir})
file(WRITE ${PROJECT_BINARY_DIR}/kavrenConfig.cmake
  "# kavren: verification of low-thrust asteroid-mining solutions.\n"
  "# find_package(kavren CONFIG) defines kavren::kavren (headers <kavren/verify.h>).\n"
  "include(CMakeFindDependencyMacro)\n"
  "find_dependency(Threads)\n"
  "include(\${CMAKE_CURRENT_LIST_DIR}/kavrenTargets.cmake)\n")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kavrenConfigVersion.cmake
  VERSION ${KAVREN_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kavrenConfig.cmake
  ${PROJECT_BINARY_DIR}/kavrenConfigVersion.cmake DESTINATION ${_kavren_cmake_dir})

# --- Python package, in the interpreter's site directory under the prefix -----------
if(KAVREN_PYTHON_MODULE)
  if(NOT KAVREN_PYTHON_INSTALL_DIR)
    # Debian's interpreter reads <prefix>/lib/python3/dist-packages for /usr and
    # /usr/local/lib/python3.X/dist-packages for /usr/local; other interpreters their
    # posix_prefix scheme.
    execute_process(
      COMMAND ${KAVREN_PYTHON_EXECUTABLE} -c [=[
import os, sys, sysconfig
prefix = os.path.normpath(sys.argv[1])
names = sysconfig.get_scheme_names()
if prefix == "/usr/local" and "posix_local" in names:
    usr = {"base": "/usr", "platbase": "/usr"}
    path, prefix = sysconfig.get_path("platlib", "posix_local", vars=usr), "/usr/local"
elif "deb_system" in names:
    path = sysconfig.get_path("platlib", "deb_system", vars={"base": prefix, "platbase": prefix})
else:
    path = sysconfig.get_path("platlib", "posix_prefix", vars={"base": prefix, "platbase": prefix})
print(os.path.relpath(path, prefix), end="")
]=] ${CMAKE_INSTALL_PREFIX}
      OUTPUT_VARIABLE _kavren_site RESULT_VARIABLE _kavren_site_status)
    if(NOT _kavren_site_status EQUAL 0 OR _kavren_site STREQUAL "")
      message(FATAL_ERROR
        "kavren: cannot find the Python site directory under ${CMAKE_INSTALL_PREFIX}")
    endif()
    set(KAVREN_PYTHON_INSTALL_DIR ${_kavren_site} CACHE STRING
      "Where the Python module is installed, relative to the prefix")
  endif()
  # The package kavren/: the extension, the Python files, py.typed and the stubs.
  install(TARGETS ${KAVREN_PYTHON_MODULE} LIBRARY DESTINATION ${KAVREN_PYTHON_INSTALL_DIR}/kavren)
  install(FILES ${KAVREN_PYTHON_FILES} DESTINATION ${KAVREN_PYTHON_INSTALL_DIR}/kavren)
  install(FILES ${PROJECT_SOURCE_DIR}/python/kavren.pyi
    DESTINATION ${KAVREN_PYTHON_INSTALL_DIR}/kavren RENAME __init__.pyi)
endif()

# --- Installation test: a temporary prefix, a C++ consumer, the module imported ------
if(KAVREN_BUILD_TESTS AND NOT _kavren_instrumented AND TARGET kavren-synth)
  add_test(NAME install.prefix
    COMMAND ${CMAKE_COMMAND} -E env
      KAVREN_PYTHON=${KAVREN_PYTHON_EXECUTABLE}
      KAVREN_PYTHON_DIR=${KAVREN_PYTHON_INSTALL_DIR}
      bash ${PROJECT_SOURCE_DIR}/tests/install/install_test.sh
      ${PROJECT_BINARY_DIR} ${CMAKE_CXX_COMPILER})
  set_tests_properties(install.prefix PROPERTIES TIMEOUT 600)
endif()

# --- Debian package --------------------------------------------------------------
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kavren-check)
set(CPACK_PACKAGE_VERSION ${KAVREN_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "Exact verifier of low-thrust asteroid-mining solutions, library and Python module")
set(CPACK_PACKAGE_CONTACT "kavren-check developers <kavren-check@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(_kavren_depends "libc6, libstdc++6, libgcc-s1")
if(KAVREN_PYTHON_MODULE)
  # The module is built for one interpreter version.
  set(_kavren_pyver ${KAVREN_PYTHON_VERSION_MAJOR}.${KAVREN_PYTHON_VERSION_MINOR})
  math(EXPR _kavren_pynext "${KAVREN_PYTHON_VERSION_MINOR} + 1")
  string(APPEND _kavren_depends ", python3 (>= ${_kavren_pyver}), "
    "python3 (<< ${KAVREN_PYTHON_VERSION_MAJOR}.${_kavren_pynext}), python3-numpy, "
    "python3-pandas")
  # kavren.batch spreads a population over a Dask cluster (dask-scheduler, dask-worker).
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS python3-distributed)
endif()
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${_kavren_depends}")
include(CPack)
