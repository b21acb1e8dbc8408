# Writes the files of a web page into a C++ header: cmake -DFOLDER=... -DHEADER=... -P EmbedFiles.cmake
file(GLOB names RELATIVE "${FOLDER}" "${FOLDER}/*.html" "${FOLDER}/*.css" "${FOLDER}/*.js"
    "${FOLDER}/*.svg")
set(type_html "text/html; charset=utf-8")
set(type_css "text/css; charset=utf-8")
set(type_js "text/javascript; charset=utf-8")
set(type_svg "image/svg+xml")
set(contents "")
set(table "")
foreach(name IN LISTS names)
    file(READ "${FOLDER}/${name}" bytes HEX)
    string(LENGTH "${bytes}" digits)
    math(EXPR size "${digits} / 2")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
    string(MAKE_C_IDENTIFIER "${name}" identifier)
    string(REGEX MATCH "[a-z]+$" ending "${name}")
    string(APPEND contents "constexpr unsigned char k_${identifier}[] = {${bytes}};\n")
    set(path "${name}")
    if(name STREQUAL "index.html")
        set(path "")
    endif()
    string(REPLACE "." "\\\\." path "${path}")
    string(APPEND table "    {\"${path}\", \"${type_${ending}}\", k_${identifier}, ${size}},\n")
endforeach()
file(WRITE "${HEADER}" "// Generated from the page's files.
#pragma once
#include <cstddef>
namespace page {
${contents}
struct WebFile {
    char const* path;  // a regular expression, as the server takes it; "" for the page itself
    char const* type;
    unsigned char const* bytes;
    std::size_t size;
};
constexpr WebFile kWebFiles[] = {
${table}};
}
")
