/// @file
/// The rows that read requests answer with.
#ifndef CHANNELLIST_ACCESS_RESULT_ROWS_H
#define CHANNELLIST_ACCESS_RESULT_ROWS_H

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

/// One row of strings. Either a raw row (the column texts of one SQL row, a NULL as the empty
/// string) or a result row (one string per field id of m_svfield or m_flfield).
typedef std::vector<std::string> ResultRow;

/// The answer of a read request, in the order in which the set shows its rows. The rows are shared:
/// they live as long as the host keeps them.
typedef std::vector<boost::shared_ptr<ResultRow>> ResultSet;

#endif
