# What `cmake --install` puts into a prefix, by component:
#
#   runtime      the library, under its SONAME
#   development  headers, link name, CMake package, pkg-config file, documentation and examples
#   tools        the command `channellist`, its manual page and completion
#   stand-in     the debug library of this repository, where none of the set's own is named
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/channellist-access")
set(package_build_dir "${PROJECT_BINARY_DIR}/package")

install(TARGETS channellist-access
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        COMPONENT runtime
        NAMELINK_COMPONENT development)
install(DIRECTORY channellist-access/include/
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)

# Where the linker finds the debug library of a program's library: the stand-in beside it, or the
# set's own, which needs no word where the linker looks into its folder anyway, in a sysroot.
if(CHANNELLIST_ACCESS_ORV_DEBUG_LIBRARY)
    set(orv_debug_location "${CHANNELLIST_ACCESS_ORV_DEBUG_LIBRARY}")
    get_filename_component(orv_debug_folder "${orv_debug_location}" DIRECTORY)
    set(orv_debug_rpath_link "-Wl,-rpath-link,\"${orv_debug_folder}\" ")
    foreach(root ${CMAKE_SYSROOT} ${CMAKE_FIND_ROOT_PATH})
        string(FIND "${orv_debug_location}" "${root}/" at)
        if(at EQUAL 0)
            set(orv_debug_location "")
            set(orv_debug_rpath_link "")
        endif()
    endforeach()
else()
    set(orv_debug_location "${CMAKE_INSTALL_LIBDIR}/liborv-debug.so")
    set(orv_debug_rpath_link "-Wl,-rpath-link,\"\${libdir}\" ")
    # It finds the stand-in beside itself, in whatever program it is loaded.
    set_target_properties(channellist-access PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()

# The package defines its target itself: an exported one would name the debug library's target, which
# no consumer has.
configure_package_config_file(cmake/package/channellist-access-config.cmake.in
    "${package_build_dir}/channellist-access-config.cmake"
    INSTALL_DESTINATION "${package_dir}"
    PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR orv_debug_location)
write_basic_package_version_file("${package_build_dir}/channellist-access-config-version.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${package_build_dir}/channellist-access-config.cmake"
    "${package_build_dir}/channellist-access-config-version.cmake"
    DESTINATION "${package_dir}" COMPONENT development)

# Written when it is installed: it names the prefix, which `cmake --install --prefix` may choose. A
# prefix relative to the file would be taken twice where pkg-config puts a sysroot before it.
foreach(folder LIBDIR INCLUDEDIR)
    string(TOLOWER "pkgconfig_${folder}" variable)
    set(${variable} "${CMAKE_INSTALL_${folder}}")
    if(NOT IS_ABSOLUTE "${${variable}}")
        string(PREPEND ${variable} "\${prefix}/")
    endif()
endforeach()
install(CODE "
    get_filename_component(pkgconfig_prefix \"\${CMAKE_INSTALL_PREFIX}\" ABSOLUTE)
    set(PROJECT_DESCRIPTION \"${PROJECT_DESCRIPTION}\")
    set(PROJECT_VERSION \"${PROJECT_VERSION}\")
    set(pkgconfig_libdir [=[${pkgconfig_libdir}]=])
    set(pkgconfig_includedir [=[${pkgconfig_includedir}]=])
    set(CHANNELLIST_ACCESS_SQLITE_VERSION \"${CHANNELLIST_ACCESS_SQLITE_VERSION}\")
    set(orv_debug_rpath_link [=[${orv_debug_rpath_link}]=])
    configure_file(\"${PROJECT_SOURCE_DIR}/cmake/package/channellist-access.pc.in\"
        \"${package_build_dir}/channellist-access.pc\" @ONLY)"
    COMPONENT development)
install(FILES "${package_build_dir}/channellist-access.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)

install(DIRECTORY docs/ DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development)
install(DIRECTORY examples DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development
    FILES_MATCHING PATTERN "*.cpp")

if(NOT CHANNELLIST_ACCESS_ORV_DEBUG_LIBRARY)
    install(TARGETS orv-debug
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT stand-in)
endif()
