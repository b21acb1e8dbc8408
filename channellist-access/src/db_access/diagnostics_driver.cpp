// A console entry that exercises both read paths on the real database.
#include <channellist-access/db_access.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::size_t kPrintedColumns = 5;

void printFolders(ResultSet const& folders) {
    for (std::size_t item = 0; item < folders.size(); ++item) {
        ResultRow const& row = *folders[item];
        for (std::size_t column = 0; column < std::min(row.size(), kPrintedColumns); ++column)
            std::printf("[item %d:col %d]:%s ", static_cast<int>(item), static_cast<int>(column),
                        row[column].c_str());
        std::putchar('\n');
    }
}

ResultSet servicesOfArgument(int argc, char** argv, int index) {
    if (index >= argc || argv[index] == nullptr)
        return ResultSet();
    return dbaccess::get_dbservices(argv[index]);
}

}  // namespace

int dbaccess::main0(int argc, char** argv) {
    ResultSet const folders = select_Folders();
    printFolders(folders);
    std::printf("argc=%d\n", argc);
    // The rows are read for the traces that reading them leaves, and live until the end.
    ResultSet const first = servicesOfArgument(argc, argv, 1);
    ResultSet const second = servicesOfArgument(argc, argv, 2);
    std::puts("end");
    return 0;
}
