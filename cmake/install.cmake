# What `cmake --install build --prefix P` puts under P, every path relative to P so that a moved
# tree keeps working (RUNPATHs are relative to each file, the fluids/ directory stands beside the
# libraries, the CMake and pkg-config files find P from their own place):
#   lib/        libzentropia, libzentropia_c and the back-end libraries (versioned SONAMEs), fluids/
#   include/    zentropia/zentropia.h, zentropia.hpp, version.h
#   bin/        the zentropia tool
#   lib/cmake/Zentropia/   find_package(Zentropia);  lib/pkgconfig/zentropia.pc
#   ZP_PYTHON_DIR/zentropia   the Python package (default: P's site-packages path,
#                             lib/python3.X/dist-packages for Debian's interpreter)
set(ZP_LIB_DIR lib CACHE STRING "Where the libraries and fluids/ are installed, relative to the prefix")
if(NOT DEFINED ZP_PYTHON_DIR)
    # Debian's interpreter reads P/lib/python3.X/dist-packages (so a prefix of /usr/local needs
    # no PYTHONPATH); others read the site-packages directory of their prefix scheme.
    execute_process(
        COMMAND ${Python3_EXECUTABLE} -c
            "import sysconfig as s; d = s.get_path('platlib', 'posix_prefix', vars={'platbase': '', 'base': ''}).lstrip('/'); print(d.replace('site-packages', 'dist-packages') if s.get_default_scheme() == 'posix_local' else d)"
        OUTPUT_VARIABLE ZP_PYTHON_DEFAULT_DIR OUTPUT_STRIP_TRAILING_WHITESPACE)
    set(ZP_PYTHON_DIR ${ZP_PYTHON_DEFAULT_DIR} CACHE STRING
        "Where the Python package is installed, relative to the prefix")
endif()

# Versioned shared libraries: libzentropia.so.0.1 while the major version is 0.
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(ZP_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
else()
    set(ZP_SOVERSION ${PROJECT_VERSION_MAJOR})
endif()
set(ZP_INSTALLED_LIBRARIES)
foreach(target zentropia zentropia_c if97 varimol litevarimol)
    if(TARGET ${target})
        set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION}
                                                   SOVERSION ${ZP_SOVERSION})
        list(APPEND ZP_INSTALLED_LIBRARIES ${target})
    endif()
endforeach()
install(TARGETS ${ZP_INSTALLED_LIBRARIES} LIBRARY DESTINATION ${ZP_LIB_DIR}
        NAMELINK_COMPONENT Development)
install(DIRECTORY ${ZP_FLUIDS_DIR} DESTINATION ${ZP_LIB_DIR})
install(FILES ${CMAKE_SOURCE_DIR}/include/zentropia/zentropia.h
              ${CMAKE_SOURCE_DIR}/include/zentropia/zentropia.hpp
              ${ZP_GENERATED_INCLUDE_DIR}/zentropia/version.h
        DESTINATION include/zentropia)
if(TARGET zentropia_cli)
    install(TARGETS zentropia_cli RUNTIME DESTINATION bin)
endif()

if(TARGET zentropia_python)
    # the extension finds the libraries from its own directory
    file(RELATIVE_PATH ZP_PYTHON_TO_LIB /prefix/${ZP_PYTHON_DIR}/zentropia /prefix/${ZP_LIB_DIR})
    set_target_properties(zentropia_python PROPERTIES INSTALL_RPATH "$ORIGIN/${ZP_PYTHON_TO_LIB}")
    install(TARGETS zentropia_python LIBRARY DESTINATION ${ZP_PYTHON_DIR}/zentropia)
    install(DIRECTORY ${CMAKE_BINARY_DIR}/python/zentropia/ DESTINATION ${ZP_PYTHON_DIR}/zentropia
            FILES_MATCHING PATTERN "*.py" PATTERN "__pycache__" EXCLUDE)
endif()

# find_package(Zentropia) and pkg-config
set(ZP_CONFIG_DIR ${ZP_LIB_DIR}/cmake/Zentropia)
file(RELATIVE_PATH ZP_CONFIG_TO_PREFIX /prefix/${ZP_CONFIG_DIR} /prefix)
set(ZP_C_LIBRARY_FILE libzentropia_c.so.${PROJECT_VERSION})
set(ZP_C_LIBRARY_SONAME libzentropia_c.so.${ZP_SOVERSION})
include(CMakePackageConfigHelpers)
configure_file(${CMAKE_SOURCE_DIR}/cmake/ZentropiaConfig.cmake.in
               ${CMAKE_BINARY_DIR}/cmake/ZentropiaConfig.cmake @ONLY)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/cmake/ZentropiaConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/cmake/ZentropiaConfig.cmake
              ${CMAKE_BINARY_DIR}/cmake/ZentropiaConfigVersion.cmake
        DESTINATION ${ZP_CONFIG_DIR})
configure_file(${CMAKE_SOURCE_DIR}/cmake/zentropia.pc.in ${CMAKE_BINARY_DIR}/cmake/zentropia.pc
               @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/cmake/zentropia.pc DESTINATION ${ZP_LIB_DIR}/pkgconfig)
