#ifndef TESTS_TOOLKIT_HISTORYTABLES_H
#define TESTS_TOOLKIT_HISTORYTABLES_H

namespace qe::test {

/// Two roles of a day, a composite key beside a simple one, and two tables that no key joins.
inline constexpr const char* kHistoryTables = R"(
    CREATE TABLE day (day_key INTEGER PRIMARY KEY);
    CREATE TABLE head (id INTEGER PRIMARY KEY);
    CREATE TABLE item (head_id INT NOT NULL REFERENCES head, no INT, PRIMARY KEY (head_id, no));
    CREATE TABLE sale (id INTEGER PRIMARY KEY, sold_day_key INT NOT NULL REFERENCES day,
                       ship_day_key INT NOT NULL REFERENCES day,
                       head_id INT REFERENCES head, no INT,
                       FOREIGN KEY (head_id, no) REFERENCES item);
    CREATE TABLE note (day INT, sale_id INT);
)";

} // namespace qe::test

#endif
