// Fuzz target: a raw row through every row callback. A line is a column, "~" a null.
#include <channellist-access/db_access.h>

#include <algorithm>
#include <cstdint>

#include "fuzz_database.h"

namespace {

using Callback = int (*)(void*, int, char**, char**);

// A row as SQLite delivers it: at least one column.
struct Row {
    explicit Row(std::vector<std::string> columns) : texts(std::move(columns)) {
        texts.resize(std::max(texts.size(), std::size_t{1}));
        for (std::string& text : texts)
            values.push_back(text == "~" ? nullptr : text.data());
    }
    int count() const { return static_cast<int>(values.size()); }

    std::vector<std::string> texts;
    std::vector<char*> values;
};

void deliver(Callback callback, void* context, Row& row) {
    int const code = callback(context, row.count(), row.values.data(), row.values.data());
    fuzz::expect(code == 0 || code == -1, "neither go on nor stop");
}

void deliverResultRow(Callback callback, std::vector<int> const& fields, Row& row) {
    ResultSet rows;
    deliver(callback, &rows, row);
    fuzz::expect(rows.empty() || rows[0]->size() == fields.size(), "not a result row");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    for (int field = 0; field < 50; ++field) {
        m_svfield.push_back(field);
        m_flfield.push_back(field);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Row row(fuzz::lines({reinterpret_cast<char const*>(data), size}));
    deliverResultRow(dbaccess::service_callback, m_svfield, row);
    deliverResultRow(dbaccess::folder_callback, m_flfield, row);
    unsigned int number = 0;
    for (Callback const callback : {dbaccess::attributesCallback, dbaccess::listIdCallback})
        deliver(callback, &number, row);
    std::vector<unsigned int> numbers;
    for (Callback const callback :
         {dbaccess::FAVlistIdCallback, dbaccess::FAVserviceIdCallback, dbaccess::FAVitemIdCallback})
        deliver(callback, &numbers, row);
    int flag = 0;
    deliver(dbaccess::serviceEncryptedCallback, &flag, row);
    fuzz::expect(flag == 0 || flag == 1, "no flag");
    deliver(getbissKey_callback, nullptr, row);
    return 0;
}
