#pragma once

struct sqlite3;

namespace engine {

/// Makes Oracle's functions known to a connection: the empty text is null, dates are texts "yyyy-mm-dd hh:mm:ss", numbers are
/// computed in decimal, errors carry Oracle's numbers. Beside them stand helpers of the dialect:
/// oracle_concat (||), oracle_date_plus and oracle_date_minus, oracle_single (an aggregate that refuses a second row).
void registerOracleFunctions(sqlite3 *database);

} // namespace engine
