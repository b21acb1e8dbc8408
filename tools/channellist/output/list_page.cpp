#include "output/list_page.h"

namespace tool {
namespace {

std::string escaped(std::string const& text) {
    std::string result;
    for (char const c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

}  // namespace

char const* const kPageBeginning = R"(<!DOCTYPE html>
<html>
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>Channels</title>
<style>
body { font: 10pt/1.35 sans-serif; margin: 1.5em; }
h2 { font-size: 13pt; margin: 1em 0 0.3em; break-after: avoid; border-bottom: 1px solid; }
ul { columns: 15em; column-gap: 2em; list-style: none; margin: 0; padding: 0; }
li { display: flex; break-inside: avoid; overflow-wrap: anywhere; }
b { flex: 0 0 3.5em; text-align: right; padding-right: 0.7em; font-variant-numeric: tabular-nums; }
i { padding-left: 0.5em; opacity: 0.7; }
@page { size: A4; margin: 15mm; }
@media print { body { margin: 0; font-size: 9pt; } ul { columns: 3; } }
</style>
</head>
<body>
)";

char const* const kPageEnd = "</body>\n</html>\n";

std::string formatPageList(std::string const& name, std::vector<PageEntry> const& entries) {
    std::string text = "<h2>" + escaped(name) + "</h2>\n<ul>\n";
    for (PageEntry const& entry : entries)
        text += "<li><b>" + escaped(entry.number) + "</b> <span>" + escaped(entry.name) +
                "</span>" + (entry.isRadio ? " <i>radio</i>" : "") + "</li>\n";
    return text + "</ul>\n";
}

}  // namespace tool
