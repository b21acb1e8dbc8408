# Run by CPack over what it has laid out: adds what every Debian package has to have, and compresses
# the manual page.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()

if(CPACK_CHANNELLIST_DEPENDS STREQUAL "")
    message(FATAL_ERROR "The packages would name nothing that they need: make them by scripts/package")
endif()

function(compress file)
    execute_process(COMMAND gzip -9nf "${file}" COMMAND_ERROR_IS_FATAL ANY)
    file(CHMOD "${file}.gz" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()

execute_process(COMMAND date -R -u -d "${CPACK_CHANNELLIST_DATE}" OUTPUT_VARIABLE date
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
foreach(entry ${CPACK_CHANNELLIST_PACKAGES})
    string(REGEX MATCH "^([^=]+)=(.+)$" ignored "${entry}")
    set(place "${CPACK_TEMPORARY_DIRECTORY}/${CMAKE_MATCH_1}")
    set(package "${CMAKE_MATCH_2}")
    if(NOT EXISTS "${place}")
        continue() # configured without the tool
    endif()
    set(documents "${place}/usr/share/doc/${package}")
    file(WRITE "${documents}/copyright"
        "Copyright 2026 the authors of channellist-access\n"
        "License: closed; the sources grant no rights to others\n")
    file(WRITE "${documents}/changelog"
        "channellist-access (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n"
        "  * Version ${CPACK_PACKAGE_VERSION}; CHANGELOG.md of the sources tells what is new.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    compress("${documents}/changelog")
    file(GLOB pages "${place}/usr/share/man/man*/*.[0-9]")
    foreach(page ${pages})
        compress("${page}")
    endforeach()
endforeach()
