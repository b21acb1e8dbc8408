# Flags of every target of this repository; nothing here reaches a consumer of the package.

# The warnings that every target is built with: target_link_libraries(... PRIVATE build-flags).
add_library(build-flags INTERFACE)
target_compile_options(build-flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor)

if(CHANNELLIST_ACCESS_SANITIZE)
    add_compile_options(-fsanitize=${CHANNELLIST_ACCESS_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${CHANNELLIST_ACCESS_SANITIZE})
endif()
if(CHANNELLIST_ACCESS_BUILD_FUZZERS)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
