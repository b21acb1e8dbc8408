#include "services/ott_numbers.h"

#include <channellist-access/db_access.h>

#include "failure.h"

namespace channel_lists {

std::vector<unsigned int> ottNumbers(int favIndex) {
    constexpr int (*kReaders[])(std::vector<unsigned int>&) = {
        dbaccess::getOttFav1List, dbaccess::getOttFav2List, dbaccess::getOttFav3List,
        dbaccess::getOttFav4List};
    std::vector<unsigned int> numbers;
    if (kReaders[favIndex - 1](numbers) != 0)
        throw Failure("the OTT database cannot be searched");
    return numbers;
}

}  // namespace channel_lists
