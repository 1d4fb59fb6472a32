#ifndef TOOLKIT_SQL_RESERVEDWORDS_H
#define TOOLKIT_SQL_RESERVEDWORDS_H

#include <string_view>

/// The words that are no names without quotes, for each dialect: those of the servers, and what is
/// reserved in newer ones.
namespace qe::tool::reserved {

inline constexpr std::string_view kSqlite =
    " add all alter and as autoincrement between case cast check collate commit constraint create "
    "current_date current_time current_timestamp default deferrable delete distinct drop else "
    "escape except exists foreign from group having if in index insert intersect into is isnull "
    "join limit not nothing notnull null on or order primary raise references returning select "
    "set table then to transaction union unique update using values when where ";

inline constexpr std::string_view kPostgreSql =
    " all analyse analyze and any array as asc asymmetric authorization binary both case cast "
    "check collate collation column concurrently constraint create cross current_catalog "
    "current_date current_role current_schema current_time current_timestamp current_user default "
    "deferrable desc distinct do else end except false fetch for foreign freeze from full grant "
    "group having ilike in initially inner intersect into is isnull join lateral leading left "
    "like limit localtime localtimestamp natural not notnull null offset on only or order outer "
    "overlaps placing primary references returning right select session_user similar some "
    "symmetric system_user table tablesample then to trailing true union unique user using "
    "variadic verbose when where window with ";

inline constexpr std::string_view kMySql =
    " accessible add all alter analyze and as asc asensitive before between bigint binary blob "
    "both by call cascade case change char character check collate column condition constraint "
    "continue convert create cross cube cume_dist current_date current_role current_time "
    "current_timestamp current_user cursor database databases day_hour day_microsecond day_minute "
    "day_second dec decimal declare default delayed delete delete_domain_id dense_rank desc "
    "describe deterministic distinct distinctrow div do_domain_ids double drop dual each else "
    "elseif empty enclosed escaped except exists exit explain false fetch first_value float "
    "float4 float8 for force foreign from fulltext function generated get grant group grouping "
    "groups having high_priority hour_microsecond hour_minute hour_second if ignore "
    "ignore_domain_ids in index infile inner inout insensitive insert int int1 int2 int3 int4 "
    "int8 integer intersect interval into io_after_gtids io_before_gtids is iterate join "
    "json_table key keys kill lag last_value lateral lead leading leave left like limit linear "
    "lines load localtime localtimestamp lock long longblob longtext loop low_priority manual "
    "master_bind master_demote_to_replica master_demote_to_slave master_ssl_verify_server_cert "
    "match maxvalue mediumblob mediumint mediumtext middleint minute_microsecond minute_second "
    "mod modifies natural no_write_to_binlog not nth_value ntile null numeric of offset on "
    "optimize optimizer_costs optionally or order out outer outfile over page_checksum parallel "
    "parse_vcol_expr partition percent_rank portion precision primary procedure purge qualify "
    "range rank read read_write reads real recursive ref_system_id references regexp release "
    "rename repeat replace require resignal restrict return returning revoke right rlike row "
    "row_number rows schema schemas second_microsecond select sensitive separator set show signal "
    "smallint spatial specific sql sql_big_result sql_calc_found_rows sql_small_result "
    "sqlexception sqlstate sqlwarning ssl starting stats_auto_recalc stats_persistent "
    "stats_sample_pages stored straight_join system table tablesample terminated then tinyblob "
    "tinyint tinytext to trailing trigger true undo union unique unlock unsigned update usage use "
    "using utc_date utc_time utc_timestamp values varbinary varchar varcharacter varying virtual "
    "when where while window with write xor year_month zerofill ";

inline constexpr std::string_view kSqlServer =
    " add all alter and any as asc authorization backup begin between break browse bulk by cascade "
    "case check checkpoint close clustered coalesce collate column commit compute constraint "
    "contains containstable continue convert create cross current current_date current_time "
    "current_timestamp current_user cursor database dbcc deallocate declare default delete deny "
    "desc disk distinct distributed double drop dump else end errlvl escape except exec execute "
    "exists exit external fetch file fillfactor for foreign freetext freetexttable from full "
    "function goto grant group having holdlock identity identity_insert identitycol if in index "
    "inner insert intersect into is join key kill left like lineno load merge national nocheck "
    "nonclustered not null nullif of off offsets on open opendatasource openquery openrowset "
    "openxml option or order outer over percent pivot plan precision primary print proc procedure "
    "public raiserror read readtext reconfigure references replication restore restrict return "
    "revert revoke right rollback rowcount rowguidcol rule save schema securityaudit select "
    "semantickeyphrasetable semanticsimilaritydetailstable semanticsimilaritytable session_user "
    "set setuser shutdown some statistics system_user table tablesample textsize then to top tran "
    "transaction trigger truncate try_convert tsequal union unique unpivot update updatetext use "
    "user values varying view waitfor when where while with within writetext ";

inline constexpr std::string_view kOracle =
    " access add all alter and any as asc audit between by case cast char check cluster column "
    "column_value comment compress connect create cross current date decimal default delete desc "
    "distinct drop else end exclusive exists fetch file float for from full grant group having "
    "identified immediate in increment index initial inner insert integer intersect into is join "
    "left level like lock long maxextents minus mlslabel mode modify natural nested_table_id "
    "noaudit nocompress not nowait null number of offline offset on online option or order outer "
    "partition pctfree pivot prior public raw rename resource revoke right row rowid rownum rows "
    "sample select session set share size smallint start successful synonym sysdate table then to "
    "trigger uid union unique unpivot update user using validate values varchar varchar2 versions "
    "view when whenever where with ";

inline constexpr std::string_view kDuckDb =
    " all analyse analyze and anti any array as asc asof asymmetric at authorization binary both "
    "by case cast check collate collation column columns concurrently constraint create cross "
    "default deferrable desc describe distinct do else end except false fetch for foreign freeze "
    "from full generated glob group having ilike in initially inner intersect into is isnull join "
    "lambda lateral leading left like limit map natural not notnull null offset on only or order "
    "outer overlaps pivot pivot_longer pivot_wider placing positional primary qualify references "
    "returning right select semi show similar some struct summarize symmetric table tablesample "
    "then to trailing true try_cast union unique unpack unpivot using variadic verbose when where "
    "window with ";

inline constexpr std::string_view kAnsi =
    " abs absolute acos action add all allocate alter and any are array array_agg "
    "array_max_cardinality as asc asensitive asin assertion asymmetric at atan atomic "
    "authorization avg begin begin_frame begin_partition between bigint binary bit bit_length "
    "blob boolean both by call called cardinality cascade cascaded case cast catalog ceil ceiling "
    "char char_length character character_length check classifier clob close coalesce collate "
    "collation collect column commit condition connect connection constraint constraints contains "
    "continue convert copy corr corresponding cos cosh count covar_pop covar_samp create cross "
    "cube cume_dist current current_catalog current_date current_default_transform_group "
    "current_path current_role current_row current_schema current_time current_timestamp "
    "current_transform_group_for_type current_user cursor cycle date day deallocate dec decfloat "
    "decimal declare default deferrable deferred define delete dense_rank deref desc describe "
    "descriptor deterministic diagnostics disconnect distinct domain double drop dynamic each "
    "element else empty end end_frame end_partition equals escape every except exception exec "
    "execute exists exp external extract false fetch filter first first_value float floor for "
    "foreign found frame_row free from full function fusion get global go goto grant group "
    "grouping groups having hold hour identity immediate in indicator initial initially inner "
    "inout input insensitive insert int integer intersect intersection interval into is isolation "
    "join json_array json_arrayagg json_exists json_object json_objectagg json_query json_table "
    "json_value key lag language large last last_value lateral lead leading left level like "
    "like_regex listagg ln local localtime localtimestamp log log10 lower match match_number "
    "match_recognize matches max member merge method min minute mod modifies module month "
    "multiset names national natural nchar nclob new next no none normalize not nth_value ntile "
    "null nullif numeric occurrences_regex octet_length of offset old omit on one only open "
    "option or order out outer output over overlaps overlay pad parameter partial partition "
    "pattern per percent percent_rank percentile_cont percentile_disc period portion position "
    "position_regex power precedes precision prepare preserve primary prior privileges procedure "
    "ptf public range rank read reads real recursive ref references referencing regr_avgx "
    "regr_avgy regr_count regr_intercept regr_r2 regr_slope regr_sxx regr_sxy regr_syy relative "
    "release restrict result return returns revoke right rollback rollup row row_number rows "
    "running savepoint schema scope scroll search second section seek select sensitive session "
    "session_user set show similar sin sinh size skip smallint some space specific specifictype "
    "sql sqlcode sqlerror sqlexception sqlstate sqlwarning sqrt start static stddev_pop "
    "stddev_samp submultiset subset substring substring_regex succeeds sum symmetric system "
    "system_time system_user table tablesample tan tanh temporary then time timestamp "
    "timezone_hour timezone_minute to trailing transaction translate translate_regex translation "
    "treat trigger trim trim_array true truncate uescape union unique unknown unnest update upper "
    "usage user using value value_of values var_pop var_samp varbinary varchar varying versioning "
    "view when whenever where width_bucket window with within without work write year zone ";

} // namespace qe::tool::reserved

#endif
