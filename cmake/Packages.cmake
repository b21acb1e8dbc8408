# Debian packages, made by scripts/package (presets package and package-arm):
#
#   libchannellist-access1      the library
#   liborv-debug-stand-in       the debug library's stand-in, where none of the set's own is named;
#                               a set's package takes its place if it is named or provides
#                               CHANNELLIST_ACCESS_ORV_DEBUG_PACKAGE
#   libchannellist-access-dev   headers, link name, CMake package, pkg-config file
#   channellist-page            the page to sort channels with; without cpp-httplib there is none
#   channellist                 the command-line tool, its manual page and completions
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME channellist-access)
set(CPACK_PACKAGE_VENDOR channellist-access)
set(CPACK_PACKAGE_CONTACT "channellist-access <channellist-access@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_SET_DESTDIR ON) # the pkg-config file names the prefix
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL runtime development)
set(CHANNELLIST_ACCESS_ORV_DEBUG_PACKAGE liborv-debug CACHE STRING
    "The Debian package of the set's debug library")
set(orv_debug_packages "${CHANNELLIST_ACCESS_ORV_DEBUG_PACKAGE}")
if(NOT CHANNELLIST_ACCESS_ORV_DEBUG_LIBRARY)
    list(APPEND CPACK_COMPONENTS_ALL stand-in)
    string(PREPEND orv_debug_packages "liborv-debug-stand-in (= ${PROJECT_VERSION}) | ")
endif()
if(CHANNELLIST_ACCESS_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
    if(TARGET channellist-page)
        list(APPEND CPACK_COMPONENTS_ALL page)
    endif()
endif()
set(CPACK_COMPONENT_RUNTIME_GROUP lib)
set(CPACK_COMPONENT_STAND-IN_GROUP orv)
set(CPACK_COMPONENT_DEVELOPMENT_GROUP dev)
set(CPACK_COMPONENT_TOOLS_GROUP tool)
set(CPACK_COMPONENT_PAGE_GROUP page)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
if(CMAKE_LIBRARY_ARCHITECTURE STREQUAL "arm-linux-gnueabihf" OR CMAKE_SYSTEM_PROCESSOR STREQUAL "arm")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
endif()

set(library_package "libchannellist-access${PROJECT_VERSION_MAJOR}")
set(same_library "${library_package} (= ${PROJECT_VERSION})")
# What the binaries need of other packages: scripts/package says it, which asks dpkg-shlibdeps, and
# for another machine's binaries looks into their sysroot.
set(CHANNELLIST_ACCESS_LIBRARY_DEPENDS "" CACHE STRING "Debian packages that the library needs")
set(CHANNELLIST_ACCESS_ORV_DEBUG_DEPENDS "" CACHE STRING "Debian packages that the stand-in needs")
set(CHANNELLIST_ACCESS_TOOLS_DEPENDS "" CACHE STRING "Debian packages that the tool needs")
set(CHANNELLIST_ACCESS_PAGE_DEPENDS "" CACHE STRING "Debian packages that the page needs")

set(CPACK_DEBIAN_LIB_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIB_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIB_PACKAGE_DEPENDS "${CHANNELLIST_ACCESS_LIBRARY_DEPENDS}, ${orv_debug_packages},\
 libsqlite3-0 (>= ${CHANNELLIST_ACCESS_SQLITE_VERSION})")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
file(WRITE "${PROJECT_BINARY_DIR}/package/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_ORV_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/package/triggers")
set(CPACK_DEBIAN_LIB_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/package/triggers")
set(CPACK_DEBIAN_LIB_DESCRIPTION "channel-list access for the TV services of a set
Reads and edits the channel lists of a digital television set, which stand in
one SQLite file that many processes share.")

set(CPACK_DEBIAN_ORV_PACKAGE_NAME liborv-debug-stand-in)
set(CPACK_DEBIAN_ORV_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_ORV_PACKAGE_DEPENDS "${CHANNELLIST_ACCESS_ORV_DEBUG_DEPENDS}")
foreach(relation PROVIDES CONFLICTS REPLACES)
    set(CPACK_DEBIAN_ORV_PACKAGE_${relation} "${CHANNELLIST_ACCESS_ORV_DEBUG_PACKAGE}")
endforeach()
set(CPACK_DEBIAN_ORV_DESCRIPTION "stand-in for the debug library of a TV set
Takes the messages of libchannellist-access on machines that have no debug
library of a set's maker, and writes those that ORV_DEBUG asks for.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libchannellist-access-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${same_library}, libsqlite3-dev, libboost-dev")
set(CPACK_DEBIAN_DEV_DESCRIPTION "channel-list access for the TV services of a set - development
The headers of libchannellist-access (C++11 and later), and what CMake and
pkg-config need to find it.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME channellist)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${same_library}, ${CHANNELLIST_ACCESS_TOOLS_DEPENDS}")
set(CPACK_CHANNELLIST_DEPENDS "${CHANNELLIST_ACCESS_LIBRARY_DEPENDS}")
set(CPACK_DEBIAN_TOOL_DESCRIPTION "shows, checks and edits the channel lists of a TV set
A command-line tool on the channel database of a digital television set, or a
copy of it: shows lists, finds services, sorts lists in an editor, reads and
writes the lists of VDR and Enigma2, and tells what is wrong in a database.")

set(CPACK_DEBIAN_PAGE_PACKAGE_NAME channellist-page)
set(CPACK_DEBIAN_PAGE_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PAGE_PACKAGE_DEPENDS "${same_library}, ${CHANNELLIST_ACCESS_PAGE_DEPENDS}")
set(CPACK_DEBIAN_PAGE_PACKAGE_RECOMMENDS "channellist (= ${PROJECT_VERSION}), xdg-utils")
set(CPACK_DEBIAN_PAGE_DESCRIPTION "page to sort the channels of a TV set with
A server for the browser of the same machine: one page that sorts the channel
lists of a digital television set by mouse, keyboard and touch.")

# The date of the version, which has to have its heading.
string(REPLACE "." "\\." version_pattern "${PROJECT_VERSION}")
file(STRINGS "${PROJECT_SOURCE_DIR}/CHANGELOG.md" heading
    REGEX "^## \\[${version_pattern}\\] - [0-9]+-[0-9]+-[0-9]+$")
if(NOT heading)
    message(FATAL_ERROR "CHANGELOG.md has no heading '## [${PROJECT_VERSION}] - YYYY-MM-DD'")
endif()
string(REGEX MATCH "[0-9]+-[0-9]+-[0-9]+$" CPACK_CHANNELLIST_DATE "${heading}")
set(CPACK_CHANNELLIST_PACKAGES "lib=${library_package};orv=liborv-debug-stand-in;dev=libchannellist-access-dev;tool=channellist;page=channellist-page")
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/package/debian-documents.cmake")

include(CPack)
