#include "requests.h"

#include <channellist-access/db_access.h>

#include <stdexcept>

#include "benchmark_database.h"

namespace benchmarks {

namespace {

constexpr int kEdited = 101;  // the status of an edit's last step
constexpr unsigned int kDeleted = 0x01;
constexpr unsigned int kRestored = 0x02;
constexpr unsigned int kRenumberAll = 0x04 | 0x08 | 0x10 | 0x20;

void expect(bool succeeded, char const* request) {
    if (!succeeded)
        throw std::runtime_error(std::string(request) + " failed");
}

void addEntry(std::vector<std::string>& arguments, unsigned int flags, int number, int service) {
    arguments.push_back(std::to_string(flags));
    arguments.push_back(std::to_string(number));
    arguments.push_back(std::to_string(service));
}

std::vector<std::string> allListArguments(int services, int shift) {
    std::vector<std::string> arguments = {kAllList};
    for (int key = 1; key <= services; ++key) {
        bool const deleted = key > services / 2 && key % 10 == shift;
        addEntry(arguments, kRenumberAll | (deleted ? kDeleted : kRestored), key + shift, key);
    }
    return arguments;
}

}  // namespace

void readServiceList(int services) {
    std::size_t const rows = dbaccess::get_dbservices(kAllList).size();
    expect(rows == static_cast<std::size_t>(services), "service list");
}

void readFolderList() {
    // The All list is none of them.
    expect(dbaccess::select_Folders().size() == kListCount - 1, "folder list");
}

void AlternatingEdit::prepare() { next_ = edits_[turn_]; }

void AlternatingEdit::run() {
    turn_ = 1 - turn_;
    expect(dbaccess::onServiceListEdit(std::move(next_)) == kEdited, "edit");
}

AlternatingEdit favListEdit(int favorites) {
    std::vector<std::string> there = {kFav1List};
    std::vector<std::string> back = {kFav1List};
    int const kept = favorites - favorites / 5;
    for (int key = 1; key <= favorites; ++key) {
        addEntry(there, 0, key, key <= kept ? key : key + favorites / 5);
        addEntry(back, 0, key, key);
    }
    return AlternatingEdit(there, back);
}

AlternatingEdit allListEdit(int services) {
    return AlternatingEdit(allListArguments(services, 1), allListArguments(services, 2));
}

void lookUpAstra() {
    int scrambled = 0;
    expect(dbaccess::checkAstraScrambleService(scrambled) == 0, "Astra lookup");
}

void lookUpBissKey(int service) {
    expect(dbaccess::getBissKeyFromService(serviceUuid(service)) != "NULL", "BISS lookup");
}

}  // namespace benchmarks
