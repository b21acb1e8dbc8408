# Target `docs`: the pages of the public headers, in docs/html of the build folder. A declaration
# without a comment, or a comment that does not match its declaration, fails the target.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    return()
endif()

set(DOXYGEN_PROJECT_NAME "libchannellist-access")
set(DOXYGEN_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/docs")
set(DOXYGEN_STRIP_FROM_PATH "${PROJECT_SOURCE_DIR}/channellist-access/include")
set(DOXYGEN_STRIP_FROM_INC_PATH "${PROJECT_SOURCE_DIR}/channellist-access/include")
set(DOXYGEN_GENERATE_LATEX NO)
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_WARNINGS YES)
set(DOXYGEN_WARN_IF_UNDOCUMENTED YES)
set(DOXYGEN_WARN_NO_PARAMDOC NO) # parameters whose name and type say all need no line
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_EXTRACT_STATIC YES)
set(DOXYGEN_ENABLE_PREPROCESSING YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED "CHANNELLIST_ACCESS_EXPORT=" "__GNUC__=12")
doxygen_add_docs(docs channellist-access/include
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    COMMENT "Pages of the public headers")
