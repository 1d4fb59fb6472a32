// What it costs to import a large model.

#include "Toolkit/Import/OpenModel.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

/// Writes the DDL of tables of eleven columns, each but the first with keys to two before it.
void WriteDefinitions(const std::filesystem::path& path, std::int64_t tables)
{
    std::ofstream file(path);
    for (std::int64_t i = 0; i < tables; ++i) {
        file << "CREATE TABLE t" << i << " (\n  id INTEGER PRIMARY KEY";
        for (int column = 0; column < 8; ++column)
            file << ",\n  column_" << column << " VARCHAR(40)";
        for (std::int64_t key = 0; key < 2 && i > 0; ++key)
            file << ",\n  parent_" << key << " INTEGER REFERENCES t" << (i * 7 + key * 13) % i;
        file << ");\n";
    }
}

void ImportDefinitions(benchmark::State& state)
{
    const auto path = std::filesystem::temp_directory_path() /
                      ("ModelBenchmark-" + std::to_string(getpid()) + ".sql");
    WriteDefinitions(path, state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(qe::tool::ImportSql({path}, {}));
    std::filesystem::remove(path);
}
BENCHMARK(ImportDefinitions)->Arg(1000)->Arg(20000)->Unit(benchmark::kMillisecond);

/// Writes a dump as servers write them: tables first, then their keys and rows; about 550 bytes a
/// table.
void WriteDump(const std::filesystem::path& path, std::int64_t tables)
{
    std::ofstream file(path);
    for (std::int64_t i = 0; i < tables; ++i) {
        file << "CREATE TABLE t" << i << " (\n  id integer NOT NULL";
        for (int column = 0; column < 8; ++column)
            file << ",\n  column_" << column << " varchar(40) DEFAULT 'none'";
        file << ",\n  parent integer NOT NULL\n);\n";
    }
    for (std::int64_t i = 0; i < tables; ++i)
        file << "ALTER TABLE t" << i << " ADD CONSTRAINT key_" << i << " PRIMARY KEY (id);\n"
             << "INSERT INTO t" << i << " VALUES (1, 'one; ''two''', 3);\n";
    for (std::int64_t i = 1; i < tables; ++i)
        file << "ALTER TABLE t" << i << " ADD CONSTRAINT parent_" << i
             << " FOREIGN KEY (parent) REFERENCES t" << (i * 7) % i << " (id);\n";
}

/// The first argument is the dialect, the second the number of tables: 1900 are one megabyte.
void ImportDump(benchmark::State& state)
{
    const auto path = std::filesystem::temp_directory_path() /
                      ("ModelBenchmark-" + std::to_string(getpid()) + ".dump.sql");
    WriteDump(path, state.range(1));
    const auto dialect = static_cast<qe::tool::EDialect>(state.range(0));
    state.SetLabel(std::string(qe::tool::DialectName(dialect)));
    for (auto _ : state)
        benchmark::DoNotOptimize(qe::tool::ImportSql({path}, {}, dialect));
    state.SetBytesProcessed(static_cast<std::int64_t>(std::filesystem::file_size(path)) *
                            static_cast<std::int64_t>(state.iterations()));
    std::filesystem::remove(path);
}
BENCHMARK(ImportDump)->ArgsProduct({{1, 2, 3, 4}, {1900, 20000}})->Unit(benchmark::kMillisecond);

} // namespace
