#include "entry_points.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <numeric>

#include "fault.h"
#include "workshop.h"

namespace {

// Longer than any string holds without memory of its own.
constexpr char kAllList[] = "list-of-all-services";

struct Nothing {};

std::string text(Nothing) { return ""; }
std::string text(unsigned int number) { return number == 0 ? "" : std::to_string(number); }
std::string text(std::string const& found) { return found == "NULL" ? "" : found; }

std::string text(std::vector<unsigned int> const& numbers) {
    std::string all;
    for (unsigned int const number : numbers)
        all += std::to_string(number) + '\n';
    return all;
}

std::string text(ResultSet const& rows) {
    std::string all;
    for (auto const& row : rows) {
        for (std::string const& column : *row)
            all += column + '|';
        all += '\n';
    }
    return all;
}

// Runs call(found), which returns a code and leaves its answer in `found`.
template <typename Found, typename Call>
Answer asked(Found found, Call call) {
    int code = 0;
    {
        FaultWindow const window;
        code = call(found);
    }
    return {code != SQLITE_OK && code != SQLITE_DONE, text(found)};
}

Answer edited(std::vector<std::string> arguments) {
    return asked(
        Nothing(), [&](Nothing) { return dbaccess::onServiceListEdit(std::move(arguments)); });
}

// What the set's components do with the helpers.
int stepOnce(char const* sql, int (*step)(sqlite3_stmt**, char const*), int success) {
    sqlite3_stmt* statement = nullptr;
    int code = sqlprepare(db, sql, -1, &statement, nullptr);
    if (code == SQLITE_OK)
        code = step(&statement, "the test");
    EXPECT_TRUE(code == success || statement == nullptr) << "a failed step left its statement";
    sqlite3_finalize(statement);
    return code == success ? SQLITE_OK : code;
}

class DroppedOutput {
  public:
    DroppedOutput() { std::fflush(stdout), to(open("/dev/null", O_WRONLY)); }
    ~DroppedOutput() { std::fflush(stdout), to(saved_); }

  private:
    static void to(int file) { dup2(file, STDOUT_FILENO), close(file); }
    int saved_ = dup(STDOUT_FILENO);
};

}  // namespace

std::ostream& operator<<(std::ostream& out, EntryPoint const& entry) { return out << entry.name; }

// clang-format off
std::vector<EntryPoint> const kEntryPoints = {
    {"get_dbservices", Writes::Nothing, true, true, true, [] {
        return asked(ResultSet(), [uuid = std::string(kAllList)](ResultSet& rows) mutable {
            rows = dbaccess::get_dbservices(std::move(uuid));
            return 0;
        });
    }},
    {"select_Folders", Writes::Nothing, true, true, false, [] {
        return asked(ResultSet(), [](ResultSet& rows) {
            rows = dbaccess::select_Folders();
            return 0;
        });
    }},
    {"getFavriteAttributes", Writes::Nothing, true, false, true, [] {
        return asked(0U, [uuid = std::string(kAllList)](unsigned int& attributes) mutable {
            return dbaccess::getFavriteAttributes(std::move(uuid), &attributes);
        });
    }},
    {"getAstraAnchorService", Writes::Nothing, true, false, true, [] {
        return asked(std::string(), dbaccess::getAstraAnchorService);
    }},
    {"checkAstraScrambleService", Writes::Nothing, true, true, true, [] {
        return asked(0U, [](unsigned int& flag) {
            int isExistent = 0;
            int const code = dbaccess::checkAstraScrambleService(isExistent);
            flag = static_cast<unsigned int>(isExistent);
            return code;
        });
    }},
    {"getBissKeyFromService", Writes::Nothing, true, true, true, [] {
        return asked(std::string(), [uuid = std::string("service-1")](std::string& key) mutable {
            key = dbaccess::getBissKeyFromService(std::move(uuid));
            return 0;
        });
    }},
    {"getOttFav4List", Writes::Nothing, true, false, true, [] {
        return asked(std::vector<unsigned int>(), dbaccess::getOttFav4List);
    }},
    {"main0", Writes::Nothing, true, true, false, [] {
        DroppedOutput const dropped;
        return asked(Nothing(), [](Nothing) {
            char name[] = "main0";
            char* arguments[] = {name, nullptr};
            return dbaccess::main0(1, arguments);
        });
    }},
    {"onServiceListEdit of a FAV list", Writes::Whole, true, false, true, [] {
        // Three of the six stored services stay, two are new.
        return edited(edit("list-of-favourites-1", {2, 7, 4, 8, 6}, 11));
    }},
    {"onServiceListEdit of the All list", Writes::WholeEdit, true, false, true, [] {
        // Hides three services and closes the gaps that they leave in FAV1 and FAV2.
        return edited(edit(kAllList, {1, 3, 5}, 31, 0x01 | 0x04 | 0x08));
    }},
    {"renumberFAVList", Writes::ItemByItem, false, true, true, [] {
        return asked(Nothing(), [](Nothing) { return dbaccess::renumberFAVList(2, 1); });
    }},
    {"UpdateListTag", Writes::Nothing, false, false, true, [] {
        return asked(Nothing(), [](Nothing) { return dbaccess::UpdateListTag(1); });
    }},
    {"initViews", Writes::Nothing, false, false, false, [] {
        return asked(Nothing(), [](Nothing) { return dbaccess::initViews(db); });
    }},
    {"sqlexec", Writes::Whole, false, false, false, [] {
        return asked(Nothing(), [](Nothing) {
            char* error = nullptr;
            return sqlexec(db, "UPDATE Service SET Name = 'x' || Pid", nullptr, nullptr, &error);
        });
    }},
    {"sqlstep", Writes::Whole, false, false, false, [] {
        return asked(Nothing(), [](Nothing) {
            return stepOnce("UPDATE Service SET Name = 'y' || Pid", sqlstep, SQLITE_DONE);
        });
    }},
    {"sqlstepquery", Writes::Nothing, false, false, false, [] {
        return asked(Nothing(), [](Nothing) {
            return stepOnce("SELECT Name FROM Service", sqlstepquery, SQLITE_ROW);
        });
    }},
};
// clang-format on

std::vector<std::string> edit(std::string const& list, std::vector<int> const& services,
                              unsigned int first, unsigned int flags) {
    std::vector<std::string> arguments = {list};
    for (int const service : services) {
        arguments.push_back(std::to_string(flags));
        arguments.push_back(std::to_string(first++));
        arguments.push_back(std::to_string(service));
    }
    return arguments;
}

std::vector<int> allServices() {
    std::vector<int> services(kServices);
    std::iota(services.begin(), services.end(), 1);
    return services;
}

std::vector<int> servicesFor(unsigned int first) {
    std::vector<int> services;
    for (int const service : allServices())
        if ((static_cast<unsigned int>(service) + first / 100) % 3 != 0)
            services.push_back(service);
    return services;
}

std::string listing(std::vector<int> const& services, unsigned int first) {
    std::string lines;
    for (int const service : services)
        lines += std::to_string(first++) + '|' + std::to_string(service) + "|\n";
    return lines;
}
