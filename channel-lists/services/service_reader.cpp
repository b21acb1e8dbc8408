#include "services/service_reader.h"

#include <numeric>

#include "database/query.h"

namespace channel_lists {
namespace {

// Asks the library for every column for the life of the object.
class AllFields {
  public:
    AllFields(std::vector<int>& fields, int last) : fields_(fields), before_(fields) {
        fields_.resize(static_cast<std::size_t>(last) + 1);
        std::iota(fields_.begin(), fields_.end(), 0);
    }
    ~AllFields() { fields_ = before_; }
    AllFields(AllFields const&) = delete;
    AllFields& operator=(AllFields const&) = delete;

  private:
    std::vector<int>& fields_;
    std::vector<int> before_;
};

// The rows are nobody else's.
Rows take(ResultSet const& delivered, std::int64_t expected) {
    Rows result;
    result.rows.reserve(delivered.size());
    for (auto const& row : delivered)
        result.rows.push_back(std::move(*row));
    result.complete = static_cast<std::int64_t>(delivered.size()) >= expected;
    return result;
}

}  // namespace

Rows readRawServices(std::string const& listUuid) {
    ResultSet const services = dbaccess::get_dbservices(listUuid);
    Query count(db,
                "SELECT count(*) FROM FavoriteItemView WHERE FavoriteId ="
                " (SELECT Pid FROM FavoriteList WHERE Uuid = ?)");
    count.bind(listUuid).next();
    return take(services, count.number(0));
}

Rows readServices(std::string const& listUuid) {
    AllFields const fields(m_svfield, SERVICE_FIELD_POLARIZATION);
    return readRawServices(listUuid);
}

Rows readRawFolders() {
    ResultSet const folders = dbaccess::select_Folders();
    return take(folders, queryNumber(db,
                                     "SELECT count(*) FROM FavoriteList"
                                     " WHERE Creator <> 'tamun.sl2.servicelist$all'"
                                     " AND Creator NOT LIKE 'servicelist://tamun.dvbip%'"));
}

Rows readFolders() {
    AllFields const fields(m_flfield, FOLDER_FIELD_FAV_NAME);
    return readRawFolders();
}

}  // namespace channel_lists
